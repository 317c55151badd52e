#include "writers/CsvWriter.h"

#include "metrics/Metric.h"
#include "output/WriterMessage.h"
#include "record/SystemMetadata.h"
#include "values/EntityHandle.h"
#include "values/Handles.h"
#include "values/Process.h"
#include "values/Quantity.h"

#include <charconv>
#include <cstddef>

namespace host {

namespace {

constexpr int NANOSECONDS = 9;     // digits behind the point of seconds
constexpr int MICROSECONDS = 6;    // of milliseconds: nanoseconds too

std::string fixed(double value, int digits)
{
    char text[400];    // any double fits
    const auto result = std::to_chars(text, text + sizeof(text), value, std::chars_format::fixed, digits);
    return {text, result.ptr};
}

std::string shortest(double value)
{
    char text[64];
    const auto result = std::to_chars(text, text + sizeof(text), value);
    return {text, result.ptr};
}

std::string fileNamePart(const std::string& metric)
{
    std::string name;
    for (const char c : metric) {
        if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) {
            name += c;
        } else if (c >= 'A' && c <= 'Z') {
            name += static_cast<char>(c - 'A' + 'a');
        } else {
            name += '-';
        }
    }
    return name.empty() ? "metric" : name;
}

bool isResidency(const pwr::Metric& metric)
{
    return metric.getMetricType() == pwr::Metric::MetricType::SampledResidency;
}

std::string valueTitle(const pwr::Metric& metric)
{
    if (isResidency(metric)) return "Residency (ms)";
    std::string title = metric.getValueGroupInfo() != nullptr ? metric.getValueGroupInfo()->getName() : "Value";
    if (metric.getQuantity() != nullptr) metric.getQuantity()->toTitleString(title);
    return title;
}

// A name is told as such; that of a process with the id that tells it from others of its name.
std::string handleText(const pwr::Data& value)
{
    const pwr::DataHandle* handle = nullptr;
    if (value.toHandle(handle) != 0 || handle == nullptr) return {};
    const auto* process = dynamic_cast<const pwr::Process*>(handle);
    return handle->getName() + (process != nullptr ? " (" + std::to_string(process->getPid()) + ")" : "");
}

double ticksPerSecond(const pwr::SystemMetadata* system)
{
    return system != nullptr && system->qvaClockFreqMHz > 0 ? static_cast<double>(system->qvaClockFreqMHz) * 1e6 : 1e9;
}

}    // namespace

CsvWriter::CsvWriter(const std::string& prefix)
    : TableWriter("quorvane-host-csv-writer", "csv", "summary tables and timelines for other programs", ".csv"),
      m_prefix(prefix)
{
}

int CsvWriter::openOutput()
{
    return open_i(m_summary, "summary") ? 0 : 1;
}

int CsvWriter::closeOutput()
{
    finishTables_i();
    close_i(m_summary);
    for (auto& [metric, file] : m_timelines)
        close_i(file);
    return m_error.empty() ? 0 : 1;
}

void CsvWriter::writeNotes_i(const std::vector<std::string>& notes)
{
    for (const std::string& note : notes)
        m_summary.writeRow({note});
    m_summary.writeEmptyLine();
}

void CsvWriter::beginTable_i(const TableHead& head)
{
    m_summary.writeRow({head.title});
    for (const std::string& note : head.preNotes)
        m_summary.writeRow({note});
    std::vector<std::string> titles;
    for (const TableHead::Column& column : head.columns) {
        const bool needsBlank = !column.entity.empty() && !column.name.empty();
        titles.push_back(column.entity + (needsBlank ? " " : "") + column.name);
    }
    m_summary.writeRow(titles);
}

void CsvWriter::writeRow_i(const std::vector<std::string>& cells)
{
    m_summary.writeRow(cells);
}

void CsvWriter::endTable_i(const TableHead& head)
{
    for (const std::string& note : head.postNotes)
        m_summary.writeRow({note});
    m_summary.writeEmptyLine();
}

int CsvWriter::writeMessage(const pwr::SystemMessage& message)
{
    m_system = message.getSystemMetadata();
    return 0;
}

int CsvWriter::writeMessage(const pwr::Metric& metric)
{
    CsvFile& file = timelineOf_i(metric);
    const pwr::Metric::DataPoint& point = metric.getData();
    const std::string time = secondsSinceStart_i(point.timestamp);
    for (const pwr::DataElement* element : point.elements) {
        const pwr::DataDescriptor* descriptor = element->getDescriptor();
        file.writeRow({time, element->getEntity()->getQualifiedName(),
                       descriptor != nullptr ? descriptor->getName() : std::string(), valueText_i(metric, *element),
                       seconds_i(element->getDuration())});
    }
    return file.getError().empty() ? 0 : 1;
}

CsvFile& CsvWriter::timelineOf_i(const pwr::Metric& metric)
{
    const auto [entry, isNew] = m_timelines.try_emplace(metric.getId());
    CsvFile& file = entry->second;
    if (isNew && open_i(file, uniqueName_i(metric.getName()))) {
        file.writeRow({"Time (s)", "Entity", "Descriptor", valueTitle(metric), "Duration (s)"});
    }
    return file;
}

bool CsvWriter::open_i(CsvFile& file, const std::string& name)
{
    m_names.insert(name);
    if (file.open(m_prefix + "_" + name + ".csv")) {
        m_paths.push_back(file.getPath());
        return true;
    }
    if (m_error.empty()) m_error = file.getError();
    return false;
}

void CsvWriter::close_i(CsvFile& file)
{
    if (!file.close() && m_error.empty()) m_error = file.getError();
}

std::string CsvWriter::uniqueName_i(const std::string& metric)
{
    const std::string plain = fileNamePart(metric);
    std::string name = plain;
    for (int number = 2; m_names.count(name) != 0; ++number)
        name = plain + "-" + std::to_string(number);
    return name;
}

std::string CsvWriter::secondsSinceStart_i(unsigned long long timestamp) const
{
    const unsigned long long start = m_system != nullptr ? m_system->startTSC : 0;
    return seconds_i(timestamp - start);
}

std::string CsvWriter::seconds_i(unsigned long long ticks) const
{
    return fixed(static_cast<double>(ticks) / ticksPerSecond(m_system), NANOSECONDS);
}

// Whole, where the summary's text would be rounded.
std::string CsvWriter::valueText_i(const pwr::Metric& metric, const pwr::DataElement& element) const
{
    const pwr::Data* value = element.getValue();
    if (value == nullptr) return {};
    unsigned long long ticks = 0;
    if (isResidency(metric) && value->toUInt(ticks) == 0) {
        return fixed(static_cast<double>(ticks) / (ticksPerSecond(m_system) / 1000.0), MICROSECONDS);
    }
    if (value->getType() == pwr::DataType::HANDLE) return handleText(*value);
    double real = 0;
    if (value->getType() == pwr::DataType::REAL && value->toReal(real) == 0) return shortest(real);
    std::string text;
    value->toFormattedString(text);
    return text;
}

}    // namespace host
