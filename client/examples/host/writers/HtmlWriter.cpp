#include "writers/HtmlWriter.h"

#include "writers/Text.h"

#include "config/pw_utils.h"
#include "metrics/Metric.h"
#include "output/WriterMessage.h"
#include "record/SystemMetadata.h"
#include "values/Data.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

constexpr const char* TOP_TEN_TITLE = " Most-Frequent";    // how the titles of these tables end or go on
constexpr const char* UNKNOWN = "Unknown";                 // how the record tells what it lacks
constexpr std::size_t MAX_BARS = 10;
constexpr std::size_t MAX_CELLS = 30'000;    // of a table: browsers get slow
constexpr std::size_t MIN_ROWS = 10;

// The name between the two lines of a banner.
std::string nameInBanner(const std::string& banner)
{
    const std::size_t begin = banner.find('\n');
    const std::size_t end = banner.rfind('\n');
    return begin < end ? banner.substr(begin + 1, end - begin - 1) : banner;
}

void appendElement(std::string& out, const char* open, const std::string& text, const char* close)
{
    out += open;
    appendHtml(out, text);
    out += close;
}

bool isNumber(const TableCell& cell)
{
    return (cell.value != nullptr && cell.value->isNumeric()) || isPlainNumber(cell.text);
}

std::string seconds(std::uint64_t ns)
{
    std::string text;
    appendRounded(text, static_cast<double>(ns) * 1e-9);
    return text + " s";
}

}    // namespace

HtmlWriter::HtmlWriter(const std::string& prefix)
    : ResultWriter("quorvane-host-html-writer", "html", "a report for browsers and paper", ".html"),
      m_path(prefix + ".html")
{
}

int HtmlWriter::openOutput()
{
    return openFile_i(m_file, m_path) ? 0 : 1;
}

int HtmlWriter::closeOutput()
{
    finishTables_i();
    while (!m_charts.empty()) {    // metrics that were never finished
        openSection_i(m_charts.begin()->second.name);
        drawCharts_i(m_charts.begin()->first);
    }
    closeSection_i();
    HtmlPage::end(page_i());
    std::string front;
    const pwr::SystemMetadata* record = time_i().getRecord();
    HtmlPage::begin(front, record != nullptr ? "Measurement of " + record->hostName : "Measurement", facts_i(),
                    head_i());
    return closeFile_i(m_file, front);
}

std::string& HtmlWriter::page_i()
{
    m_file.commit();
    return m_file.pending();
}

HtmlPage::Facts HtmlWriter::facts_i()
{
    HtmlPage::Facts facts;
    const pwr::SystemMetadata* record = time_i().getRecord();
    if (record == nullptr) return facts;
    const auto add = [&facts](const char* label, const std::string& text) {
        if (!text.empty() && text != UNKNOWN) facts.emplace_back(label, text);
    };
    add("Platform", record->platformName);
    const bool hasVersion = record->osVersion != record->osName && record->osVersion != UNKNOWN;
    add("System", hasVersion ? record->osName + " " + record->osVersion : record->osName);
    if (record->startTimeval != 0) add("Started", utcText(record->startTimeval));
    if (record->stopTimeval > record->startTimeval)
        add("Measured for", seconds(record->stopTimeval - record->startTimeval));
    if (record->pollingIntervalMsecs != 0) add("Interval", std::to_string(record->pollingIntervalMsecs) + " ms");
    if (record->samplesProduced != 0) add("Samples", std::to_string(record->samplesProduced));
    return facts;
}

void HtmlWriter::openSection_i(const std::string& title)
{
    closeSection_i();
    std::string& out = page_i();
    out += "<section id=\"s" + std::to_string(++m_sections) + "\">";
    appendElement(out, "<h2>", title, "</h2>\n");
    m_hasSection = true;
}

void HtmlWriter::closeSection_i()
{
    if (m_hasSection) page_i() += "</section>\n";
    m_hasSection = false;
}

int HtmlWriter::writeMessage(const pwr::Metric& metric)
{
    Chart& chart = m_charts[metric.getId()];
    if (chart.name.empty()) chart.name = metric.getName();
    const std::uint64_t atNs = time_i().sinceStartNs(metric.getData().timestamp);
    for (const pwr::DataElement* element : metric.getData().elements) {
        const Reading reading = readValue(element->getValue());
        if (!chart.isKnown && reading.kind != Reading::Kind::NOTHING) {
            chart.isKnown = true;
            chart.picture = Picture::make(metric, reading);
        }
        if (chart.picture) chart.picture->take(*element, reading, atNs, time_i().toNs(element->getDuration()));
    }
    return m_file.getError().empty() ? 0 : 1;
}

// Notes that stand in front of the metric's tables stand in front of its charts too.
int HtmlWriter::writeMessage(const pwr::MetricContainerInfoMessage& message)
{
    const int result = ResultWriter::writeMessage(message);
    if (!message.getContainerHeader().empty()) drawCharts_i(message.getMetricContainerId());
    return result;
}

void HtmlWriter::beginMetric_i(const std::string& banner)
{
    openSection_i(nameInBanner(banner));
}

void HtmlWriter::drawCharts_i(unsigned int metricId)
{
    const auto chart = m_charts.find(metricId);
    if (chart == m_charts.end()) return;
    if (chart->second.picture) chart->second.picture->draw(page_i());
    m_charts.erase(chart);
}

void HtmlWriter::writeNotes_i(const std::vector<std::string>& notes)
{
    std::string& out = page_i();
    for (const std::string& note : notes)
        appendElement(out, "<p class=\"note\">", note, "</p>\n");
}

void HtmlWriter::beginTable_i(const TableHead& head)
{
    std::string& out = page_i();
    m_isTopTen = head.title.find(TOP_TEN_TITLE) != std::string::npos && head.columns.size() >= 2;
    m_topTen.clear();
    m_rows = 0;
    appendElement(out, "<figure class=\"table\"><figcaption><h3>", head.title, "</h3>");
    for (const std::string& note : head.preNotes)
        appendElement(out, "<p>", note, "</p>");
    out += "</figcaption><div class=\"scroll\"><table>";
    writeTitles_i(head);
    out += "<tbody>\n";
}

// Columns of one entity stand below its name.
void HtmlWriter::writeTitles_i(const TableHead& head)
{
    std::string& out = page_i();
    const auto& columns = head.columns;
    out += "<thead>";
    const bool hasGroups = std::any_of(columns.begin(), columns.end(),
                                       [](const TableHead::Column& column) { return !column.entity.empty(); });
    if (hasGroups) out += "<tr class=\"groups\">";
    for (std::size_t i = 0; hasGroups && i < columns.size();) {
        std::size_t end = i + 1;
        while (end < columns.size() && columns[end].entity == columns[i].entity)
            ++end;
        out += "<th colspan=\"" + std::to_string(end - i) + "\">";
        appendElement(out, "", columns[i].entity, "</th>");
        i = end;
    }
    out += hasGroups ? "</tr><tr>" : "<tr>";
    for (const TableHead::Column& column : columns)
        appendElement(out, "<th scope=\"col\">", column.name, "</th>");
    out += "</tr></thead>";
}

void HtmlWriter::writeRow_i(const std::vector<TableCell>& cells)
{
    if (++m_rows > mostRows_i(cells.size())) return;
    std::string& out = page_i();
    out += "<tr>";
    for (const TableCell& cell : cells)
        appendElement(out, isNumber(cell) ? "<td class=\"n\">" : "<td>", cell.text, "</td>");
    out += "</tr>\n";
    if (!m_isTopTen || m_topTen.size() == MAX_BARS || cells.size() < 2) return;
    const double count = readValue(cells.back().value).real;
    if (!std::isfinite(count)) return;
    m_topTen.push_back({cells.front().text, count, count, count});
}

std::size_t HtmlWriter::mostRows_i(std::size_t columns)
{
    return std::max(MIN_ROWS, MAX_CELLS / std::max<std::size_t>(columns, 1));
}

void HtmlWriter::endTable_i(const TableHead& head)
{
    std::string& out = page_i();
    out += "</tbody></table></div>";
    const std::size_t shown = mostRows_i(head.columns.size());
    if (m_rows > shown) {
        appendElement(out, "<p class=\"note\">",
                      "The first " + std::to_string(shown) + " of " + std::to_string(m_rows) +
                          " rows are shown. The other results have all.",
                      "</p>");
    }
    for (const std::string& note : head.postNotes)
        appendElement(out, "<p class=\"note\">", note, "</p>");
    out += "</figure>\n";
    if (!m_topTen.empty()) appendBars(out, {head.title, "", ""}, m_topTen);
    m_topTen.clear();
}

}    // namespace host
