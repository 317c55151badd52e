#include "metrics/SeenValues.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

using pwr::Data;
using pwr::SeenValues;

namespace {

std::string listed(const SeenValues& seen, const std::vector<Data>& finiteSet = {})
{
    std::string all;
    for (const SeenValues::Entry& entry : seen.listedAfter(finiteSet)) {
        std::string text;
        entry.value->toFormattedString(text);
        all += text + ":" + (entry.number.has_value() ? std::to_string(*entry.number) : "-") + " ";
    }
    return all;
}

TEST(SeenValuesTest, ListsAscendingWithoutAFiniteSetAndAsTheyCameBehindOne)
{
    SeenValues seen;
    for (const int value : {5, 3, 5, 9, 3})
        seen.add(Data(value));
    EXPECT_EQ("3:1 5:0 9:2 ", listed(seen));
    EXPECT_EQ("7:- 9:2 7:- 5:0 3:1 ", listed(seen, {Data(7), Data(9), Data(7)}));
}

TEST(SeenValuesTest, RangesWithEqualFirstEndsAreTwoValuesUnderOneNumber)
{
    SeenValues seen;
    EXPECT_EQ(0u, seen.add(Data(1, 7)));
    EXPECT_EQ(1u, seen.add(Data(2, 2)));
    EXPECT_EQ(0u, seen.add(Data(1, 5)));
    EXPECT_EQ(0u, seen.add(Data(1, 9)));
    EXPECT_EQ(0u, seen.add(Data(1, 7)));
    EXPECT_EQ("1 -- 5:0 1 -- 7:0 1 -- 9:0 2 -- 2:1 ", listed(seen));
    EXPECT_EQ("2 -- 2:1 1 -- 7:0 1 -- 5:0 1 -- 9:0 ", listed(seen, {Data(2, 2)}));
}

TEST(SeenValuesTest, NotANumberIsOneValueAtTheEnd)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    SeenValues seen;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(0u, seen.add(Data(nan)));
        EXPECT_EQ(1u, seen.add(Data(2.0)));
        EXPECT_EQ(2u, seen.add(Data(1.0, nan)));
    }
    EXPECT_EQ(3u, seen.listedAfter({}).size());
    EXPECT_EQ(0u, seen.listedAfter({})[1].number);
}

}    // namespace
