#include "metrics/MetricFixture.h"

using namespace pwr;
using test::COMBINED;
using test::PERCENTAGE;
using test::TIME;
using testing::ElementsAre;

namespace {

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
    EXPECT_THAT(columns(PERCENTAGE), ElementsAre("State", "Core_0", "Core_1"));
    EXPECT_THAT(columns(COMBINED),
                ElementsAre("State", "Residency (%)", "Residency (msec)", "Residency (%)", "Residency (msec)"));
    EXPECT_THAT(rows(COMBINED), ElementsAre(ElementsAre("B", "0.00", "0.00", "70.00", "0.70"),
                                            ElementsAre("A", "25.00", "0.25", "30.00", "0.30")));
}

TEST_F(SampledResidencyTest, TransposedTableHasAllPercentagesBeforeAllTimes)
{
    configure(transposed({"RESIDENCY-MILLISECOND", "RESIDENCY-COMBINED"}));
    auto metric = makeMetric(Type::SampledResidency);
    metric->setEntityGroupInfo(FieldDescription("Core", ""));
    sample(*metric, 2000, m_core1, m_b, 700U);
    sample(*metric, 2000, m_core1, m_a, 300U);
    metric->finalize();
    EXPECT_THAT(columns(COMBINED), ElementsAre("Core", "B (%)", "A (%)", "B (msec)", "A (msec)"));
    EXPECT_THAT(rows(COMBINED), ElementsAre(ElementsAre("Core_1", "70.00", "30.00", "0.70", "0.30")));
    EXPECT_THAT(columns(TIME), ElementsAre("Core", "B (msec)", "A (msec)"));
}

TEST_F(SampledResidencyTest, NullDescriptorIsSkippedWithAWarning)
{
    for (const bool isTransposed : {false, true}) {
        session.writer.clear();
        configure(isTransposed ? transposed({"RESIDENCY-PERCENTAGE"}) : "");
        auto metric = makeMetric(Type::SampledResidency);
        metric->setEntityDescriptorCombinations({{m_core0, nullptr}, {m_core0, m_a}});
        sample(*metric, 2000, m_core0, m_a, 500U);
        session.log.clear();
        EXPECT_EQ(0, metric->finalize());
        EXPECT_EQ(3u, session.log.count("WARNING: MetricType::SampledResidency: Descriptor is not valid\n"));
        EXPECT_THAT(rows(PERCENTAGE), ElementsAre(ElementsAre(isTransposed ? "Core_0" : "A", "50.00")));
    }
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
