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

TEST_F(TracedEventTest, SecondFinalizeShowsTheSameTables)
{
    auto metric = makeMetric(Type::TracedEvent);
    const DataDescriptor* x = descriptor("x");
    metric->setEntityDescriptorCombinations({{m_abe, descriptor("z")}});    // promised, not seen: titles stay bare
    feed(*metric, m_zed, x, *m_start);
    for (int call = 0; call < 2; ++call) {
        session.writer.clear();
        metric->finalize();
        EXPECT_THAT(session.writer.tableTitles(),
                    ElementsAre("M Summary: Total Samples Received", NAMES, TOP + " for zed and x"));
        EXPECT_EQ(3u, session.writer.tablesNamed(NAMES).size());    // header and row of x, header of z
        EXPECT_THAT(rows(NAMES).front(), ElementsAre("start", "1", "0"));
    }
    EXPECT_THAT(columns("M Summary: Total Samples Received"), ElementsAre("", "", "Total # of samples"));
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
