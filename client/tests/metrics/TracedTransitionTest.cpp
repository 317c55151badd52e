#include "metrics/MetricFixture.h"

using namespace pwr;
using test::COMBINED;
using test::PERCENTAGE;
using test::TIME;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::string COUNTS = "M Summary: Entry Counts";

// A clock of 1 MHz: 1000 ticks are a millisecond.
class TracedTransitionTest : public test::MetricFixture {
protected:
    TracedTransitionTest() { system.qvaClockFreqMHz = 1; }

    // Holds A for 100 ticks, B for 300 and A for 100.
    void feedStates(Metric& metric, const DataDescriptor* what = nullptr)
    {
        sample(metric, 1100, m_core0, what, *m_a);
        sample(metric, 1400, m_core0, what, *m_b);
        sample(metric, 1500, m_core0, what, *m_a);
    }

    const EntityHandle* m_core0 = entity("Core_0");
    const EntityHandle* m_core1 = entity("Core_1");
    const DataDescriptor* m_a = descriptor("A");
    const DataDescriptor* m_b = descriptor("B");
    const DataDescriptor* m_x = descriptor("x");
    const DataDescriptor* m_y = descriptor("y");
};

TEST_F(TracedTransitionTest, ValuesAreRowsAndEntitiesHaveColumns)
{
    auto metric = makeMetric(Type::TracedValueTransition, Quantity::frequency());
    metric->setValueGroupInfo(FieldDescription("State", ""));
    sample(*metric, 1700, m_core1, nullptr, *m_b);
    feedStates(*metric);
    EXPECT_EQ(0, metric->finalize());
    EXPECT_THAT(columns(PERCENTAGE), ElementsAre("State", "Core_0", "Core_1"));
    EXPECT_THAT(columns(COMBINED),
                ElementsAre("State", "Residency (%)", "Residency (msec)", "Residency (%)", "Residency (msec)"));
    EXPECT_THAT(rows(COMBINED), ElementsAre(ElementsAre("A", "40.00", "0.20", "0.00", "0.00"),
                                            ElementsAre("B", "60.00", "0.30", "100.00", "0.70")));
    EXPECT_THAT(columns(COUNTS), ElementsAre("State", "Core_0", "Core_1"));
    EXPECT_THAT(rows(COUNTS),
                ElementsAre(ElementsAre("A", "2", "0"), ElementsAre("B", "1", "1"), ElementsAre("Total", "3", "1")));
}

TEST_F(TracedTransitionTest, TransposedTablesLeaveTheCellsOfSilentEntitiesEmpty)
{
    configure(transposed({"RESIDENCY-MILLISECOND", "TRANSITION-COUNTS", "RESIDENCY-COMBINED"}));
    auto metric = makeMetric(Type::TracedValueTransition);
    metric->setEntityGroupInfo(FieldDescription("Core", ""));
    metric->setEntityDescriptorCombinations({{m_core1, nullptr}});
    feedStates(*metric);
    metric->finalize();
    EXPECT_THAT(columns(COMBINED), ElementsAre("Core", "A (%)", "B (%)", "A (msec)", "B (msec)"));
    EXPECT_THAT(rows(COMBINED), ElementsAre(ElementsAre("Core_0", "40.00", "60.00", "0.20", "0.30"),
                                            ElementsAre("Core_1", "", "", "", "")));
    EXPECT_THAT(columns(TIME), ElementsAre("Core", "A (msec)", "B (msec)"));
    EXPECT_THAT(columns(COUNTS), ElementsAre("", "Core_0", "Core_1")) << "has no transposed form";
}

// The tables are as many as descriptors have samples, whichever those are.
TEST_F(TracedTransitionTest, CombinationWithALowerDescriptorTakesATable)
{
    auto metric = makeMetric(Type::TracedValueTransition);
    metric->setEntityDescriptorCombinations({{m_core1, m_x}});
    feedStates(*metric, m_y);
    for (int round = 0; round < 2; ++round) {
        session.writer.clear();
        metric->finalize();
        EXPECT_THAT(session.writer.tableTitles(),
                    ElementsAre(PERCENTAGE + " for x", TIME + " for x", COUNTS + " for x", COMBINED + " for x"));
        EXPECT_THAT(rows(PERCENTAGE + " for x"), IsEmpty());
        EXPECT_THAT(rows(COUNTS + " for x"), ElementsAre(ElementsAre("Total", "0", "0")));
    }

    // Samples of a descriptor that was only promised before add a table.
    sample(*metric, 2000, m_core1, m_x, *m_b);
    session.writer.clear();
    metric->finalize();
    EXPECT_THAT(rows(COUNTS + " for x"), ElementsAre(ElementsAre("B", "0", "1"), ElementsAre("Total", "0", "1")));
    EXPECT_THAT(rows(TIME + " for y"), ElementsAre(ElementsAre("A", "0.20", "0.00"), ElementsAre("B", "0.30", "0.00")));
}

TEST_F(TracedTransitionTest, TotalIsWrittenEvenIfItsNameDoesNotFitTheValues)
{
    configure("ALL_FEAT_BOX_TRANSITION-COUNTS_SUPPRESS-TOTAL=YES\n"
              "ALL_FEAT_BOX_TRANSITION-COUNTS_TITLE=Clock\n"
              "ALL_FEAT_BOX_TRANSITION-COUNTS_POST-TABLE-TEXT=behind\n"
              "ALL_FEAT_BOX_RESIDENCY-COMBINED_TABLE=NO\n");
    auto metric = makeMetric(Type::TracedValueTransition);
    sample(*metric, 1100, m_core0, nullptr, 1600U);
    sample(*metric, 1200, m_core0, nullptr, 800U);
    session.log.clear();
    EXPECT_EQ(0, metric->finalize());
    EXPECT_THAT(session.writer.tableTitles(), ElementsAre("Clock Summary: Entry Counts", PERCENTAGE, TIME));
    EXPECT_THAT(rows("Clock Summary: Entry Counts"),
                ElementsAre(ElementsAre("800", "1"), ElementsAre("1600", "1"), ElementsAre("", "2")));
    EXPECT_EQ(1u, session.log.count("WARNING: Invalid attempt to initialize data of the wrong type"));
    EXPECT_THAT(session.writer.tablesNamed("Clock Summary: Entry Counts").front().postNotes, ElementsAre("behind"));
}

TEST_F(TracedTransitionTest, TablesAndFiguresAreToldAtInfoLevel)
{
    session.log.environment().setVerbosity(4);
    auto metric = makeMetric(Type::TracedValueTransition);
    metric->setEntityDescriptorCombinations({{m_core1, nullptr}});
    feedStates(*metric);
    metric->finalize();
    EXPECT_TRUE(session.log.contains("INFO: Metric: BOX, SSSSSummary table: TRANSITION-COUNTS\n"
                                     "INFO: Output config file entry not present for MetricContainer BOX and table "
                                     "type TRANSITION-COUNTS.\n"));
    EXPECT_EQ(3u, session.log.count("INFO: timestamp freq=1.000000 residency=200, total duration=500\n"));
    EXPECT_EQ(6u, session.log.count("INFO: timestamp freq="));
}

}    // namespace
