#include "record/CollectionData.h"

#include <gtest/gtest.h>

#include <tuple>

namespace {

auto fields(const CollectionData& data)
{
    return std::tuple(data.getStartTimestamp(), data.getStopTimestamp(), data.getStartTimeval(), data.getStopTimeval(),
                      data.getSamplesProduced(), data.getSamplesDropped(), data.getClockUUID(), data.getResultFile());
}

TEST(CollectionDataTest, EveryFieldHasItsPlaceAndResetEmptiesAll)
{
    CollectionData data(1, 2, 3, 4, 5, 6, "uuid", "file");
    EXPECT_EQ(std::tuple(1U, 2U, 3U, 4U, 5U, 6U, "uuid", "file"), fields(data));
    data.reset();
    EXPECT_EQ(std::tuple(0U, 0U, 0U, 0U, 0U, 0U, "", ""), fields(data));
    EXPECT_EQ(fields(CollectionData()), fields(data));
}

}    // namespace
