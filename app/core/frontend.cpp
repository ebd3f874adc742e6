#include "frontend.h"

#include "settings.h"

namespace {
const Frontend *registered = nullptr;
} // namespace

void RegisterFrontend(const Frontend *f)
{
    registered = f;
}

const Frontend *ActiveFrontend(void)
{
    return options.quiet ? nullptr : registered;
}
