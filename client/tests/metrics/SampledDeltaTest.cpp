#include "metrics/MetricFixture.h"

using namespace pwr;
using testing::ElementsAre;

namespace {

const std::string COUNT = "M Summary: Total Samples Received";
const std::string RATE = "M Summary: Average Rate and Total";
const std::string TOTAL = "M Summary: Total";

class SampledDeltaTest : public test::MetricFixture {
protected:
    static constexpr unsigned long long SECOND = 1'000'000'000;    // ticks

    const EntityHandle* m_disk0 = entity("disk0");
    const EntityHandle* m_disk1 = entity("disk1");
    const DataDescriptor* m_read = descriptor("read");
    const DataDescriptor* m_written = descriptor("written");
};

TEST_F(SampledDeltaTest, TotalOverItsTimeIsToldInTheRateQuantity)
{
    auto metric = makeMetric(Type::SampledDelta, Quantity::data());
    metric->setEntityGroupInfo(FieldDescription("Disk", ""));
    metric->setDescriptorGroupInfo(FieldDescription("Direction", ""));
    sample(*metric, 1000 + SECOND, m_disk0, m_written, 4'000'000U);
    sample(*metric, 1000 + SECOND, m_disk0, m_read, 500'000U);
    sample(*metric, 1000 + 2 * SECOND, m_disk0, m_written, 6'000'000U);
    sample(*metric, 1000 + 2 * SECOND, m_disk1, m_read, 1U);
    metric->finalize();
    EXPECT_THAT(session.writer.tableTitles(), ElementsAre(COUNT, RATE));
    EXPECT_THAT(columns(RATE), ElementsAre("Disk", "Direction", "Average Rate (MB/s)", "Total (bytes)"));
    EXPECT_THAT(rows(RATE), ElementsAre(ElementsAre("disk0", "read", "0.50", "500000.00"),
                                        ElementsAre("disk0", "written", "5.00", "10000000.00"),
                                        ElementsAre("disk1", "read", "0.00", "1.00"),
                                        ElementsAre("Total", "", "5.50", "10500001.00")));
    EXPECT_THAT(rows(COUNT).at(0), ElementsAre("disk0", "2", "1000.00", "1000.00", "1000.00"));
}

TEST_F(SampledDeltaTest, LackOfARateFormIsToldWhereRatesAreWanted)
{
    const std::string noRateForm = "WARNING: Rate conversion is not specified. Disabling rate calculations.\n";
    const std::string noQuantity =
        "WARNING: Quantity and rate conversion are not specified. Disabling rate calculations.\n";
    const std::string hideRate = "ALL_FEAT_BOX_AVERAGE-RATE-TOTAL_TABLE=NO\n";
    const std::string rateFirst = "ALL_FEAT_BOX_AVERAGE-RATE-TOTAL_TABLE=YES\n";
    const struct {
        const Quantity* quantity;
        std::string config;
        std::vector<std::string> titles;
        std::string warning;
    } cases[] = {
        {Quantity::data(), hideRate, {COUNT}, ""},
        {Quantity::power(), hideRate, {COUNT}, ""},
        {Quantity::power(), rateFirst, {COUNT, TOTAL}, noRateForm},    // the total has a place of its own
        {nullptr, hideRate, {COUNT}, ""},
        {nullptr, rateFirst, {COUNT, TOTAL}, noQuantity},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.config + (c.quantity != nullptr ? c.quantity->toQuantityString() : "no quantity"));
        session.writer.clear();
        configure(c.config);
        auto metric = makeMetric(Type::SampledDelta, c.quantity);
        session.log.clear();
        sample(*metric, 2000, m_disk0, nullptr, 5U);
        metric->finalize();
        EXPECT_EQ(c.titles, session.writer.tableTitles());
        EXPECT_EQ(c.warning.empty() ? 0u : 1u, session.log.count("Disabling rate calculations.\n"));
        EXPECT_THAT(session.log.debug(), testing::StartsWith(c.warning));
    }
}

TEST_F(SampledDeltaTest, TransposedTableHasDescriptorsAsRowsAndNoTotal)
{
    configure(transposed({"AVERAGE-RATE-TOTAL"}));
    auto metric = makeMetric(Type::SampledDelta, Quantity::data());
    metric->setDescriptorGroupInfo(FieldDescription("Direction", ""));
    sample(*metric, 1000 + SECOND, m_disk1, m_written, 7'000'000U);
    sample(*metric, 1000 + SECOND, m_disk0, m_read, 2'000'000U);
    metric->finalize();
    const std::string rate = "Average Rate (MB/s)";
    const std::string total = "Total (bytes)";
    EXPECT_THAT(columns(RATE), ElementsAre("Direction", rate, total, rate, total));
    EXPECT_THAT(rows(RATE), ElementsAre(ElementsAre("read", "2.00", "2000000.00", "", ""),
                                        ElementsAre("written", "", "", "7.00", "7000000.00")));
}

TEST_F(SampledDeltaTest, RangesAndTextsAreSummedAsFarAsTheyCanBe)
{
    auto ranges = makeMetric(Type::SampledDelta, Quantity::data());
    auto texts = makeMetric(Type::SampledDelta, Quantity::power());
    sample(*ranges, 1000 + SECOND, m_disk0, nullptr, std::make_pair(1'000'000ULL, 2'000'000ULL));
    sample(*ranges, 1000 + 2 * SECOND, m_disk0, nullptr, std::make_pair(1'000'000ULL, 6'000'000ULL));
    sample(*texts, 2000, m_disk0, nullptr, "much");
    sample(*texts, 2000, m_disk1, nullptr, 2U);
    EXPECT_EQ(0, ranges->finalize());
    EXPECT_EQ(0, texts->finalize());
    EXPECT_THAT(rows(RATE), ElementsAre(ElementsAre("disk0", "1.00 -- 4.00", "2000000.00 -- 8000000.00"),
                                        ElementsAre("Total", "1.00 -- 4.00", "2000000.00 -- 8000000.00")));
    EXPECT_THAT(rows(TOTAL),
                ElementsAre(ElementsAre("disk0", ""), ElementsAre("disk1", "2.00"), ElementsAre("Total", "2.00")));
    EXPECT_EQ(1u, session.log.count("WARNING: couldn't convert  to real!\n"));
}

// The configuration may ask for a table again, and so may a second call: only the entity of the total row is new.
TEST_F(SampledDeltaTest, SecondFinalizeShowsTheSameFigures)
{
    auto metric = makeMetric(Type::SampledDelta, Quantity::data());
    metric->setEntityDescriptorCombinations({{m_disk1, nullptr}});
    sample(*metric, 1000 + SECOND, m_disk0, nullptr, 1'000'000U);
    metric->finalize();
    const auto first = rows(RATE);
    EXPECT_EQ(3u, first.size());
    session.writer.clear();
    metric->finalize();
    EXPECT_EQ(first, rows(RATE));

    session.writer.clear();
    sample(*metric, 1000 + 2 * SECOND, m_disk1, nullptr, 2'000'000U);    // the promised pair comes after all
    metric->finalize();
    EXPECT_THAT(rows(RATE).at(1), ElementsAre("disk1", "1.00", "2000000.00"));
}

}    // namespace
