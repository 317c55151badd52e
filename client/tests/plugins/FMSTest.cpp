#include "plugins/FMS.h"

#include <gtest/gtest.h>

#include <sstream>

using pwr::FMS;

TEST(FMSTest, SteppingZeroMatchesAny)
{
    const struct {
        FMS a;
        FMS b;
        bool equal;
    } cases[] = {
        {{6, 142, 9}, {6, 142, 9}, true},  {{6, 142, 9}, {6, 142, 0}, true},  {{6, 142, 0}, {6, 142, 9}, true},
        {{6, 142, 9}, {6, 142, 3}, false}, {{6, 142, 0}, {6, 158, 0}, false}, {{6, 142, 0}, {7, 142, 0}, false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.equal, c.a == c.b);
}

TEST(FMSTest, PrintsInHexadecimalAndLeavesTheStreamDecimal)
{
    std::ostringstream out;
    out << FMS{6, 142, 0} << ' ' << 16;
    EXPECT_EQ("0x6.0x8e.0x0 16", out.str());
}
