#include "writers/CsvWriter.h"

#include "writers/Text.h"

#include "metrics/Metric.h"
#include "values/EntityHandle.h"
#include "values/Handles.h"

#include <cstddef>

namespace host {

namespace {

constexpr int NANOSECONDS = 9;     // digits behind the point of seconds
constexpr int MICROSECONDS = 6;    // of milliseconds: nanoseconds too
constexpr std::size_t LONGEST_NAME = 100;

std::string namesOf(const pwr::DataElement& element)
{
    std::string names = ",";
    appendCsv(names, qualifiedNameOf(element.getEntity()));
    names += ',';
    appendCsv(names, nameOf(element.getDescriptor()));
    return names + ',';
}

}    // namespace

CsvWriter::CsvWriter(const std::string& prefix, bool hasTimelines)
    : ResultWriter("quorvane-host-csv-writer", "csv", "summary tables and timelines for other programs", ".csv"),
      m_prefix(prefix), m_hasTimelines(hasTimelines)
{
}

int CsvWriter::openOutput()
{
    return open_i(m_summary, "summary") ? 0 : 1;
}

int CsvWriter::closeOutput()
{
    finishTables_i();
    const std::string head = CsvFile::headText(head_i().lines());
    int result = closeFile_i(m_summary, head);
    for (auto& [metric, timeline] : m_timelines)
        result = closeFile_i(timeline.file, head);
    return result;
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
    for (const TableHead::Column& column : head.columns)
        titles.push_back(column.title());
    m_summary.writeRow(titles);
}

void CsvWriter::writeRow_i(const std::vector<TableCell>& cells)
{
    std::vector<std::string> texts;
    for (const TableCell& cell : cells)
        texts.push_back(cell.text);
    m_summary.writeRow(texts);
}

void CsvWriter::endTable_i(const TableHead& head)
{
    for (const std::string& note : head.postNotes)
        m_summary.writeRow({note});
    m_summary.writeEmptyLine();
}

int CsvWriter::writeMessage(const pwr::Metric& metric)
{
    if (!m_hasTimelines) return 0;
    Timeline& timeline = timelineOf_i(metric);
    const pwr::Metric::DataPoint& point = metric.getData();
    const std::uint64_t sinceStartNs = time_i().sinceStartNs(point.timestamp);
    m_times.clear();
    appendDecimal(m_times, sinceStartNs, NANOSECONDS);
    m_times += ',';
    time_i().appendUtc(m_times, sinceStartNs);
    for (const pwr::DataElement* element : point.elements)
        writeElement_i(timeline, *element);
    return timeline.file.getError().empty() ? 0 : 1;
}

void CsvWriter::writeElement_i(Timeline& timeline, const pwr::DataElement& element)
{
    std::string& line = timeline.file.pending();
    line += m_times;
    line += timeline.names.get(element, [&element] { return namesOf(element); });
    const Reading reading = readValue(element.getValue());
    if (timeline.info.isResidency && reading.kind == Reading::Kind::UNSIGNED) {
        appendDecimal(line, time_i().toNs(reading.natural), MICROSECONDS);
    } else if (reading.kind == Reading::Kind::TEXT) {
        appendCsv(line, reading.text);
    } else {
        appendReading(line, reading);
    }
    line += ',';
    appendDecimal(line, time_i().toNs(element.getDuration()), NANOSECONDS);
    line += '\n';
    timeline.file.commit();
}

CsvWriter::Timeline& CsvWriter::timelineOf_i(const pwr::Metric& metric)
{
    const auto [entry, isNew] = m_timelines.try_emplace(metric.getId());
    Timeline& timeline = entry->second;
    if (!isNew) return timeline;
    timeline.info = valueInfoOf(metric);
    const std::string name = uniqueText(plainWord(metric.getName(), '-', LONGEST_NAME), "-",
                                        [this](const std::string& text) { return m_names.count(text) != 0; });
    if (open_i(timeline.file, name))
        timeline.file.writeRow(
            {"Time (s)", "Time (UTC)", "Entity", "Descriptor", timeline.info.title(), "Duration (s)"});
    return timeline;
}

bool CsvWriter::open_i(CsvFile& file, const std::string& name)
{
    m_names.insert(name);
    return openFile_i(file, m_prefix + "_" + name + ".csv");
}

}    // namespace host
