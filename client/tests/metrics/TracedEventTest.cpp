#include "metrics/MetricFixture.h"

using namespace pwr;
using testing::ElementsAre;

namespace {

const std::string NAMES = "M Summary: Type Count";
const std::string TOP = "M Summary: Top 10 Most-Frequent";

class TracedEventTest : public test::MetricFixture {
protected:
    // Events one after the other.
    template <typename T>
    void feed(Metric& metric, const EntityHandle* about, const DataDescriptor* what, const T& value, int times = 1)
    {
        for (int i = 0; i < times; ++i)
            ASSERT_EQ(0, sample(metric, m_timestamp += 10, about, what, value));
    }

    // All pushes of a top table: it has no header in front of its rows.
    std::vector<test::Row> topRows(const std::string& title) const
    {
        std::vector<test::Row> cells;
        for (const test::RecordedTable& push : session.writer.tablesNamed(title))
            cells.push_back(push.cells);
        return cells;
    }

    unsigned long long m_timestamp = 1000;
    const EntityHandle* m_zed = entity("zed");    // an id below that of "abe"
    const EntityHandle* m_abe = entity("abe");
    const Event* m_start = Event::create(EventDescription("start", ""));
    const Event* m_end = Event::create(EventDescription("end", ""));
};

TEST_F(TracedEventTest, NamesAreCountedForEachEntity)
{
    configure("ALL_FEAT_BOX_EVENT-NAME-COUNTS_PRE-TABLE-TEXT=before\n"
              "ALL_FEAT_BOX_TOP-TEN-EVENT_POST-TABLE-TEXT=behind\n");
    auto metric = makeMetric(Type::TracedEvent);
    metric->setValueGroupInfo(FieldDescription("Event", ""));
    metric->setEntityDescriptorCombinations({{entity("silent"), nullptr}});
    feed(*metric, m_abe, nullptr, *m_start, 2);
    feed(*metric, m_zed, nullptr, *m_start);
    feed(*metric, m_zed, nullptr, *m_end, 3);
    EXPECT_EQ(0, metric->finalize());
    EXPECT_THAT(session.writer.tableTitles(),
                ElementsAre(NAMES, TOP + " for zed", TOP + " for abe", "M Summary: Total Samples Received"));
    EXPECT_THAT(columns(NAMES), ElementsAre("Event", "zed", "abe", "silent"));
    EXPECT_THAT(rows(NAMES), ElementsAre(ElementsAre("end", "3", "0", "0"), ElementsAre("start", "1", "2", "0")));
    EXPECT_THAT(session.writer.tablesNamed(NAMES).front().preNotes, ElementsAre("before"));
    EXPECT_THAT(columns(TOP + " for zed"), ElementsAre("Event", "Count"));
    EXPECT_THAT(topRows(TOP + " for zed"), ElementsAre(ElementsAre("end", "3"), ElementsAre("start", "1")));
    EXPECT_THAT(session.writer.tablesNamed(TOP + " for abe").front().postNotes, ElementsAre("behind"));
}

// Two handles of one name are one name and two values.
TEST_F(TracedEventTest, HandlesOfOneNameShareItsCount)
{
    EventDescription description("start", "");
    description.addAttributeValue(Attribute::get(AttributeType::IRQ), Data(5U));
    const Event* other = Event::create(description);
    ASSERT_NE(m_start, other);
    auto metric = makeMetric(Type::TracedEvent);
    feed(*metric, m_zed, nullptr, *m_start, 2);
    feed(*metric, m_zed, nullptr, *other, 3);
    metric->finalize();
    EXPECT_THAT(rows(NAMES), ElementsAre(ElementsAre("start", "5")));
    EXPECT_THAT(topRows(TOP + " for zed"), ElementsAre(ElementsAre("start", "3"), ElementsAre("start", "2")));
}

TEST_F(TracedEventTest, TopTableGoesByCountAndThenByFallingValue)
{
    auto metric = makeMetric(Type::TracedEvent);
    feed(*metric, m_zed, nullptr, 1U, 5);
    feed(*metric, m_zed, nullptr, 2U, 5);
    feed(*metric, m_zed, nullptr, 0U, 7);
    for (unsigned value = 10; value < 20; ++value)
        feed(*metric, m_zed, nullptr, value);
    metric->finalize();
    EXPECT_THAT(topRows(TOP + " for zed"),
                ElementsAre(ElementsAre("0", "7"), ElementsAre("2", "5"), ElementsAre("1", "5"), ElementsAre("19", "1"),
                            ElementsAre("18", "1"), ElementsAre("17", "1"), ElementsAre("16", "1"),
                            ElementsAre("15", "1"), ElementsAre("14", "1"), ElementsAre("13", "1")));
    EXPECT_THAT(rows(NAMES), ElementsAre(ElementsAre("", "27")));    // numbers have no name
}

TEST_F(TracedEventTest, SeveralDescriptorsHaveNameTablesThatNameThem)
{
    const DataDescriptor* x = descriptor("x");
    const DataDescriptor* y = descriptor("y");
    const DataDescriptor* z = descriptor("z");
    auto one = makeMetric(Type::TracedEvent);
    one->setEntityDescriptorCombinations({{m_abe, z}});    // promised, not seen: it has a table, titles stay bare
    feed(*one, m_zed, x, *m_start);
    for (int call = 0; call < 2; ++call) {
        session.writer.clear();
        one->finalize();
        EXPECT_THAT(session.writer.tableTitles(),
                    ElementsAre("M Summary: Total Samples Received", NAMES, TOP + " for zed and x"));
        EXPECT_EQ(3u, session.writer.tablesNamed(NAMES).size());    // header and row of x, header of z
        EXPECT_THAT(rows(NAMES).front(), ElementsAre("start", "1", "0"));
    }

    session.writer.clear();
    auto two = makeMetric(Type::TracedEvent);
    feed(*two, m_abe, y, *m_end);
    feed(*two, m_zed, x, *m_start);
    feed(*two, m_zed, y, *m_start, 2);
    two->finalize();
    EXPECT_THAT(session.writer.tableTitles(),
                ElementsAre("M Summary: Total Samples Received", NAMES + " for x", NAMES + " for y",
                            TOP + " for zed and x", TOP + " for zed and y", TOP + " for abe and y"));
    EXPECT_THAT(rows(NAMES + " for x"), ElementsAre(ElementsAre("start", "1", "0")));
    EXPECT_THAT(rows(NAMES + " for y"), ElementsAre(ElementsAre("end", "0", "1"), ElementsAre("start", "2", "0")));
}

TEST_F(TracedEventTest, SamplesAreCountedForEachPairWithoutIntervals)
{
    auto metric = makeMetric(Type::TracedEvent);
    const DataDescriptor* x = descriptor("x");
    const DataDescriptor* y = descriptor("y");
    feed(*metric, m_zed, y, *m_start, 3);
    feed(*metric, m_zed, x, *m_start);
    metric->finalize();
    EXPECT_THAT(columns("M Summary: Total Samples Received"), ElementsAre("", "", "Total # of samples"));
    EXPECT_THAT(rows("M Summary: Total Samples Received"),
                ElementsAre(ElementsAre("zed", "x", "1"), ElementsAre("zed", "y", "3")));
}

TEST_F(TracedEventTest, HandleThatCannotBeReadHasTheEmptyName)
{
    auto metric = makeMetric(Type::TracedEvent);
    DataElement element(m_zed, nullptr);
    element.setValue(*m_start);
    element.setValue(5U);    // leaves it invalid
    EXPECT_EQ(0, metric->setData(m_timestamp += 10, element, 0));
    feed(*metric, m_zed, nullptr, *m_start);
    EXPECT_EQ(0, metric->finalize());
    EXPECT_THAT(rows(NAMES), ElementsAre(ElementsAre("", "1"), ElementsAre("start", "1")));
    EXPECT_THAT(topRows(TOP + " for zed"), ElementsAre(ElementsAre("start", "1"), ElementsAre("", "1")));
}

}    // namespace
