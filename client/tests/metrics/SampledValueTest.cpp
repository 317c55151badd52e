#include "metrics/MetricFixture.h"

#include <limits>

using namespace pwr;
using testing::ElementsAre;

namespace {

const std::string MIN_MAX_AVG = "M Summary - Sampled: Min/Max/Avg";
const std::string COUNTS = "M Summary - Sampled: Counts";
const std::string SHARES = "M Summary - Sampled: Sample Distribution";
const std::string TIMES = "M Summary - Sampled: Residency (Percentage)";

class SampledValueTest : public test::MetricFixture {
protected:
    // Values that an entity held one after the other, each for `ticks`, from tick 1000 on.
    template <typename T>
    static void feed(Metric& metric, const EntityHandle* about, const DataDescriptor* what,
                     const std::vector<T>& values, unsigned long long ticks = 1000)
    {
        unsigned long long timestamp = 1000;
        for (const T& value : values)
            sample(metric, timestamp += ticks, about, what, value);
    }

    const EntityHandle* m_zed = entity("zed");    // an id below that of "abe"
    const EntityHandle* m_abe = entity("abe");
};

TEST_F(SampledValueTest, AveragesAreWeightedByTheExactTime)
{
    auto metric = makeMetric(Type::SampledValue, Quantity::temperature());
    metric->setEntityGroupInfo(FieldDescription("Core", ""));
    sample(*metric, 2000, m_zed, nullptr, 1);
    sample(*metric, 4000, m_zed, nullptr, 2);
    sample(*metric, 7000, m_zed, nullptr, 3);
    metric->finalize();
    const std::string units = " (" + Quantity::temperature()->toUnitsString() + ")";
    EXPECT_THAT(columns(MIN_MAX_AVG),
                ElementsAre("Core", "Min" + units, "Max" + units, "Avg" + units, "Time-weighted Avg" + units));
    EXPECT_THAT(rows(MIN_MAX_AVG), ElementsAre(ElementsAre("zed", "1", "3", "2.00", "2.33")));
    std::string title;
    Quantity::temperature()->toTitleString(title);
    EXPECT_THAT(columns(COUNTS), ElementsAre(title, "zed"));
}

TEST_F(SampledValueTest, ConfiguredTablesComeFirstWithTheirTitlesAndNotes)
{
    configure("ALL_FEAT_BOX_MIN-MAX_TITLE=Extremes\n"
              "ALL_FEAT_BOX_NO-SUCH-TABLE_TITLE=x\n"
              "ALL_FEAT_BOX_MIN-MAX_PRE-TABLE-TEXT=before\n"
              "ALL_FEAT_BOX_MIN-MAX_POST-TABLE-TEXT=behind\n"
              "ALL_FEAT_BOX_RELATIVE-FREQUENCY-PERCENTAGE_TABLE=NO\n"
              "ALL_FEAT_BOX_MIN-MAX-AVG_TABLE=no\n"
              "ALL_FEAT_BOX_NUMBER-OF-OCCURENCES_TABLE=YES\n");
    auto metric = makeMetric(Type::SampledValue);
    EXPECT_FALSE(session.log.contains("Output config table entries not present"));
    feed<int>(*metric, m_zed, nullptr, {1});
    metric->finalize();
    EXPECT_THAT(session.writer.tableTitles(), ElementsAre("Extremes Summary - Sampled: Min/Max", COUNTS,
                                                          "M Summary - Sampled: Total Samples Received", TIMES));
    const test::RecordedTable table = session.writer.tablesNamed("Extremes Summary - Sampled: Min/Max").front();
    EXPECT_THAT(table.preNotes, ElementsAre("before"));
    EXPECT_THAT(table.postNotes, ElementsAre("behind"));
    EXPECT_TRUE(table.isChildOfMetric);
}

TEST_F(SampledValueTest, NoSummaryAtAllIsToldAndFine)
{
    std::string statements;
    for (const char* type : {"SAMPLE-COUNT", "MIN-MAX-AVG", "NUMBER-OF-OCCURENCES", "RELATIVE-FREQUENCY-PERCENTAGE",
                             "MIN-MAX", "APPROXIMATED-RESIDENCY"})
        statements += std::string("ALL_FEAT_BOX_") + type + "_TABLE=NO\n";
    configure(statements);
    session.log.environment().setVerbosity(3);
    auto metric = makeMetric(Type::SampledValue);
    feed<int>(*metric, m_zed, nullptr, {1});
    EXPECT_EQ(0, metric->finalize());
    EXPECT_TRUE(session.log.contains("DEBUG: M: No summary or -r int output enabled.\n"));
    EXPECT_TRUE(session.writer.tables.empty());
}

TEST_F(SampledValueTest, SamplesWithoutWeightOrNumberAreTold)
{
    auto numbers = makeMetric(Type::SampledValue);
    sample(*numbers, 2000, m_zed, nullptr, 1U, Metric::RESET_DURATION);
    sample(*numbers, 3000, m_zed, nullptr, 1U, Metric::RESET_DURATION);
    EXPECT_EQ(0, numbers->finalize());
    EXPECT_EQ(2u, session.log.count("WARNING: SampledValueAccumulator has zero weight!\n"));

    auto texts = makeMetric(Type::SampledValue);
    feed<std::string>(*texts, m_zed, nullptr, {"on"});
    EXPECT_EQ(0, texts->finalize());
    EXPECT_EQ(2u, session.log.count("WARNING: Unable to provide min/max/avg summary for non-numeric data.\n"));
}

TEST_F(SampledValueTest, UnknownClockGivesNoUndefinedFigures)
{
    system.qvaClockFreqMHz = 0;
    auto metric = makeMetric(Type::SampledValue);
    feed<double>(*metric, m_zed, nullptr, {1.0, 1e300, std::numeric_limits<double>::quiet_NaN()});
    EXPECT_EQ(0, metric->finalize());
    EXPECT_EQ(3u, rows(COUNTS).size());
}

TEST_F(SampledValueTest, ValueColumnIsNamedByGroupOrDescriptorAndTheOthersByEntity)
{
    const DataDescriptor* x = descriptor("x");
    auto bare = makeMetric(Type::SampledValue, Quantity::power());
    sample(*bare, 2000, m_abe, x, 5);
    sample(*bare, 2000, m_zed, x, 6);
    bare->finalize();
    EXPECT_THAT(columns(COUNTS), ElementsAre("x (mW)", "zed", "abe"));
    EXPECT_THAT(columns(SHARES), ElementsAre("x (mW)", "zed (%)", "abe (%)"));

    session.writer.clear();
    auto grouped = makeMetric(Type::SampledValue, Quantity::power());
    grouped->setValueGroupInfo(FieldDescription("Power", ""));
    feed<int>(*grouped, m_zed, x, {1});
    grouped->finalize();
    EXPECT_THAT(columns(COUNTS + " (mW)"), ElementsAre("Power", "zed"));
    EXPECT_THAT(columns(TIMES + " (mW)"), ElementsAre("Power", "zed (%)"));
}

TEST_F(SampledValueTest, ElementsWithoutDescriptorBesideOthersHaveATableWithoutAName)
{
    configure(transposed({"NUMBER-OF-OCCURENCES"}));
    auto metric = makeMetric(Type::SampledValue, Quantity::power());
    sample(*metric, 2000, m_zed, descriptor("x"), 1);
    sample(*metric, 2000, m_zed, descriptor("y"), 2);
    sample(*metric, 2000, m_zed, nullptr, 3);
    EXPECT_EQ(0, metric->finalize());
    EXPECT_THAT(rows(COUNTS), ElementsAre(ElementsAre("zed", "1")));
    EXPECT_THAT(columns(COUNTS + " for y"), ElementsAre("", "2"));
    EXPECT_THAT(rows("M Summary - Sampled: Min/Max"),
                ElementsAre(ElementsAre("zed", "", "3", "3"), ElementsAre("zed", "x", "1", "1"),
                            ElementsAre("zed", "y", "2", "2")));
}

TEST_F(SampledValueTest, TransposedTablesHaveValuesAsColumns)
{
    configure(transposed({"NUMBER-OF-OCCURENCES", "RELATIVE-FREQUENCY-PERCENTAGE", "APPROXIMATED-RESIDENCY"}));
    for (const bool isSuppressed : {false, true}) {
        session.writer.clear();
        auto metric = makeMetric(Type::SampledValue);
        metric->setEntityGroupInfo(FieldDescription("Core", ""));
        metric->setSuppressEntityInfoInSummary(isSuppressed);
        feed<unsigned>(*metric, entity("leaf", m_zed), nullptr, {4, 9, 9});
        metric->finalize();
        EXPECT_THAT(columns(COUNTS), ElementsAre("Core", "4", "9"));
        EXPECT_THAT(columns(SHARES), ElementsAre("Core", "4 (%)", "9 (%)"));
        EXPECT_THAT(rows(SHARES), ElementsAre(ElementsAre("zed/leaf", "33.33", "66.67")));
        const test::Row named = {"Core", "4 (%)", "9 (%)"};
        EXPECT_EQ(isSuppressed ? test::Row(named.begin() + 1, named.end()) : named, columns(TIMES));
    }
}

TEST_F(SampledValueTest, ValueThatIsNotUsableCountsAsOneValue)
{
    auto metric = makeMetric(Type::SampledValue);
    DataElement element(m_zed, nullptr);
    element.setValue(5U);
    element.setValue("no number");    // leaves it invalid
    EXPECT_EQ(0, metric->setData(2000, element, 0));
    sample(*metric, 3000, m_zed, nullptr, 3U);
    EXPECT_EQ(0, metric->finalize());
    EXPECT_THAT(rows(COUNTS), ElementsAre(ElementsAre("", "1"), ElementsAre("3", "1")));
}

}    // namespace
