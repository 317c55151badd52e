#include "metrics/MetricFixture.h"

using namespace pwr;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const char* const SAMPLED = "M Summary - Sampled: Total Samples Received";

class SampleCountTest : public test::MetricFixture {};

TEST_F(SampleCountTest, CountsDistinctTimestampsOfAnEntityWhateverItsDescriptors)
{
    system.qvaClockFreqMHz = 2000;
    const EntityHandle* a = entity("A");
    const EntityHandle* b = entity("B");
    auto metric = makeMetric(Type::SampledValue);
    metric->setEntityGroupInfo(FieldDescription("Core", ""));
    metric->setDescriptorGroupInfo(FieldDescription("Sensor", ""));
    for (const unsigned long long timestamp : {2'001'000ULL, 4'001'000ULL, 10'001'000ULL}) {
        sample(*metric, timestamp, b, descriptor("x"), 1U);
        sample(*metric, timestamp, b, descriptor("y"), 1U);
        if (timestamp == 4'001'000ULL) sample(*metric, timestamp, a, descriptor("x"), 1U, 500'000);
    }
    metric->finalize();
    EXPECT_THAT(columns(SAMPLED), ElementsAre("Core", "Total # of samples", "Min sampling interval (msec)",
                                              "Max sampling interval (msec)", "Avg sampling interval (msec)"));
    EXPECT_THAT(rows(SAMPLED), ElementsAre(ElementsAre("A", "1", "0.25", "0.25", "0.25"),
                                           ElementsAre("B", "3", "1.00", "3.00", "2.00")));
    EXPECT_EQ(TableMessageType::TABLE_LAYOUT, session.writer.tablesNamed(SAMPLED).front().type);
}

TEST_F(SampleCountTest, CombinationsAloneMakeNoDescriptorColumn)
{
    auto metric = makeMetric(Type::TracedEvent);
    metric->setEntityDescriptorCombinations({{entity("A"), descriptor("x")}});
    sample(*metric, 2000, entity("B"), nullptr, 1U);
    session.log.clear();
    metric->finalize();
    EXPECT_THAT(rows("M Summary: Total Samples Received"), ElementsAre(ElementsAre("B", "1"), ElementsAre("A", "0")));
    EXPECT_FALSE(session.log.contains("wrong type"));
}

TEST_F(SampleCountTest, IntervalsAreToldAtInfoLevel)
{
    session.log.environment().setVerbosity(4);
    const EntityHandle* a = entity("A");
    const std::string key = std::to_string(a->getId());
    auto metric = makeMetric(Type::SampledValue);
    sample(*metric, 2000, a, nullptr, 1U);
    sample(*metric, 2300, a, nullptr, 1U);
    metric->finalize();
    for (const std::string& line :
         {std::string("SampleCountSummarizer::processMessage has timestamp = 2000\n"),
          "set key = " + key + " for A, <N/A>\n", std::string("A, <N/A> has prev = 2000, min = 300, max = 300\n"),
          "Key = " + key + ", Entity = A, Min = 300, Max = 300\n",
          std::string("Output config file entry not present for MetricContainer BOX and table type SAMPLE-COUNT.\n")}) {
        EXPECT_TRUE(session.log.contains("INFO: " + line)) << line;
    }
}

TEST_F(SampleCountTest, TableHasItsTitleFromTheConfigurationAndNoNotes)
{
    configure("ALL_FEAT_BOX_SAMPLE-COUNT_TITLE=Counted\n"
              "ALL_FEAT_BOX_SAMPLE-COUNT_PRE-TABLE-TEXT=note\n");
    auto metric = makeMetric(Type::SampledValue);
    sample(*metric, 2000, entity("A"), nullptr, 1U);
    metric->finalize();
    const auto pushes = session.writer.tablesNamed("Counted Summary - Sampled: Total Samples Received");
    ASSERT_EQ(2u, pushes.size());
    EXPECT_THAT(pushes[0].preNotes, IsEmpty());
    EXPECT_TRUE(pushes[0].isChildOfMetric);
    EXPECT_EQ(metric->getId(), pushes[0].metricId);
}

}    // namespace
