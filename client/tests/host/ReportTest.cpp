#include "ResultRun.h"
#include "TreeCopy.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

// The HTML report as a browser shows it.

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using test::ResultRun;

// A page around the report that looks at each table and chart where it is drawn, clicks each column title, and leaves
// what it found as JSON.
constexpr const char* INSPECTOR = R"html(<!DOCTYPE html><meta charset="utf-8"><body>
<iframe id="report" width="1200" height="900" src="REPORT"></iframe><pre id="found"></pre><script>
document.getElementById('report').onload = event => {
  const page = event.target.contentDocument;
  const area = element => { const box = element.getBoundingClientRect(); return box.width * box.height; };
  const readout = svg => {
    const box = svg.getBoundingClientRect();
    svg.dispatchEvent(new PointerEvent('pointermove', {clientX: box.left + box.width / 2, clientY: box.top + 9}));
    return page.querySelector('.tip').textContent;
  };
  const isSorted = (table, column, sign) => {
    const cells = [...table.tBodies[0].rows].map(row => row.cells[column]);
    if (!cells.every(cell => cell.className === 'n')) return true;
    const numbers = cells.map(cell => parseFloat(cell.textContent)).filter(number => !Number.isNaN(number));
    return numbers.every((number, i) => i === 0 || sign * (number - numbers[i - 1]) >= 0);
  };
  const tables = [...page.querySelectorAll('table')].map(table => {
    const heads = [...table.tHead.rows[table.tHead.rows.length - 1].cells];
    const rows = table.tBodies[0].rows.length;
    const sorts = heads.every((head, column) => {
      head.click();
      const rises = isSorted(table, column, 1) && head.getAttribute('aria-sort') === 'ascending';
      head.click();
      return rises && isSorted(table, column, -1) && head.getAttribute('aria-sort') === 'descending';
    });
    return {title: table.closest('figure').querySelector('h3').textContent, isShown: area(table) > 1000, rows,
      kept: table.tBodies[0].rows.length === rows, columns: heads.length, sorts};
  });
  const charts = [...page.querySelectorAll('svg[role=img]')].map(svg => ({
    title: svg.getAttribute('aria-label'), isShown: area(svg) > 10000,
    readout: svg.getAttribute('class') !== 'line' || readout(svg).includes(': '),
    shapes: svg.querySelectorAll('path.stroke,rect.fill,path.fill').length,
    isInside: [...svg.querySelectorAll('rect,path,circle')].every(shape => {
      const [inner, outer] = [shape.getBoundingClientRect(), svg.getBoundingClientRect()];
      return area(shape) === 0 || (inner.left >= outer.left - 2 && inner.right <= outer.right + 2 &&
        inner.top >= outer.top - 2 && inner.bottom <= outer.bottom + 2);
    })}));
  const links = [...page.querySelectorAll('nav a')].map(link => link.textContent);
  const outside = [...page.querySelectorAll('[src],link[href]')].length;
  const isWide = page.documentElement.scrollWidth > page.documentElement.clientWidth;
  event.target.width = 420;
  const isWideOnPhones = page.documentElement.scrollWidth > page.documentElement.clientWidth;
  const head = page.querySelector('.head').textContent;
  document.getElementById('found').textContent = 'FOUND' + encodeURIComponent(
    JSON.stringify({title: page.title, head, tables, charts, links, outside, isWide, isWideOnPhones})) + 'END';
};
</script></body>)html";

class ReportTest : public testing::Test {
protected:
    void SetUp() override
    {
        for (const char* name : {"chromium", "chromium-browser", "google-chrome"}) {
            if (chromium.empty()) chromium = test::findProgram(name);
        }
        if (chromium.empty()) GTEST_SKIP() << "chromium is not installed";
    }

    std::string browse(const std::string& page, const std::string& options) const
    {
        const std::string profile = fs::absolute(test::freshPath("profile")).string();
        std::string output;
        const int status = test::runCommand(
            "HOME='" + profile + "' timeout 120 " + chromium +
                " --headless --no-sandbox --disable-gpu "
                "--disable-dev-shm-usage --hide-scrollbars --enable-logging=stderr --virtual-time-budget=8000 "
                "--user-data-dir='" +
                profile + "' " + options + " 'file://" + fs::absolute(page).string() + "'",
            output);
        EXPECT_EQ(0, status) << output;
        EXPECT_EQ(std::string::npos, output.find(":CONSOLE")) << output;
        fs::remove_all(profile);
        return output;
    }

    json inspect(const ResultRun& run) const
    {
        const std::string page = run.prefix() + "-inspector.html";
        std::string text = INSPECTOR;
        text.replace(text.find("REPORT"), 6, fs::path(run.prefix() + ".html").filename().string());
        std::ofstream(page, std::ios::binary) << text;
        const std::string dom = browse(page, "--allow-file-access-from-files --window-size=1240,1000 --dump-dom");
        fs::remove(page);
        const std::size_t begin =
            dom.find("FOUND");    // the source of the inspector, which holds the word too, follows
        const std::size_t end = dom.find("END", begin);
        if (begin == std::string::npos || end == std::string::npos || end < begin) return {};
        std::string found;
        for (std::size_t i = begin + 5; i < end; ++i) {
            if (dom[i] != '%') {
                found += dom[i];
                continue;
            }
            found += static_cast<char>(std::stoi(dom.substr(i + 1, 2), nullptr, 16));
            i += 2;
        }
        return json::parse(found, nullptr, false);
    }

    std::string chromium;
};

void expectGood(const json& found)
{
    ASSERT_TRUE(found.is_object()) << found;
    for (const json& table : found.at("tables"))
        EXPECT_TRUE(table.at("isShown") && table.at("sorts") && table.at("kept")) << table;
    for (const json& chart : found.at("charts"))
        EXPECT_TRUE(chart.at("isShown") && chart.at("isInside") && chart.at("readout") && chart.at("shapes") > 0)
            << chart;
    EXPECT_EQ(0, found.at("outside"));
    EXPECT_FALSE(found.at("isWide") || found.at("isWideOnPhones"));
}

std::vector<std::string> titlesOf(const json& items)
{
    std::vector<std::string> titles;
    for (const json& item : items)
        titles.push_back(item.at("title"));
    return titles;
}

std::string withoutTitles(std::string head)
{
    for (const std::string title : {"Tool", "Collection", "Hardware"})
        head.erase(head.find(title), title.size());
    return head;
}

TEST_F(ReportTest, EveryTableAndChartIsShownAndSorts)
{
    ResultRun run(test::freshPath("report"), {"html", "jsonl"});
    test::feedAllTypes(run, 300, 4);
    run.close();
    const json found = inspect(run);
    expectGood(found);
    EXPECT_EQ("Measurement of bench-7", found.at("title"));
    std::string head;
    for (const std::string& line : host::resultHead(run.record(), false).lines())
        head += line + "\n";
    EXPECT_EQ(head, withoutTitles(found.at("head")));
    EXPECT_EQ(json({"Core temperature", "Core states", "Package energy", "Link state", "Wake-ups"}), found.at("links"));
    const std::vector<std::string> charts{"Temperature over time",
                                          "By average",
                                          "Share of the time",
                                          "Shares over time, all together",
                                          "Power over time",
                                          "Share of the time",
                                          "Shares over time, all together",
                                          "Wake-ups Summary: Top 10 Most-Frequent for Core_0"};
    EXPECT_EQ(charts, titlesOf(found.at("charts")));
    // The tables are those of the other results.
    std::vector<std::string> tables;
    std::istringstream lines(run.file(".jsonl"));
    for (std::string line; std::getline(lines, line);) {
        const json object = json::parse(line);
        if (object.at("type") == "table") tables.push_back(object.at("title"));
    }
    EXPECT_GT(tables.size(), 10U);
    EXPECT_EQ(tables, titlesOf(found.at("tables")));
}

// Four bytes each, most significant first, behind the name of the picture's head.
std::pair<std::uint32_t, std::uint32_t> sizeOfPicture(const std::string& png)
{
    const auto number = [&png](std::size_t at) {
        std::uint32_t value = 0;
        for (std::size_t i = at; i < at + 4 && i < png.size(); ++i)
            value = value << 8U | static_cast<unsigned char>(png[i]);
        return value;
    };
    return {number(16), number(20)};
}

TEST_F(ReportTest, PicturesCanBeTakenInLightAndDark)
{
    ResultRun run(test::freshPath("report"), {"html"});
    test::feedAllTypes(run, 300, 12);
    run.close();
    std::string pictures[2];
    for (const bool isDark : {false, true}) {
        const std::string path = run.prefix() + (isDark ? "-dark.png" : "-light.png");
        browse(run.prefix() + ".html", "--window-size=1240,2000 --screenshot=" + fs::absolute(path).string() +
                                           " --blink-settings=preferredColorScheme=" + (isDark ? "0" : "1"));
        const std::string picture = test::contentOf(path);
        EXPECT_EQ("\x89PNG", picture.substr(0, 4));
        EXPECT_EQ(std::make_pair(1240U, 2000U), sizeOfPicture(picture));
        EXPECT_GT(picture.size(), 60'000U) << "an empty page is far smaller";
        pictures[isDark ? 1 : 0] = picture;
    }
    EXPECT_NE(pictures[0], pictures[1]);
}

TEST_F(ReportTest, HostileTextsAreShownAndDoNothing)
{
    ResultRun run(test::freshPath("report"), {"html"});
    run.record().hostName = "<script>document.title='owned'</script>";
    const auto& texts = test::hostileTexts();
    run.record().commandLine = texts;
    for (const std::string& text : texts)
        test::feedHostile(run, text);
    run.close();
    const json found = inspect(run);
    expectGood(found);
    EXPECT_EQ("Measurement of <script>document.title='owned'</script>", found.at("title"));
    const auto links = found.at("links").get<std::vector<std::string>>();
    EXPECT_EQ(6 * texts.size(), links.size());
    EXPECT_EQ(6, std::count(links.begin(), links.end(), "</script></title></style><img src=x onerror=alert(1)>"));
}

}    // namespace
