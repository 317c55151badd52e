#include "runtime/Saturate.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using pwr::parseUInt32;
using pwr::saturate;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

TEST(SaturateTest, TruncatesInsideTheRangeAndClampsOutside)
{
    const struct {
        double value;
        std::int64_t asSigned;
        std::uint64_t asUnsigned;
    } cases[] = {
        {0.0, 0, 0},
        {1.99, 1, 1},
        {-0.99, 0, 0},
        {-1.99, -1, 0},
        {9223372036854774784.0, 9223372036854774784, 9223372036854774784U},    // the last below 2^63
        {9223372036854775808.0, INT64_MAX, 9223372036854775808U},
        {-9223372036854775808.0, INT64_MIN, 0},
        {18446744073709549568.0, INT64_MAX, 18446744073709549568U},    // the last below 2^64
        {18446744073709551616.0, INT64_MAX, UINT64_MAX},
        {infinity, INT64_MAX, UINT64_MAX},
        {-infinity, INT64_MIN, 0},
        {notANumber, 0, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.asSigned, saturate<std::int64_t>(c.value)) << c.value;
        EXPECT_EQ(c.asUnsigned, saturate<std::uint64_t>(c.value)) << c.value;
    }
    EXPECT_EQ(2147483647, saturate<std::int32_t>(2147483647.9));
    EXPECT_EQ(-2147483647 - 1, saturate<std::int32_t>(-2147483648.9));
    EXPECT_EQ(65535, saturate<std::uint16_t>(1e9));
}

TEST(ParseUInt32Test, ReadsAsWithA32BitUnsignedLong)
{
    const struct {
        const char* text;
        int base;
        std::uint32_t value;
    } cases[] = {
        {"42", 10, 42},
        {" \t\r\n+42", 10, 42},
        {"42x9", 10, 42},
        {"", 10, 0},
        {nullptr, 10, 0},
        {"x", 10, 0},
        {"-", 10, 0},
        {"- 1", 10, 0},
        {"-1", 10, 0xFFFFFFFF},
        {"-4294967295", 10, 1},
        {"4294967295", 10, 0xFFFFFFFF},
        {"4294967296", 10, 0xFFFFFFFF},
        {"-4294967296", 10, 0xFFFFFFFF},
        {"99999999999999999999999999", 10, 0xFFFFFFFF},
        {"0x1F", 10, 0},
        {"ff", 10, 0},
        {"0x1F", 16, 31},
        {"0X1f", 16, 31},
        {"1f", 16, 31},
        {"DEADbeef", 16, 0xDEADBEEF},
        {"0x", 16, 0},
        {"0xg", 16, 0},
        {"-0x1", 16, 0xFFFFFFFF},
        {"1FFFFFFFF", 16, 0xFFFFFFFF},
        {"0x1F", 0, 31},
        {"017", 0, 15},
        {"018", 0, 1},
        {"19", 0, 19},
        {"0", 0, 0},
        {"\xff", 10, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.value, parseUInt32(c.text, c.base)) << (c.text != nullptr ? c.text : "null") << ", base " << c.base;
    }
}

}    // namespace
