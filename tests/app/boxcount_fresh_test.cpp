// The very first computation of a process: its first grid is drawn with the
// box size the counter starts with, 1, so its offset is (0, 0) whatever the
// clock says. This needs a process of its own.
#include <gtest/gtest.h>

#include "boxcount.h"
#include "counting_fixture.h"

TEST(BoxCountFirstRun, FirstGridHasZeroOffset)
{
    SetDefaultOptions();
    counting::LoadMask(counting::RandomMask(60, 50, 0.1, 3)); // calls BoxCount(0) once
    options.quiet = 0;
    options.noffsets = 2;
    options.boxstart = 20;
    testing::internal::CaptureStderr();
    while (!BoxCount(1)) {
    }
    const auto lines = counting::ParseGridLines(testing::internal::GetCapturedStderr());
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines[0].offx, 0);
    EXPECT_EQ(lines[0].offy, 0);
}
