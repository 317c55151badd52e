#include "metrics/SampleCountSummarizer.h"

#include "metrics/MetricFixture.h"

using namespace pwr;

namespace {

class SampleCountSummarizerTest : public test::MetricFixture {};

TEST_F(SampleCountSummarizerTest, CombinationsAloneMakeNoDescriptorColumn)
{
    const EntityHandle* a = entity("A");
    SampleCountSummarizer counts(true, true, false);
    auto metric = makeMetric(Type::TracedEvent);
    metric->setEntityDescriptorCombinations({{a, descriptor("x")}});
    session.log.clear();
    EXPECT_EQ(0, counts.finalize(*metric));    // never initialised
    const auto cells = rows("M Summary - Sampled: Total Samples Received");
    ASSERT_EQ(1u, cells.size());
    EXPECT_EQ("A", cells[0][0]);
    EXPECT_EQ("0", cells[0][1]);
    EXPECT_FALSE(session.log.contains("wrong type"));
}

TEST_F(SampleCountSummarizerTest, IntervalsAreToldAtInfoLevel)
{
    session.log.environment().setVerbosity(4);
    SampleCountSummarizer counts(true, true, true);
    auto metric = makeMetric(Type::TracedEvent);
    metric->addAccumulator(&counts);
    const EntityHandle* a = entity("A");
    sample(*metric, 2000, a, nullptr, 1U);
    sample(*metric, 2300, a, nullptr, 1U);
    metric->finalize();
    const std::string key = std::to_string(a->getId());
    EXPECT_TRUE(session.log.contains("INFO: SampleCountSummarizer::processMessage has timestamp = 2000\n"));
    EXPECT_TRUE(session.log.contains("INFO: set key = " + key + " for A, <N/A>\n"));
    EXPECT_TRUE(session.log.contains("INFO: A, <N/A> has prev = 2000, min = 300, max = 300\n"));
    EXPECT_TRUE(session.log.contains("INFO: Key = " + key + ", Entity = A, Min = 300, Max = 300\n"));
    EXPECT_TRUE(session.log.contains(
        "INFO: Output config file entry not present for MetricContainer BOX and table type SAMPLE-COUNT.\n"));
}

}    // namespace
