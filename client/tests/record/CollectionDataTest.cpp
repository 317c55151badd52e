#include "record/CollectionData.h"

#include <gtest/gtest.h>

namespace {

void expectEmpty(const CollectionData& data)
{
    EXPECT_EQ(0U, data.getStartTimestamp());
    EXPECT_EQ(0U, data.getStopTimestamp());
    EXPECT_EQ(0U, data.getStartTimeval());
    EXPECT_EQ(0U, data.getStopTimeval());
    EXPECT_EQ(0U, data.getSamplesProduced());
    EXPECT_EQ(0U, data.getSamplesDropped());
    EXPECT_EQ("", data.getClockUUID());
    EXPECT_EQ("", data.getResultFile());
}

TEST(CollectionDataTest, EveryFieldHasItsPlaceAndResetEmptiesAll)
{
    CollectionData data(1, 2, 3, 4, 5, 6, "uuid", "file");
    EXPECT_EQ(1U, data.getStartTimestamp());
    EXPECT_EQ(2U, data.getStopTimestamp());
    EXPECT_EQ(3U, data.getStartTimeval());
    EXPECT_EQ(4U, data.getStopTimeval());
    EXPECT_EQ(5U, data.getSamplesProduced());
    EXPECT_EQ(6U, data.getSamplesDropped());
    EXPECT_EQ("uuid", data.getClockUUID());
    EXPECT_EQ("file", data.getResultFile());
    data.reset();
    expectEmpty(data);
    expectEmpty(CollectionData());
}

}    // namespace
