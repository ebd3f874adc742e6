#include "fixedclock.h"

namespace testclock {
time_t now = 1767225600; // 2026-01-01 00:00:00 UTC
}

extern "C" time_t __wrap_time(time_t *t);

extern "C" time_t __wrap_time(time_t *t)
{
    if (t != nullptr)
        *t = testclock::now;
    return testclock::now;
}
