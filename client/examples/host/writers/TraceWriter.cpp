#include "writers/TraceWriter.h"

#include "writers/JsonObject.h"
#include "writers/Text.h"

#include "metrics/Metric.h"
#include "record/SystemMetadata.h"
#include "values/Data.h"
#include "values/EntityHandle.h"
#include "values/Handles.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

namespace host {

namespace {

constexpr int NS_IN_MICROSECONDS = 3;    // digits behind the point: the format counts microseconds

void appendPlace(std::string& out, unsigned int process, unsigned int lane)
{
    out += ",\"pid\":";
    appendNumber(out, std::uint64_t{process});
    if (lane == 0) return;
    out += ",\"tid\":";
    appendNumber(out, std::uint64_t{lane});
}

void appendTime(std::string& out, const char* member, std::uint64_t ns)
{
    out += member;
    appendDecimal(out, ns, NS_IN_MICROSECONDS);
}

std::string nameText(const Reading& reading)
{
    std::string text;
    appendReading(text, reading);
    return text.empty() ? "(no value)" : text;
}

}    // namespace

TraceWriter::TraceWriter(const std::string& prefix)
    : ResultWriter("quorvane-host-trace-writer", "trace", "timelines for trace viewers", ".trace.json"),
      m_path(prefix + ".trace.json")
{
}

int TraceWriter::openOutput()
{
    return openFile_i(m_file, m_path) ? 0 : 1;
}

int TraceWriter::closeOutput()
{
    finishTables_i();
    if (!m_isBegun) openProcess_i("quorvane_host");
    m_file.write("\n]}\n");
    return closeFile_i(m_file);
}

// The head of the file waits for the record, which comes before all else.
std::string& TraceWriter::beginEvent_i()
{
    std::string& out = m_file.pending();
    if (m_isBegun) {
        m_file.commit();
        out += ",\n";
        return out;
    }
    m_isBegun = true;
    out += "{\"displayTimeUnit\":\"ms\",\"otherData\":";
    JsonObject data(out);
    if (const pwr::SystemMetadata* record = time_i().getRecord()) {
        data.text("host", record->hostName).text("os", record->osName + " " + record->osVersion);
        std::string start;
        time_i().appendUtc(start, 0);
        data.text("start", start);
    }
    data.end(",\"traceEvents\":[\n");
    return out;
}

void TraceWriter::writeName_i(unsigned int process, unsigned int lane, const char* what, const std::string& name)
{
    std::string& out = beginEvent_i();
    out += "{\"ph\":\"M\"";
    appendPlace(out, process, lane);
    out += ",\"name\":\"";
    out += what;
    out += "\",\"args\":";
    JsonObject(out).text("name", name).end("}");
}

unsigned int TraceWriter::openProcess_i(const std::string& name)
{
    writeName_i(++m_processCount, 0, "process_name", name);
    return m_processCount;
}

TraceWriter::Process& TraceWriter::processOf_i(const pwr::Metric& metric)
{
    using Type = pwr::Metric::MetricType;
    const auto [entry, isNew] = m_processes.try_emplace(metric.getId());
    Process& process = entry->second;
    if (!isNew) return process;
    process.number = openProcess_i(metric.getName());
    process.title = valueInfoOf(metric).title();
    process.isAmount = metric.getMetricType() == Type::SampledDelta;
    switch (metric.getMetricType()) {
    case Type::SampledResidency:
        process.shape = Shape::STACKED_SLICES;
        break;
    case Type::TracedValueTransition:
        process.shape = Shape::SLICES;
        break;
    case Type::TracedEvent:
        process.shape = Shape::INSTANTS;
        break;
    default:
        break;
    }
    return process;
}

// Only the states of a residency share the lane of their entity.
TraceWriter::Series TraceWriter::makeSeries_i(Process& process, const pwr::DataElement& element)
{
    std::string name = qualifiedNameOf(element.getEntity());
    if (process.shape != Shape::STACKED_SLICES && element.getDescriptor() != nullptr)
        name += " " + element.getDescriptor()->getName();
    const auto [entry, isNew] = process.lanes.try_emplace(name);
    Lane& lane = entry->second;
    if (isNew) {
        lane.number = ++m_laneCount;
        writeName_i(process.number, lane.number, "thread_name", name);
    }
    Series series{&lane, "{\"ph\":\"C\""};
    appendPlace(series.counter, process.number, 0);
    series.counter += ",\"name\":";
    appendJson(series.counter, std::string_view(name));
    series.counter += ",\"args\":{";
    appendJson(series.counter, std::string_view(process.title));
    series.counter += ':';
    return series;
}

int TraceWriter::writeMessage(const pwr::Metric& metric)
{
    Process& process = processOf_i(metric);
    const pwr::Metric::DataPoint& point = metric.getData();
    m_lastNs = std::max(m_lastNs, time_i().sinceStartNs(point.timestamp));
    for (const pwr::DataElement* element : point.elements)
        writeElement_i(process, point.timestamp, *element);
    return m_file.getError().empty() ? 0 : 1;
}

void TraceWriter::writeElement_i(Process& process, std::uint64_t timestamp, const pwr::DataElement& element)
{
    const Series& series = process.series.get(element, [&] { return makeSeries_i(process, element); });
    const Reading reading = readValue(element.getValue());
    const std::uint64_t atNs = time_i().sinceStartNs(timestamp);
    const std::uint64_t fromNs = atNs - std::min(atNs, time_i().toNs(element.getDuration()));
    switch (process.shape) {
    case Shape::COUNTERS:
        if (reading.isNumber()) {
            writeCounter_i(process, series, fromNs, atNs, reading);
            break;
        }
        [[fallthrough]];
    case Shape::SLICES:
        writeSlice_i(process, *series.lane, nameText(reading), fromNs, atNs - fromNs);
        break;
    case Shape::STACKED_SLICES:
        stackSlice_i(process, *series.lane, timestamp, fromNs, element, reading);
        break;
    case Shape::INSTANTS:
        writeInstant_i(process.number, series.lane->number, nameText(reading), atNs, "{}");
        break;
    }
}

void TraceWriter::writeCounter_i(const Process& process, const Series& series, std::uint64_t fromNs, std::uint64_t atNs,
                                 const Reading& reading)
{
    if (!std::isfinite(reading.real)) return;
    std::string& out = beginEvent_i();
    out += series.counter;
    appendReading(out, reading);
    appendTime(out, "},\"ts\":", process.isAmount ? fromNs : atNs);
    out += '}';
}

void TraceWriter::writeSlice_i(const Process& process, const Lane& lane, const std::string& name, std::uint64_t fromNs,
                               std::uint64_t durationNs)
{
    std::string& out = beginEvent_i();
    out += "{\"ph\":\"X\"";
    appendPlace(out, process.number, lane.number);
    out += ",\"name\":";
    appendJson(out, std::string_view(name));
    appendTime(out, ",\"ts\":", fromNs);
    appendTime(out, ",\"dur\":", durationNs);
    out += '}';
}

void TraceWriter::stackSlice_i(const Process& process, Lane& lane, std::uint64_t timestamp, std::uint64_t fromNs,
                               const pwr::DataElement& element, const Reading& reading)
{
    if (lane.point != timestamp) {
        lane.point = timestamp;
        lane.cursorNs = fromNs;
    }
    const std::uint64_t lengthNs = time_i().toNs(reading.natural);
    if (reading.kind != Reading::Kind::UNSIGNED || lengthNs == 0) return;
    writeSlice_i(process, lane, nameOf(element.getDescriptor()), lane.cursorNs, lengthNs);
    lane.cursorNs += std::min(lengthNs, std::numeric_limits<std::uint64_t>::max() - lane.cursorNs);
}

// `arguments` is an object.
void TraceWriter::writeInstant_i(unsigned int process, unsigned int lane, const std::string& name, std::uint64_t atNs,
                                 const std::string& arguments)
{
    std::string& out = beginEvent_i();
    out += "{\"ph\":\"i\",\"s\":\"t\"";
    appendPlace(out, process, lane);
    out += ",\"name\":";
    appendJson(out, std::string_view(name));
    appendTime(out, ",\"ts\":", atNs);
    out += ",\"args\":" + arguments + "}";
}

void TraceWriter::beginTable_i(const TableHead& head)
{
    if (m_summaries == 0) m_summaries = openProcess_i("Summary tables");
    m_table = ++m_laneCount;
    writeName_i(m_summaries, m_table, "thread_name", head.title);
    m_titles.clear();
    std::set<std::string> taken;
    for (const TableHead::Column& column : head.columns) {
        m_titles.push_back(
            uniqueText(column.title(), " ", [&taken](const std::string& text) { return taken.count(text) != 0; }));
        taken.insert(m_titles.back());
    }
}

void TraceWriter::writeRow_i(const std::vector<TableCell>& cells)
{
    std::string arguments = "{";
    for (std::size_t i = 0; i < cells.size() && i < m_titles.size(); ++i) {
        if (i > 0) arguments += ',';
        appendJson(arguments, std::string_view(m_titles[i]));
        arguments += ':';
        appendJson(arguments, readValue(cells[i].value));
    }
    const std::string name = cells.empty() || cells.front().text.empty() ? "row" : cells.front().text;
    writeInstant_i(m_summaries, m_table, name, m_lastNs, arguments + "}");
}

}    // namespace host
