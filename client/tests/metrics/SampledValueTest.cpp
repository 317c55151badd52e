#include "metrics/MetricFixture.h"

#include <limits>

using namespace pwr;
using testing::ElementsAre;
using testing::ElementsAreArray;

namespace {

const std::string MIN_MAX_AVG = "M Summary - Sampled: Min/Max/Avg";
const std::string COUNTS = "M Summary - Sampled: Counts";
const std::string SHARES = "M Summary - Sampled: Sample Distribution";
const std::string TIMES = "M Summary - Sampled: Residency (Percentage)";

const char* const TRANSPOSED = "ALL_FEAT_BOX_NUMBER-OF-OCCURENCES_TRANSPOSE=YES\n"
                               "ALL_FEAT_BOX_RELATIVE-FREQUENCY-PERCENTAGE_TRANSPOSE=YES\n"
                               "ALL_FEAT_BOX_APPROXIMATED-RESIDENCY_TRANSPOSE=YES\n";

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
    EXPECT_THAT(rows("M Summary - Sampled: Min/Max"), ElementsAre(ElementsAre("zed", "1", "3")));
    std::string title;
    Quantity::temperature()->toTitleString(title);
    EXPECT_THAT(columns(COUNTS), ElementsAre(title, "zed"));
}

TEST_F(SampledValueTest, TablesComeInTheOrderOfTheirNumbers)
{
    auto metric = makeMetric(Type::SampledValue);
    feed<int>(*metric, m_zed, nullptr, {1});
    metric->finalize();
    EXPECT_THAT(session.writer.tableTitles(), ElementsAre("M Summary - Sampled: Total Samples Received", MIN_MAX_AVG,
                                                          COUNTS, SHARES, "M Summary - Sampled: Min/Max", TIMES));
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
    configure("ALL_FEAT_BOX_SAMPLE-COUNT_TABLE=NO\n"
              "ALL_FEAT_BOX_MIN-MAX-AVG_TABLE=NO\n"
              "ALL_FEAT_BOX_NUMBER-OF-OCCURENCES_TABLE=NO\n"
              "ALL_FEAT_BOX_RELATIVE-FREQUENCY-PERCENTAGE_TABLE=NO\n"
              "ALL_FEAT_BOX_MIN-MAX_TABLE=NO\n"
              "ALL_FEAT_BOX_APPROXIMATED-RESIDENCY_TABLE=NO\n");
    session.log.environment().setVerbosity(3);
    auto metric = makeMetric(Type::SampledValue);
    feed<int>(*metric, m_zed, nullptr, {1});
    EXPECT_EQ(0, metric->finalize());
    EXPECT_TRUE(session.log.contains("DEBUG: M: No summary or -r int output enabled.\n"));
    EXPECT_TRUE(session.writer.tables.empty());
}

TEST_F(SampledValueTest, ValuesAreCountedPerEntityWithColumnsByEntityId)
{
    auto metric = makeMetric(Type::SampledValue);
    feed<unsigned>(*metric, m_abe, nullptr, {9, 4, 9, 9});
    auto other = makeMetric(Type::SampledValue);
    metric->finalize();
    EXPECT_THAT(columns(COUNTS), ElementsAre("", "abe"));

    session.writer.clear();
    unsigned long long timestamp = 1000;
    for (const unsigned value : {9U, 4U, 9U, 9U}) {
        timestamp += 1000;
        sample(*other, timestamp, m_abe, nullptr, value);
        sample(*other, timestamp, m_zed, nullptr, 7U);
    }
    other->finalize();
    EXPECT_THAT(columns(COUNTS), ElementsAre("", "zed", "abe"));
    EXPECT_THAT(rows(COUNTS),
                ElementsAre(ElementsAre("4", "0", "1"), ElementsAre("7", "4", "0"), ElementsAre("9", "0", "3")));
    EXPECT_THAT(columns(SHARES), ElementsAre("", "zed (%)", "abe (%)"));
    EXPECT_THAT(rows(SHARES), ElementsAre(ElementsAre("4", "0.00", "25.00"), ElementsAre("7", "100.00", "0.00"),
                                          ElementsAre("9", "0.00", "75.00")));
}

TEST_F(SampledValueTest, ResidencyCountsWholeMicroseconds)
{
    auto metric = makeMetric(Type::SampledValue);
    sample(*metric, 2499, m_zed, nullptr, 10U);    // 1.499 us
    sample(*metric, 3999, m_zed, nullptr, 20U);    // 1.5 us
    metric->finalize();
    EXPECT_THAT(rows(TIMES), ElementsAre(ElementsAre("10", "33.33"), ElementsAre("20", "66.67")));
    EXPECT_THAT(rows(MIN_MAX_AVG), ElementsAre(ElementsAre("zed", "10", "20", "15.00", "15.00")));    // 44.99 / 3
}

TEST_F(SampledValueTest, ResetsWeighNothing)
{
    auto metric = makeMetric(Type::SampledValue);
    sample(*metric, 2000, m_zed, nullptr, 1U, Metric::RESET_DURATION);
    sample(*metric, 3000, m_zed, nullptr, 1U, Metric::RESET_DURATION);
    metric->finalize();
    EXPECT_EQ(2u, session.log.count("WARNING: SampledValueAccumulator has zero weight!\n"));
    EXPECT_THAT(rows(MIN_MAX_AVG).at(0).at(4), testing::HasSubstr("nan"));
    EXPECT_THAT(rows(TIMES).at(0).at(1), testing::HasSubstr("nan"));
    EXPECT_THAT(rows(SHARES), ElementsAre(ElementsAre("1", "100.00")));
}

TEST_F(SampledValueTest, UnknownClockGivesNoUndefinedFigures)
{
    system.qvaClockFreqMHz = 0;
    auto metric = makeMetric(Type::SampledValue);
    feed<double>(*metric, m_zed, nullptr, {1.0, 1e300, std::numeric_limits<double>::quiet_NaN()});
    EXPECT_EQ(0, metric->finalize());
    EXPECT_EQ(3u, rows(COUNTS).size());
}

TEST_F(SampledValueTest, FiniteSetLeadsTheRows)
{
    const DataDescriptor* a = descriptor("A");
    const DataDescriptor* b = descriptor("B");
    const DataDescriptor* c = descriptor("C");
    const DataDescriptor* d = descriptor("D");
    configure("ALL_FEAT_BOX_RELATIVE-FREQUENCY-PERCENTAGE_TRANSPOSE=YES\n");
    auto metric = makeMetric(Type::SampledValue);
    metric->setFiniteSetValues({c, b, a});
    sample(*metric, 2000, m_zed, nullptr, *d);
    sample(*metric, 3000, m_zed, nullptr, *c);
    metric->finalize();
    EXPECT_THAT(rows(COUNTS), ElementsAre(ElementsAre("C", "1"), ElementsAre("B", "0"), ElementsAre("A", "0"),
                                          ElementsAre("D", "1")));
    EXPECT_THAT(columns(SHARES), ElementsAre("", "C (%)", "B (%)", "A (%)", "D (%)"));
    EXPECT_TRUE(session.log.contains("WARNING: Unable to provide min/max/avg summary for non-numeric data.\n"));
}

TEST_F(SampledValueTest, TextsAreSortedAndHaveNoMinimum)
{
    auto metric = makeMetric(Type::SampledValue);
    feed<std::string>(*metric, m_zed, nullptr, {"on", "idle", "off", "on"});
    metric->finalize();
    EXPECT_TRUE(session.writer.tablesNamed(MIN_MAX_AVG).empty());
    EXPECT_EQ(2u, session.log.count("WARNING: Unable to provide min/max/avg summary for non-numeric data.\n"));
    EXPECT_THAT(rows(COUNTS), ElementsAre(ElementsAre("idle", "1"), ElementsAre("off", "1"), ElementsAre("on", "2")));
}

TEST_F(SampledValueTest, EachOfSeveralDescriptorsHasATableThatNamesIt)
{
    const DataDescriptor* x = descriptor("x");
    const DataDescriptor* y = descriptor("y");
    auto one = makeMetric(Type::SampledValue, Quantity::power());
    feed<int>(*one, m_zed, x, {1, 2});
    one->finalize();
    EXPECT_THAT(columns(COUNTS), ElementsAre("x (mW)", "zed"));
    EXPECT_THAT(rows(MIN_MAX_AVG).at(0), ElementsAre("zed", "x", "1", "2", "1.50", "1.50"));

    session.writer.clear();
    auto two = makeMetric(Type::SampledValue, Quantity::power());
    two->setValueGroupInfo(FieldDescription("Power", ""));
    sample(*two, 2000, m_abe, y, 5);
    sample(*two, 2000, m_zed, y, 6);
    sample(*two, 2000, m_abe, x, 7);
    two->finalize();
    EXPECT_THAT(columns(COUNTS + " for x (mW)"), ElementsAre("Power", "abe"));
    EXPECT_THAT(columns(COUNTS + " for y (mW)"), ElementsAre("Power", "zed", "abe"));
    EXPECT_THAT(rows(COUNTS + " for y (mW)"), ElementsAre(ElementsAre("5", "0", "1"), ElementsAre("6", "1", "0")));
    const auto minMax = rows("M Summary - Sampled: Min/Max");
    EXPECT_THAT(minMax, ElementsAre(ElementsAre("zed", "y", "6", "6"), ElementsAre("abe", "x", "7", "7"),
                                    ElementsAre("abe", "y", "5", "5")));
}

TEST_F(SampledValueTest, ElementsWithoutDescriptorBesideOthersHaveATableWithoutAName)
{
    configure(TRANSPOSED);
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

TEST_F(SampledValueTest, TransposedTablesHaveEntitiesAsRows)
{
    configure(TRANSPOSED);
    for (const bool suppressed : {false, true}) {
        session.writer.clear();
        auto metric = makeMetric(Type::SampledValue);
        metric->setEntityGroupInfo(FieldDescription("Core", ""));
        metric->setSuppressEntityInfoInSummary(suppressed);
        feed<unsigned>(*metric, entity("leaf", m_zed), nullptr, {4, 9, 9});
        metric->finalize();
        EXPECT_THAT(columns(COUNTS), ElementsAre("Core", "4", "9"));
        EXPECT_THAT(rows(COUNTS), ElementsAre(ElementsAre("zed/leaf", "1", "2")));
        EXPECT_THAT(columns(SHARES), ElementsAre("Core", "4 (%)", "9 (%)"));
        EXPECT_THAT(rows(SHARES), ElementsAre(ElementsAre("zed/leaf", "33.33", "66.67")));
        if (suppressed) {
            EXPECT_THAT(columns(TIMES), ElementsAre("4 (%)", "9 (%)"));
            EXPECT_THAT(rows(TIMES), ElementsAre(ElementsAre("33.3", "66.7")));
        } else {
            EXPECT_THAT(columns(TIMES), ElementsAre("Core", "4 (%)", "9 (%)"));
            EXPECT_THAT(rows(TIMES), ElementsAre(ElementsAre("zed/leaf", "33.3", "66.7")));
        }
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

TEST_F(SampledValueTest, ManyEntitiesAndValuesThatNeverRepeatAreKeptInOrder)
{
    auto metric = makeMetric(Type::SampledValue);
    std::vector<const EntityHandle*> entities;
    for (int i = 0; i < 20; ++i)
        entities.push_back(entity("E" + std::to_string(i)));
    unsigned value = 1000;
    for (unsigned long long timestamp = 2000; timestamp < 52000; timestamp += 1000) {
        for (auto it = entities.rbegin(); it != entities.rend(); ++it)
            sample(*metric, timestamp, *it, nullptr, --value);
    }
    metric->finalize();
    const auto cells = rows(COUNTS);
    ASSERT_EQ(1000u, cells.size());
    EXPECT_EQ("0", cells[0][0]);
    EXPECT_EQ("999", cells[999][0]);
    EXPECT_EQ("E0", columns(COUNTS)[1]);
    EXPECT_EQ("1", cells[0][1]);    // the last sample was that of E0
    EXPECT_EQ("1", cells[999][20]);
}

}    // namespace
