#include "usage/Option.h"

#include "support/DoorGuard.h"
#include "support/RecordingConsole.h"

#include <gtest/gtest.h>

namespace {

class Widths : public pwr::usage::Option {
public:
    using Option::getWindowsConsoleWidth;
};

TEST(ConsoleWidthTest, WithoutAConsoleItIs80)
{
    test::RecordingConsole console;
    test::DoorGuard door;
    door->console = &console;
    EXPECT_EQ(80U, Widths::getWindowsConsoleWidth());
    console.columns = 132;
    EXPECT_EQ(132U, Widths::getWindowsConsoleWidth());
}

}    // namespace
