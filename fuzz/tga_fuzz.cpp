#include <cstddef>
#include <cstdint>

#include "tga_entry.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    ReadTgaBytes(data, size);
    return 0;
}
