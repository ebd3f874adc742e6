#include "helpers.h"

#include <sys/time.h>

double GetRunTime(void)
{
    struct timeval tp;
    gettimeofday(&tp, nullptr);
    return static_cast<double>(tp.tv_sec) + static_cast<double>(tp.tv_usec) / 1e6;
}
