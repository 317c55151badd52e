#include "metrics/MetricFixture.h"

using namespace pwr;
using testing::ElementsAre;

namespace {

const std::string PERCENTAGE = "M Summary: Residency (Percentage)";
const std::string TIME = "M Summary: Residency (Time)";
const std::string COMBINED = "M Summary: Residency (Percentage and Time)";

const char* const TRANSPOSED = "ALL_FEAT_BOX_RESIDENCY-PERCENTAGE_TRANSPOSE=YES\n"
                               "ALL_FEAT_BOX_RESIDENCY-MILLISECOND_TRANSPOSE=YES\n"
                               "ALL_FEAT_BOX_RESIDENCY-COMBINED_TRANSPOSE=YES\n";

class SampledResidencyTest : public test::MetricFixture {
protected:
    SampledResidencyTest() { system.qvaClockFreqMHz = 1; }

    const EntityHandle* m_core0 = entity("Core_0");
    const EntityHandle* m_core1 = entity("Core_1");
    const DataDescriptor* m_a = descriptor("A");
    const DataDescriptor* m_b = descriptor("B");
};

TEST_F(SampledResidencyTest, StatesAreRowsAndEntitiesHaveColumns)
{
    auto metric = makeMetric(Type::SampledResidency);
    metric->setDescriptorGroupInfo(FieldDescription("State", ""));
    sample(*metric, 2000, m_core1, m_b, 700U);
    sample(*metric, 2000, m_core1, m_a, 300U);
    sample(*metric, 2000, m_core0, m_a, 250U);    // the rest stays unaccounted for
    metric->finalize();
    EXPECT_THAT(session.writer.tableTitles(),
                ElementsAre("M Summary: Total Samples Received", PERCENTAGE, TIME, COMBINED));
    EXPECT_THAT(columns(PERCENTAGE), ElementsAre("State", "Core_0", "Core_1"));
    EXPECT_THAT(rows(PERCENTAGE), ElementsAre(ElementsAre("B", "0.00", "70.00"), ElementsAre("A", "25.00", "30.00")));
    EXPECT_THAT(rows(TIME), ElementsAre(ElementsAre("B", "0.00", "0.70"), ElementsAre("A", "0.25", "0.30")));
    EXPECT_THAT(columns(COMBINED),
                ElementsAre("State", "Residency (%)", "Residency (msec)", "Residency (%)", "Residency (msec)"));
    EXPECT_THAT(rows(COMBINED), ElementsAre(ElementsAre("B", "0.00", "0.00", "70.00", "0.70"),
                                            ElementsAre("A", "25.00", "0.25", "30.00", "0.30")));
}

TEST_F(SampledResidencyTest, TransposedTableHasAllPercentagesBeforeAllTimes)
{
    configure(TRANSPOSED);
    auto metric = makeMetric(Type::SampledResidency);
    metric->setEntityGroupInfo(FieldDescription("Core", ""));
    sample(*metric, 2000, m_core1, m_b, 700U);
    sample(*metric, 2000, m_core1, m_a, 300U);
    sample(*metric, 2000, m_core0, m_a, 250U);
    metric->finalize();
    EXPECT_THAT(columns(COMBINED), ElementsAre("Core", "B (%)", "A (%)", "B (msec)", "A (msec)"));
    EXPECT_THAT(rows(COMBINED), ElementsAre(ElementsAre("Core_0", "0.00", "25.00", "0.00", "0.25"),
                                            ElementsAre("Core_1", "70.00", "30.00", "0.70", "0.30")));
    EXPECT_THAT(columns(TIME), ElementsAre("Core", "B (msec)", "A (msec)"));
    EXPECT_THAT(rows(PERCENTAGE),
                ElementsAre(ElementsAre("Core_0", "0.00", "25.00"), ElementsAre("Core_1", "70.00", "30.00")));
}

TEST_F(SampledResidencyTest, DurationOfAnEntityGrowsOncePerSamplingPoint)
{
    auto metric = makeMetric(Type::SampledResidency);
    sample(*metric, 2000, m_core0, m_a, 500U);
    sample(*metric, 2000, m_core0, m_b, 100U);
    sample(*metric, 5000, m_core0, m_a, 500U);
    sample(*metric, 5000, m_core0, m_b, 100U);
    metric->finalize();
    EXPECT_THAT(rows(PERCENTAGE), ElementsAre(ElementsAre("A", "25.00"), ElementsAre("B", "5.00")));
}

TEST_F(SampledResidencyTest, CombinationsFixTheOrderAndBringSilentStates)
{
    auto metric = makeMetric(Type::SampledResidency);
    metric->setEntityDescriptorCombinations({{m_core0, descriptor("Z")}, {m_core0, m_b}, {m_core0, m_a}});
    sample(*metric, 2000, m_core0, m_a, 500U);
    metric->finalize();
    EXPECT_THAT(rows(PERCENTAGE),
                ElementsAre(ElementsAre("Z", "0.00"), ElementsAre("B", "0.00"), ElementsAre("A", "50.00")));
}

// The layout of the first table is made before the combinations are looked at, those of the others after.
TEST_F(SampledResidencyTest, EntityOfACombinationAloneComesTooLateForTheFirstTable)
{
    auto metric = makeMetric(Type::SampledResidency);
    metric->setEntityDescriptorCombinations({{m_core1, m_a}});
    sample(*metric, 2000, m_core0, m_a, 500U);
    session.log.clear();
    EXPECT_EQ(0, metric->finalize());
    EXPECT_THAT(rows(PERCENTAGE), ElementsAre(ElementsAre("A", "50.00")));
    EXPECT_EQ(1u, session.log.count("WARNING: No such entity Core_1 found in table " + PERCENTAGE));
    EXPECT_THAT(rows(TIME), ElementsAre(ElementsAre("A", "0.50", "0.00")));
}

TEST_F(SampledResidencyTest, NullDescriptorIsSkippedWithAWarning)
{
    for (const char* orientation : {"", TRANSPOSED}) {
        session.writer.clear();
        configure(orientation);
        auto metric = makeMetric(Type::SampledResidency);
        metric->setEntityDescriptorCombinations({{m_core0, nullptr}, {m_core0, m_a}});
        sample(*metric, 2000, m_core0, m_a, 500U);
        session.log.clear();
        EXPECT_EQ(0, metric->finalize());
        EXPECT_EQ(3u, session.log.count("WARNING: MetricType::SampledResidency: Descriptor is not valid\n"));
        EXPECT_THAT(rows(PERCENTAGE), ElementsAre(ElementsAre(orientation[0] == 0 ? "A" : "Core_0", "50.00")));
    }
}

TEST_F(SampledResidencyTest, ResetWithoutTicksHasNoShare)
{
    auto metric = makeMetric(Type::SampledResidency);
    sample(*metric, 2000, m_core0, m_a, 0U, Metric::RESET_DURATION);
    EXPECT_EQ(0, metric->finalize());
    EXPECT_THAT(rows(PERCENTAGE).at(0).at(1), testing::HasSubstr("nan"));
    EXPECT_THAT(rows(TIME), ElementsAre(ElementsAre("A", "0.00")));
}

TEST_F(SampledResidencyTest, MetricWhoseOnlyPointWasDroppedHasTablesWithoutRows)
{
    auto metric = makeMetric(Type::SampledResidency);
    metric->setEntityDescriptorCombinations({{m_core0, m_a}});
    sample(*metric, 2000, m_core0, m_a, 5000U);
    EXPECT_EQ(0, metric->finalize());    // nothing was ever initialised
    EXPECT_EQ(4u, session.writer.tableTitles().size());
    EXPECT_THAT(rows(TIME), ElementsAre(ElementsAre("A", "0.00")));
}

TEST_F(SampledResidencyTest, FiguresAreToldAtInfoLevel)
{
    session.log.environment().setVerbosity(4);
    auto metric = makeMetric(Type::SampledResidency);
    sample(*metric, 2000, m_core0, m_a, 500U);
    metric->finalize();
    EXPECT_EQ(4u, session.log.count("INFO: timestamp freq=1.000000 residency=500, total duration=1000\n"));
    EXPECT_TRUE(session.log.contains(
        "INFO: Output config file entry not present for MetricContainer BOX and table type RESIDENCY-COMBINED.\n"));
}

}    // namespace
