#include "writers/Results.h"

#include "writers/CsvWriter.h"
#include "writers/HtmlWriter.h"
#include "writers/JsonlWriter.h"
#include "writers/PrometheusWriter.h"
#include "writers/TraceWriter.h"

#include <algorithm>

namespace host {

namespace {

template <typename Writer>
std::unique_ptr<ResultWriter> make(const std::string& prefix)
{
    return std::make_unique<Writer>(prefix);
}

const struct {
    const char* name;
    std::unique_ptr<ResultWriter> (*make)(const std::string& prefix);
} FORMATS[] = {
    {"csv", make<CsvWriter>},   {"jsonl", make<JsonlWriter>},     {"trace", make<TraceWriter>},
    {"html", make<HtmlWriter>}, {"prom", make<PrometheusWriter>},
};

}    // namespace

const std::vector<std::string>& resultNames()
{
    static const std::vector<std::string> s_names = [] {
        std::vector<std::string> names;
        for (const auto& format : FORMATS)
            names.emplace_back(format.name);
        return names;
    }();
    return s_names;
}

bool Results::add(const std::vector<std::string>& names, const std::string& prefix)
{
    const auto& known = resultNames();
    for (const std::string& name : names) {
        if (std::find(known.begin(), known.end(), name) != known.end()) continue;
        m_unknown = name;
        return false;
    }
    for (const auto& format : FORMATS) {
        if (std::find(names.begin(), names.end(), format.name) != names.end()) m_writers.push_back(format.make(prefix));
    }
    return true;
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
