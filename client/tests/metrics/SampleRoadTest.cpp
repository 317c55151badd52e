#include "metrics/MetricFixture.h"

#include <gtest/gtest.h>

namespace test {
namespace {

// The example that docs/sample-road.md works through.
class SampleRoadTest : public MetricFixture {};

TEST_F(SampleRoadTest, ResidencyPointsArePushedWholeOrNotAtAll)
{
    auto metric = makeMetric(Type::SampledResidency);
    const auto* core = entity("Core_0");
    const auto* c0 = descriptor("C0");
    const auto* c6 = descriptor("C6");

    EXPECT_EQ(0, sample(*metric, 2000, core, c0, 300U));
    EXPECT_EQ(0, sample(*metric, 2000, core, c6, 700U));
    EXPECT_EQ(1, sample(*metric, 2000, core, c6, 100U));
    EXPECT_TRUE(session.writer.points.empty());

    EXPECT_EQ(0, sample(*metric, 4000, core, c0, 900U));
    ASSERT_EQ(1U, session.writer.points.size());
    const RecordedPoint& point = session.writer.points.front();
    EXPECT_EQ(2000U, point.timestamp);
    ASSERT_EQ(2U, point.elements.size());
    EXPECT_EQ(pwr::Data(300ULL), point.elements[0].value);
    EXPECT_EQ(pwr::Data(700ULL), point.elements[1].value);
    EXPECT_EQ(1000U, point.elements[1].duration);

    EXPECT_EQ(0, sample(*metric, 4000, core, c6, 1500U));
    EXPECT_EQ(0, metric->finalize());
    EXPECT_EQ(1U, session.writer.points.size());    // 2400 ticks in 2000: dropped
    EXPECT_TRUE(session.log.contains("sum of residencies in various states exceeds the sample duration"));
}

}    // namespace
}    // namespace test
