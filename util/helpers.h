/* General helpers: the run-time clock. */
#ifndef UTIL_HELPERS_H
#define UTIL_HELPERS_H

#include <stdio.h>

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Wall-clock seconds since the epoch, with microsecond resolution (from
 * gettimeofday); subtract two readings for an elapsed time. */
double GetRunTime(void);

#ifdef __cplusplus
}
#endif

#endif
