/* How much memory a picture may take: a request beyond what the machine can
 * give is refused up front, with a message, rather than granted by an
 * overcommitting kernel and ended later by its out-of-memory killer. */
#ifndef TALVOR_MEMORY_H
#define TALVOR_MEMORY_H

#include <cstddef>

/* True when bytes more can be had now: at most the memory the kernel reports
 * available (MemAvailable plus free swap), and within the control group's
 * limit when the process runs under one. When neither can be read, true. */
bool MemoryWithinReach(size_t bytes);

#endif
