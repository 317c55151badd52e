#include "ResultRun.h"
#include "TreeCopy.h"

#include "metrics/Metric.h"
#include "output/TableMessage.h"
#include "output/TextNotes.h"
#include "values/Description.h"
#include "values/EntityHandle.h"
#include "values/Handles.h"
#include "values/Quantity.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <gtest/gtest.h>
#include <limits>
#include <locale>
#include <nlohmann/json.hpp>
#include <set>

namespace {

using nlohmann::json;
using pwr::DataElement;
using pwr::Metric;
using Type = pwr::Metric::MetricType;
using test::ResultRun;
namespace fs = std::filesystem;

using Rows = std::vector<std::vector<std::string>>;

// The cells of comma-separated values as RFC 4180 has them; a quote where none belongs is a failure.
Rows parseCsv(const std::string& text)
{
    Rows rows{{""}};
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::string& cell = rows.back().back();
        if (text[i] == '"') {
            EXPECT_TRUE(cell.empty()) << cell;
            for (++i; i < text.size() && (text[i] != '"' || text.compare(i, 2, "\"\"") == 0); ++i) {
                if (text[i] == '"') ++i;
                cell += text[i];
            }
        } else if (text[i] == ',') {
            rows.back().emplace_back();
        } else if (text[i] == '\n') {
            rows.push_back({""});
        } else {
            cell += text[i];
        }
    }
    EXPECT_EQ(Rows::value_type{""}, rows.back()) << "the last line has an end";
    rows.pop_back();
    return rows;
}

std::vector<json> parseLines(const std::string& text)
{
    std::vector<json> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(json::parse(line, nullptr, false));
        EXPECT_TRUE(lines.back().is_object()) << line;
    }
    return lines;
}

std::vector<json> ofType(const std::vector<json>& lines, const std::string& type)
{
    std::vector<json> found;
    for (const json& line : lines) {
        if (line.at("type") == type) found.push_back(line);
    }
    return found;
}

// No control characters but these, and UTF-8 throughout.
bool isClean(const std::string& text, const std::string& allowed)
{
    const bool hasControl = std::any_of(text.begin(), text.end(), [&allowed](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return (byte < 0x20 || byte == 0x7F) && allowed.find(c) == std::string::npos;
    });
    const std::string quoted = json(text).dump(-1, ' ', false, json::error_handler_t::replace);
    const bool isUtf8 = json::parse(quoted) == json(text);
    return !hasControl && isUtf8 && text.find("\xC2\x9B") == std::string::npos;
}

TEST(HostileResultsTest, TextsComeOutHarmlessInEachFormat)
{
    ResultRun run(test::freshPath("hostile"));
    run.record().commandLine = test::hostileTexts();
    for (const std::string& text : test::hostileTexts())
        test::feedHostile(run, text);
    run.close();
    EXPECT_EQ("", run.results().getError());

    std::set<std::string> csvFiles;
    for (const std::string& path : run.results().getFiles()) {
        if (!path.ends_with(".csv")) continue;
        EXPECT_LT(fs::path(path).filename().string().size(), 200U);
        EXPECT_TRUE(csvFiles.insert(path).second) << path;
        const bool isTimeline = !path.ends_with("_summary.csv");
        bool isHead = true;
        for (const auto& row : parseCsv(test::contentOf(path))) {
            isHead = isHead && row.size() == 1;
            EXPECT_TRUE(!isTimeline || isHead || row.size() == 6) << path;
            for (const std::string& cell : row) {
                EXPECT_TRUE(isClean(cell, "\t\r\n")) << cell;
                const bool isHarmless = cell == "-inf" || cell == "-2" || cell == std::string(74, '-');
                EXPECT_TRUE(isHarmless || cell.find_first_of("=+-@\t\r") != 0) << cell;
            }
        }
    }

    const std::vector<json> lines = parseLines(run.file(".jsonl"));
    std::set<std::string> values;
    std::set<std::string> cells;
    for (const json& point : ofType(lines, "point")) {
        if (point.at("value").is_string()) values.insert(point.at("value").get<std::string>());
    }
    for (const json& row : ofType(lines, "row"))
        cells.insert(row.at("cells").front().is_string() ? row.at("cells").front().get<std::string>() : "");
    for (const std::string& text : test::hostileTexts()) {
        const bool isLossless = text.find('\xFF') == std::string::npos && text.find("\xC2\x9B") == std::string::npos;
        EXPECT_TRUE(!isLossless || values.count(text) == 1) << text;
        EXPECT_TRUE(!isLossless || cells.count(text) == 1) << text;
    }
    EXPECT_EQ(1U, values.count("nan"));
    EXPECT_EQ(1U, values.count("inf"));

    const json trace = json::parse(run.file(".trace.json"), nullptr, false);
    ASSERT_TRUE(trace.is_object());
    std::set<std::string> names;
    for (const json& event : trace.at("traceEvents")) {
        names.insert(event.at("name").get<std::string>());
        EXPECT_TRUE(event.at("ph") == "M" || event.at("ts").is_number()) << event;
        EXPECT_NE("C", event.at("ph")) << "no number here is finite: " << event;
    }
    EXPECT_EQ(1U, names.count("</script></title></style><img src=x onerror=alert(1)>"));

    const std::string html = run.file(".html");
    EXPECT_TRUE(isClean(html, "\t\n")) << "the page";
    EXPECT_EQ(html.find("<script"), html.rfind("<script"));
    EXPECT_EQ(html.find("<title>M"), html.find("<title>"));
    EXPECT_EQ(std::string::npos, html.find("<img"));
    EXPECT_TRUE(isClean(run.file(".prom"), "\n")) << "the metrics";
}

TEST(HostileResultsTest, AMonitoringEngineTakesTheMetrics)
{
    ResultRun run(test::freshPath("prom"), {"prom"});
    for (const std::string& text : test::hostileTexts()) {
        if (text.find("%s%n") == std::string::npos && text.find("a,b;c") == std::string::npos)
            test::feedHostile(run, text);
    }
    test::feedAllTypes(run, 20, 3);
    run.close();
    const std::string prom = run.file(".prom");
    for (const char* part :
         {"# TYPE quorvane_core_temperature_celsius gauge\n", "# TYPE quorvane_core_states_seconds_total counter\n",
          "quorvane_core_states_seconds_total{entity=\"Package_0/Core_2\",state=\"C10\"} ",
          "# TYPE quorvane_package_energy_joules_total counter\n",
          "quorvane_link_state_transitions_total{entity=\"Package_0/Core_0\"} 20\n",
          "quorvane_wake_ups_events_total{entity=\"Package_0/Core_0\"} 20\n",
          "quorvane_link_state_info{entity=\"Package_0/Core_0\",value=\"L"}) {
        EXPECT_NE(std::string::npos, prom.find(part)) << part << " is not in\n" << prom.substr(0, 4000);
    }
    if (test::findProgram("promtool").empty()) GTEST_SKIP() << "promtool (package prometheus) is not installed";
    std::string output;
    EXPECT_EQ(0, test::runCommand("promtool check metrics < " + run.prefix() + ".prom", output)) << output;
    EXPECT_EQ("", output);
}

TEST(ResultsTest, TheMetricsFileIsWholeAtAnyMomentAndWrittenOncePerSecond)
{
    ResultRun run(test::freshPath("prom"), {"prom"});
    const pwr::EntityHandle* core = pwr::EntityHandle::create("Core", nullptr);
    Metric metric("Load", Type::SampledValue, "L", "L", run.record(), nullptr);
    const auto sample = [&](int value) {
        DataElement element(core, nullptr);
        element.setValue(value);
        metric.setData(ResultRun::START + static_cast<unsigned long long>(value), element, 0);
        run.flush();
        return run.file(".prom");
    };
    sample(1);
    const std::string first = sample(2);    // within the second
    EXPECT_EQ(first, sample(3));
    EXPECT_FALSE(fs::exists(run.prefix() + ".prom.tmp"));
    metric.finalize();
    run.close();
    EXPECT_TRUE(run.file(".prom").ends_with("quorvane_load{entity=\"Core\"} 3\n")) << run.file(".prom");
}

TEST(ResultsTest, NumbersAndTimesAreTheSameInEveryLocale)
{
    struct Commas : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    const auto written = [](const std::string& prefix) {
        ResultRun run(prefix);
        test::feedAllTypes(run, 5, 1);
        pwr::TableMessage table("Watts (mW)", nullptr);
        table.addField("Power (mW)", pwr::DataType::REAL, true);
        table.createTable();
        table.setField(0, 1234567.5);
        run.push(table);
        run.close();
        std::string all;
        for (const std::string& path : run.results().getFiles()) {
            // What producers made texts of already is theirs.
            if (path.ends_with("core-temperature.csv") || path.ends_with(".jsonl")) all += test::contentOf(path);
        }
        EXPECT_NE(std::string::npos, run.file("_summary.csv").find("Power (mW)\n1234567.5\n"));
        return all;
    };
    const std::string path = test::freshPath("locale");
    const std::locale kept = std::locale::global(std::locale(std::locale::classic(), new Commas));
    const std::string foreign = written(path);
    std::locale::global(kept);
    EXPECT_NE(std::string::npos, foreign.find("0.010000000,2026-11-23T02:19:38.010000000Z,Package_0/Core_0,,"))
        << foreign.substr(0, 300);
    EXPECT_EQ(std::string::npos, foreign.find("1.234"));
}

TEST(ResultsTest, LinesTellObjectsTimelinesAndTables)
{
    ResultRun run(test::freshPath("lines"), {"jsonl"});
    const pwr::EntityHandle* core =
        pwr::EntityHandle::create("Core_0", pwr::EntityHandle::create("Package_0", nullptr));
    Metric metric("Power", Type::SampledValue, "P", "P", run.record(), pwr::Quantity::power());
    DataElement element(core, nullptr);
    element.setValue(1.0 / 3.0);
    metric.setData(ResultRun::START + 1'500'000'000, element, 0);
    metric.finalize();
    run.close();
    const std::vector<json> lines = parseLines(run.file(".jsonl"));
    const json object = {{"type", "object"},
                         {"id", core->getId()},
                         {"kind", "entity"},
                         {"name", "Core_0"},
                         {"parent", core->getParent()->getId()},
                         {"qualifiedName", "Package_0/Core_0"}};
    EXPECT_EQ(1, std::count(lines.begin(), lines.end(), object));
    const json known = {{"type", "metric"},
                        {"metric", metric.getId()},
                        {"name", "Power"},
                        {"value", "Power"},
                        {"unit", "mW"},
                        {"kind", "SampledValue"},
                        {"start", "2026-11-23T02:19:38.000000000Z"}};
    EXPECT_EQ(known, ofType(lines, "metric").at(0));
    const json point = {
        {"type", "point"},           {"metric", metric.getId()}, {"time", 1.5},    {"entity", "Package_0/Core_0"},
        {"entityId", core->getId()}, {"value", 1.0 / 3.0},       {"duration", 1.5}};
    EXPECT_EQ(std::vector<json>{point}, ofType(lines, "point"));
    const std::vector<json> tables = ofType(lines, "table");
    ASSERT_EQ(6U, tables.size());
    EXPECT_EQ("Power Summary - Sampled: Min/Max/Avg", tables[1].at("title"));
    EXPECT_EQ(json({"", "Min (mW)", "Max (mW)", "Avg (mW)", "Time-weighted Avg (mW)"}), tables[1].at("columns"));
    const auto isRow = [&tables](const json& row) { return row.at("table") == tables[1].at("table"); };
    const std::vector<json> rows = ofType(lines, "row");
    const auto row = std::find_if(rows.begin(), rows.end(), isRow);
    ASSERT_NE(rows.end(), row);
    EXPECT_EQ("Package_0/Core_0", row->at("cells").at(0));
    EXPECT_DOUBLE_EQ(1.0 / 3.0, row->at("cells").at(3).get<double>());
}

TEST(ResultsTest, TraceEventsStandWhereTheTimeWentBy)
{
    ResultRun run(test::freshPath("trace"), {"trace"});
    test::feedAllTypes(run, 10, 2);
    run.close();
    const json trace = json::parse(run.file(".trace.json"));
    std::map<std::string, int> counts;
    std::map<std::pair<int, int>, double> ends;    // of the slices of each lane
    for (const json& event : trace.at("traceEvents")) {
        ++counts[event.at("ph").get<std::string>()];
        if (event.at("ph") != "X") continue;
        double& end = ends[{event.at("pid").get<int>(), event.at("tid").get<int>()}];
        EXPECT_NEAR(end, event.at("ts").get<double>(), 0.005) << event;
        end = event.at("ts").get<double>() + event.at("dur").get<double>();
    }
    EXPECT_EQ(10 * 2 + 10, counts["C"]);
    EXPECT_EQ(3U, ends.size());    // the states of two cores, and a link
    for (const auto& [lane, end] : ends)
        EXPECT_NEAR(100'000, end, 0.03);
    EXPECT_GT(counts["i"], 10);    // events, and the rows of the tables
    EXPECT_EQ("bench-7", trace.at("otherData").at("host"));
}

TEST(ResultsTest, ChartsAreDrawnOfWhateverIsMeasured)
{
    ResultRun run(test::freshPath("charts"), {"html"});
    const auto feed = [&run](const std::string& name, Type type, const auto& values) {
        const bool isTime = type == Type::SampledResidency;
        Metric metric(name, type, "M", "M", run.record(), isTime ? pwr::Quantity::time() : pwr::Quantity::energy());
        DataElement element(pwr::EntityHandle::create("Core", nullptr),
                            pwr::DataDescriptor::create(pwr::DataDescriptorBuilder("State", "")));
        unsigned long long at = ResultRun::START;
        for (const auto& value : values) {
            element.setValue(value);
            metric.setData(at += 1000, element, 0);
        }
        metric.finalize();
    };
    constexpr double MAX = std::numeric_limits<double>::max();
    feed("Values", Type::SampledValue, std::vector<double>{MAX, -MAX, 0, 5e-324});
    feed("Amounts", Type::SampledDelta, std::vector<double>{MAX, 1, MAX});
    feed("Residencies", Type::SampledResidency, std::vector<double>{MAX, MAX, MAX});
    feed("One", Type::SampledValue, std::vector<long long>{std::numeric_limits<long long>::min()});
    feed("None", Type::SampledValue, std::vector<double>{std::nan("")});
    std::vector<std::string> states;
    for (int i = 0; i < 12; ++i)
        states.push_back("state" + std::to_string(i));
    feed("Twelve states", Type::SampledValue, states);
    states.emplace_back("one more");
    feed("Thirteen states", Type::SampledValue, states);
    run.close();
    const std::string html = run.file(".html");
    for (const char* bad : {"nan ", "nan\"", "inf ", "inf\"", "Mnan", "Lnan"})
        EXPECT_EQ(std::string::npos, html.find(bad)) << html.substr(html.find(bad) - 200, 300);
    EXPECT_NE(std::string::npos, html.find("Values that are no finite numbers are not drawn: 1."));
    const std::size_t thirteen = html.find("<h2>Thirteen states");
    EXPECT_LT(html.find("<span>state11</span>"), thirteen);
    EXPECT_EQ(std::string::npos, html.find("<span>state11</span>", thirteen));
    EXPECT_LT(thirteen, html.find("<span>all others</span>"));
}

TEST(ResultsTest, UnitsStandInTheHeadOnce)
{
    ResultRun run(test::freshPath("units"), {"csv"});
    const pwr::EntityHandle* core = pwr::EntityHandle::create("Core", nullptr);
    const struct {
        const char* name;
        const char* unit;
        const char* title;
    } cases[] = {{"Load", "%", "Load (%)"}, {"Load (%)", "%", "Load (%)"}, {"Count", "", "Count"}};
    for (const auto& c : cases) {
        Metric metric("Metric", Type::SampledValue, "M", "M", run.record(),
                      pwr::Quantity::create(pwr::QuantityType{20}, c.name, c.unit, nullptr, 1));
        DataElement element(core, nullptr);
        element.setValue(1);
        metric.setData(ResultRun::START + 1, element, 0);
        metric.finalize();
    }
    run.close();
    int number = 0;
    for (const auto& c : cases) {
        ++number;
        const std::string name = number == 1 ? "_metric.csv" : "_metric-" + std::to_string(number) + ".csv";
        const std::string text = test::bodyOf(run.prefix() + name);
        EXPECT_EQ(c.title, parseCsv(text).at(0).at(4)) << text;
    }
}

TEST(ResultsTest, APlaceThatCanNotBeWrittenIsTold)
{
    for (const std::string format : {"csv", "jsonl", "trace", "html", "prom"}) {
        const std::string prefix = test::freshPath("blocked");
        for (const char* ending : {"_summary.csv", ".jsonl", ".trace.json", ".html", ".prom"})
            fs::create_directories(prefix + ending);
        host::Results results;
        results.add({format}, prefix);
        EXPECT_FALSE(results.open()) << format;
        EXPECT_TRUE(results.getError().starts_with(prefix) &&
                    results.getError().find(" can't be written") != std::string::npos)
            << results.getError();
        EXPECT_TRUE(results.getFiles().empty());
        for (const char* ending : {"_summary.csv", ".jsonl", ".trace.json", ".html", ".prom"})
            fs::remove(prefix + ending);
    }
}

}    // namespace
