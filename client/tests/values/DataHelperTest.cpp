#include "values/DataHelper.h"

#include "support/LogCapture.h"

#include <gtest/gtest.h>

using namespace pwr;

TEST(DataHelperTest, VoidComparesWithAWarning)
{
    const test::LogCapture log(2);
    const DataHelper& helper = DataHelper::forType(DataType::NONE);
    EXPECT_FALSE(helper.isLess(Data(), Data()));
    EXPECT_TRUE(helper.isEqual(Data(), Data()));
    helper.getDefaultFormatter();
    EXPECT_EQ(3u, log.count("WARNING: Cannot use data object with type pwr::DataType::NONE\n"));
}

TEST(DataHelperTest, NumberThatIsNoTypeIsTreatedAsInt)
{
    const DataHelper& integer = DataHelper::forType(DataType::INT);
    EXPECT_EQ(&integer, &DataHelper::forType(static_cast<DataType>(9)));
    EXPECT_EQ(&integer, &DataHelper::forType(static_cast<DataType>(255)));
    EXPECT_NE(&integer, &DataHelper::forType(DataType::STRING));
}
