#include "Progress.h"
#include "writers/Charts.h"
#include "writers/PrometheusNames.h"
#include "writers/RunTime.h"
#include "writers/Scale.h"
#include "writers/Text.h"
#include "writers/ThinnedSeries.h"

#include "record/SystemMetadata.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>

namespace {

using host::ThinnedSeries;

TEST(WriterTextTest, CellsAreQuotedWhereTheyMustAndAreNoFormulas)
{
    const struct {
        std::string cell;
        std::string written;
    } cases[] = {
        {"", ""},
        {"plain text; 1.5 'x'", "plain text; 1.5 'x'"},
        {"a,b", "\"a,b\""},
        {"say \"x\"", "\"say \"\"x\"\"\""},
        {"\"", "\"\"\"\""},
        {"two\nlines", "\"two\nlines\""},
        {"return\r", "\"return\r\""},
        {std::string("nul\0,", 5), "\"nul\xEF\xBF\xBD,\""},
        {"=1+1", "'=1+1"},
        {"@a,b", "\"'@a,b\""},
        {"-5", "-5"},
        {"+5.25e-3", "+5.25e-3"},
        {"-inf", "-inf"},
        {"+-5", "'+-5"},
        {"-5 -- 3", "'-5 -- 3"},
        {"\xC3\xA4\xE2\x82\xAC\xF0\x9F\x94\xA5", "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x94\xA5"},
        {"\xC0\xAF", "\xEF\xBF\xBD\xEF\xBF\xBD"},
        {"cut \xE2\x82", "cut \xEF\xBF\xBD\xEF\xBF\xBD"},
    };
    for (const auto& c : cases) {
        std::string written;
        host::appendCsv(written, c.cell);
        EXPECT_EQ(c.written, written) << c.cell;
    }
}

TEST(WriterTextTest, DecimalsKeepEveryDigit)
{
    const struct {
        std::uint64_t value;
        int digits;
        const char* text;
    } cases[] = {{0, 9, "0.000000000"},
                 {1, 3, "0.001"},
                 {1500, 3, "1.500"},
                 {std::numeric_limits<std::uint64_t>::max(), 9, "18446744073.709551615"}};
    for (const auto& c : cases) {
        std::string text;
        host::appendDecimal(text, c.value, c.digits);
        EXPECT_EQ(c.text, text);
    }
}

TEST(WriterTextTest, TicksBecomeTimeOfAnyClock)
{
    const struct {
        float clockMHz;
        std::uint64_t ticks;
        std::uint64_t ns;
    } cases[] = {{1000, 7, 7},
                 {0, 7, 7},
                 {2000, 3, 2},    // 1.5
                 {2400, 24'000'000'000'000'000ULL, 10'000'000'000'000'000ULL},
                 {0.032768F, 32'768, 1'000'000'000},
                 {0.000002F, 40'000'000'000, std::numeric_limits<std::uint64_t>::max()},    // longer than 584 years
                 {std::numeric_limits<float>::infinity(), 7, 7}};
    for (const auto& c : cases) {
        pwr::SystemMetadata record;
        record.qvaClockFreqMHz = c.clockMHz;
        host::RunTime time;
        time.use(record);
        EXPECT_EQ(c.ns, time.toNs(c.ticks)) << c.clockMHz;
    }
    pwr::SystemMetadata record;
    record.startTSC = 100;
    record.startTimeval = 1'709'164'799'999'999'999;
    host::RunTime time;
    time.use(record);
    EXPECT_EQ(0U, time.sinceStartNs(99));
    std::string text;
    time.appendUtc(text, 0);
    time.appendUtc(text, 1);
    EXPECT_EQ("2024-02-28T23:59:59.999999999Z2024-02-29T00:00:00.000000000Z", text);
}

TEST(ThinnedSeriesTest, ALongTimelineKeepsItsPeaksInABoundedNumberOfPieces)
{
    ThinnedSeries series;
    double sum = 0;
    constexpr int COUNT = 1'000'000;
    for (int i = 0; i < COUNT; ++i) {
        const double value = i == 123'456 ? 1000 : i == 777'777 ? -1000 : i % 10;
        sum += value;
        series.add(static_cast<std::uint64_t>(i) * 1'000'003, value, 2);
    }
    const auto& pieces = series.getPieces();
    EXPECT_LE(pieces.size(), ThinnedSeries::MAX_PIECES);
    EXPECT_GT(pieces.size(), ThinnedSeries::MAX_PIECES / 2 - 1);
    double kept = 0;
    double weight = 0;
    double previous = -1;
    for (const ThinnedSeries::Piece& piece : pieces) {
        EXPECT_LT(previous, series.timeOf(piece));
        previous = series.timeOf(piece);
        kept += piece.sum;
        weight += piece.weight;
    }
    EXPECT_DOUBLE_EQ(2 * sum, kept);
    EXPECT_DOUBLE_EQ(2.0 * COUNT, weight);
    const auto high = std::max_element(pieces.begin(), pieces.end(), [](auto& a, auto& b) { return a.max < b.max; });
    const auto low = std::min_element(pieces.begin(), pieces.end(), [](auto& a, auto& b) { return a.min < b.min; });
    EXPECT_EQ(1000, high->max);
    EXPECT_EQ(-1000, low->min);
    EXPECT_NEAR(123'456 * 1'000'003.0, series.timeOf(*high), std::ldexp(1.0, static_cast<int>(series.getShift())));
}

TEST(ThinnedSeriesTest, TimeThatStepsBackAndTheEndOfTimeAreTaken)
{
    ThinnedSeries series;
    series.add(1000, 1, 1);
    series.add(10, 3, 1);
    ASSERT_EQ(1U, series.getPieces().size());
    EXPECT_EQ(2, series.getPieces()[0].mean());
    series.add(std::numeric_limits<std::uint64_t>::max(), std::numeric_limits<double>::max(), 4);
    EXPECT_EQ(std::numeric_limits<double>::max(), series.getPieces().back().mean());
}

TEST(ScaleTest, MarksAreRoundAndAnyRangeWorks)
{
    const host::Scale scale(3, 97, 0, 100, true);
    EXPECT_EQ((std::vector<double>{0, 20, 40, 60, 80, 100}), scale.getMarks());
    EXPECT_EQ("40", scale.text(40));
    EXPECT_DOUBLE_EQ(50, scale.at(50));
    EXPECT_EQ("0.15", host::Scale(0.1, 0.3, 0, 1, false).text(0.15));
    constexpr double MAX = std::numeric_limits<double>::max();
    for (const auto& [low, high] : std::vector<std::pair<double, double>>{
             {0, 0}, {5, 5}, {-MAX, MAX}, {MAX, MAX}, {0, 5e-324}, {1, std::nextafter(1.0, 2.0)}, {-1e-300, 1e300}}) {
        const host::Scale wide(low, high, 0, 100, true);
        EXPECT_FALSE(wide.getMarks().empty());
        EXPECT_LE(wide.getMarks().size(), 30U);
        for (const double value : {low, high, low / 2 + high / 2}) {
            EXPECT_TRUE(wide.at(value) >= 0 && wide.at(value) <= 100) << low << " " << high;
        }
    }
}

TEST(ChartsTest, NamesLoseTheirSharedPath)
{
    using Names = std::vector<std::string>;
    EXPECT_EQ((Names{"Core_0/T0", "Core_1/T1"}), host::withoutSharedPath({"CPU/P0/Core_0/T0", "CPU/P0/Core_1/T1"}));
    EXPECT_EQ((Names{"a/b", "c"}), host::withoutSharedPath({"a/b", "c"}));
    EXPECT_EQ(Names{"a/b"}, host::withoutSharedPath({"a/b"}));
    EXPECT_EQ((Names{"b", "b"}), host::withoutSharedPath({"a/b", "a/b"}));
    EXPECT_EQ(Names{}, host::withoutSharedPath({}));
}

TEST(PrometheusNamesTest, NamesHaveBaseUnitsAndOnlyCountersAreTotals)
{
    EXPECT_EQ("joules", host::baseUnitOf("mJ").name);
    EXPECT_EQ(1e-3, host::baseUnitOf("mJ").factor);
    EXPECT_EQ("furlongs_fortnight", host::baseUnitOf("Furlongs/Fortnight").name);
    EXPECT_EQ("", host::baseUnitOf("").name);
    EXPECT_EQ("quorvane_cpu_load", host::familyStem("CPU: load!"));
    EXPECT_EQ("quorvane", host::familyStem("\"<>"));
    EXPECT_EQ("quorvane_x_watts", host::gaugeName("quorvane_x", "watts"));
    EXPECT_EQ("quorvane_x_watts", host::gaugeName("quorvane_x_watts", "watts"));
    EXPECT_EQ("quorvane_grand_total_value", host::gaugeName("quorvane_grand_total", ""));
    EXPECT_EQ("quorvane_bytes_total", host::counterName("quorvane_bytes", "bytes"));
    EXPECT_EQ("quorvane_grand_total", host::counterName("quorvane_grand_total", ""));
}

TEST(ProgressTest, ColoursComeOnlyWhereTheyAreWanted)
{
    const auto shown = [](bool isEnabled, bool usesColour) {
        std::ostringstream out;
        host::Progress(out, isEnabled, usesColour).show(1, 2, 3);
        return out.str();
    };
    EXPECT_EQ("", shown(false, true));
    EXPECT_EQ(0U, shown(true, false).find("\r1.0 of 2.0 s, 3 samples\r"));
    EXPECT_EQ(std::string::npos, shown(true, false).find('\033'));
    EXPECT_EQ(0U, shown(true, true).find("\r\033[36m1.0 of 2.0 s, 3 samples\033[0m\r"));
}

}    // namespace
