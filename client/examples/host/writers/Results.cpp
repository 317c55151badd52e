#include "writers/Results.h"

#include "writers/CsvWriter.h"
#include "writers/HtmlWriter.h"
#include "writers/JsonlWriter.h"
#include "writers/PrometheusWriter.h"
#include "writers/TraceWriter.h"

#include <algorithm>
#include <string_view>

namespace host {

namespace {

template <typename Writer>
std::unique_ptr<ResultWriter> make(const std::string& prefix)
{
    return std::make_unique<Writer>(prefix);
}

std::unique_ptr<ResultWriter> makeSummary(const std::string& prefix)
{
    return std::make_unique<CsvWriter>(prefix, false);
}

struct Row {
    ResultFormat format;
    std::unique_ptr<ResultWriter> (*make)(const std::string& prefix);
};

const Row ROWS[] = {
    {{"sum", "summary tables, in PREFIX_summary.csv (default)"}, makeSummary},
    {{"csv", "the summary tables, and one timeline PREFIX_<metric>.csv for each metric"}, make<CsvWriter>},
    {{"jsonl", "tables, rows and samples, one JSON object a line, in PREFIX.jsonl"}, make<JsonlWriter>},
    {{"trace", "samples for trace viewers, in PREFIX.trace.json"}, make<TraceWriter>},
    {{"html", "a report with tables and charts, in PREFIX.html"}, make<HtmlWriter>},
    {{"prom", "latest values and totals for Prometheus, once a second, in PREFIX.prom"}, make<PrometheusWriter>},
};

bool isAmong(const std::vector<std::string>& names, std::string_view name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

}    // namespace

std::vector<ResultFormat> resultFormats()
{
    std::vector<ResultFormat> formats;
    for (const Row& row : ROWS)
        formats.push_back(row.format);
    return formats;
}

void Results::add(const std::vector<std::string>& names, const std::string& prefix)
{
    for (const Row& row : ROWS) {
        const bool isContained = row.make == makeSummary && isAmong(names, "csv");
        if (!isAmong(names, row.format.name) || isContained) continue;
        m_writers.push_back(row.make(prefix));
        if (m_isPostProcessed) m_writers.back()->setPostProcessed();
    }
}

bool Results::open()
{
    return std::all_of(m_writers.begin(), m_writers.end(),
                       [](const auto& writer) { return writer->openOutput() == 0; });
}

std::vector<std::string> Results::getFiles() const
{
    std::vector<std::string> files;
    for (const auto& writer : m_writers)
        files.insert(files.end(), writer->getFiles().begin(), writer->getFiles().end());
    return files;
}

std::string Results::getError() const
{
    for (const auto& writer : m_writers) {
        if (!writer->getError().empty()) return writer->getError();
    }
    return {};
}

}    // namespace host
