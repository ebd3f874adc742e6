// A clock that stands still, for test programs of the counter: linked with
// -Wl,--wrap=time, every time() the program makes reads testclock::now, so
// two computations started with the same settings draw the same offsets.
// Tests move it to draw others.
#ifndef TESTS_FIXEDCLOCK_H
#define TESTS_FIXEDCLOCK_H

#include <ctime>

namespace testclock {
extern time_t now;
}

#endif
