#include "writers/JsonlWriter.h"

#include "writers/JsonObject.h"
#include "writers/Text.h"

#include "metrics/Metric.h"
#include "output/TextNotes.h"
#include "output/WriterMessage.h"
#include "record/SystemMetadata.h"
#include "values/EntityHandle.h"
#include "values/Handles.h"
#include "values/Quantity.h"

namespace host {

namespace {

constexpr int NANOSECONDS = 9;     // digits behind the point of seconds
constexpr int MICROSECONDS = 6;    // of milliseconds: nanoseconds too

const char* kindOf(pwr::DataHandleType type)
{
    switch (type) {
    case pwr::DataHandleType::ATTRIBUTE:
        return "attribute";
    case pwr::DataHandleType::FIELD:
        return "field";
    case pwr::DataHandleType::STATE:
        return "state";
    case pwr::DataHandleType::PROCESS:
        return "process";
    case pwr::DataHandleType::THREAD:
        return "thread";
    case pwr::DataHandleType::NAME_VALUE_PAIR:
        return "name-value-pair";
    case pwr::DataHandleType::EVENT:
        return "event";
    case pwr::DataHandleType::ENTITY:
        return "entity";
    case pwr::DataHandleType::DATA_DESCRIPTOR:
        return "descriptor";
    }
    return "object";
}

// What is known of an identified object by its class.
void describeObject(JsonObject& line, const pwr::UniqueId& object)
{
    if (const auto* quantity = dynamic_cast<const pwr::Quantity*>(&object)) {
        line.text("kind", "quantity").text("name", quantity->toQuantityString());
        line.text("unit", quantity->toUnitsString());
        return;
    }
    const auto* handle = dynamic_cast<const pwr::DataHandle*>(&object);
    if (handle == nullptr) return;
    line.text("kind", kindOf(handle->getHandleType())).text("name", handle->getName());
    if (!handle->getDescription().empty()) line.text("description", handle->getDescription());
    const auto* entity = dynamic_cast<const pwr::EntityHandle*>(handle);
    if (entity == nullptr) return;
    line.text("qualifiedName", entity->getQualifiedName());
    if (entity->getParent() != nullptr) line.number("parent", entity->getParent()->getId());
}

std::string namesOf(const pwr::DataElement& element)
{
    std::string names = ",\"entity\":";
    appendJson(names, qualifiedNameOf(element.getEntity()));
    if (element.getEntity() != nullptr) {
        names += ",\"entityId\":";
        appendNumber(names, std::uint64_t{element.getEntity()->getId()});
    }
    if (element.getDescriptor() != nullptr) {
        names += ",\"descriptor\":";
        appendJson(names, element.getDescriptor()->getName());
        names += ",\"descriptorId\":";
        appendNumber(names, std::uint64_t{element.getDescriptor()->getId()});
    }
    return names + ",\"value\":";
}

}    // namespace

JsonlWriter::JsonlWriter(const std::string& prefix)
    : ResultWriter("quorvane-host-jsonl-writer", "jsonl", "one JSON object a line: objects, timelines, tables",
                   ".jsonl"),
      m_path(prefix + ".jsonl")
{
}

int JsonlWriter::openOutput()
{
    return openFile_i(m_file, m_path) ? 0 : 1;
}

int JsonlWriter::closeOutput()
{
    finishTables_i();
    return closeFile_i(m_file);
}

int JsonlWriter::writeMessage(const pwr::SystemMessage& message)
{
    ResultWriter::writeMessage(message);
    if (time_i().getRecord() == nullptr) return 0;
    const pwr::SystemMetadata& record = *time_i().getRecord();
    JsonObject line(m_file.pending());
    line.text("type", "run").text("host", record.hostName).text("platform", record.platformName);
    line.text("os", record.osName).text("osVersion", record.osVersion);
    line.real("clockMHz", static_cast<double>(record.qvaClockFreqMHz)).texts("commandLine", record.commandLine);
    line.end();
    return 0;
}

int JsonlWriter::writeMessage(const pwr::IdMessage& message)
{
    for (const pwr::UniqueId* object : message) {
        if (object == nullptr) continue;
        JsonObject line(m_file.pending());
        line.text("type", "object").number("id", object->getId());
        describeObject(line, *object);
        line.end();
        m_file.commit();
    }
    return 0;
}

// Announces that the tables of the metric come next.
int JsonlWriter::writeMessage(const pwr::MetricContainerInfoMessage& message)
{
    if (!message.getContainerHeader().empty()) {
        finishTables_i();
        JsonObject line(m_file.pending());
        line.text("type", "summary").number("metric", message.getMetricContainerId());
        line.text("tag", message.getMetricContainerTag()).end();
    }
    return ResultWriter::writeMessage(message);
}

void JsonlWriter::writeNotes_i(const std::vector<std::string>& notes)
{
    for (const std::string& note : notes)
        JsonObject(m_file.pending()).text("type", "note").text("text", note).end();
    m_file.commit();
}

void JsonlWriter::beginTable_i(const TableHead& head)
{
    m_table = head.messageId;
    JsonObject line(m_file.pending());
    line.text("type", "table").number("table", head.messageId);
    if (head.metricId != 0) line.number("metric", head.metricId);
    std::vector<std::string> titles;
    for (const TableHead::Column& column : head.columns)
        titles.push_back(column.title());
    line.text("title", head.title).texts("columns", titles);
    line.texts("preNotes", head.preNotes).texts("postNotes", head.postNotes).end();
    m_file.commit();
}

void JsonlWriter::writeRow_i(const std::vector<TableCell>& cells)
{
    JsonObject line(m_file.pending());
    line.text("type", "row").number("table", m_table).name("cells");
    std::string& out = m_file.pending();
    char separator = '[';
    for (const TableCell& cell : cells) {
        out += separator;
        appendJson(out, readValue(cell.value));
        separator = ',';
    }
    out += cells.empty() ? "[]" : "]";
    line.end();
    m_file.commit();
}

int JsonlWriter::writeMessage(const pwr::Metric& metric)
{
    Timeline& timeline = timelineOf_i(metric);
    const pwr::Metric::DataPoint& point = metric.getData();
    const std::uint64_t sinceStartNs = time_i().sinceStartNs(point.timestamp);
    for (const pwr::DataElement* element : point.elements)
        writeElement_i(timeline, sinceStartNs, *element);
    return m_file.getError().empty() ? 0 : 1;
}

void JsonlWriter::writeElement_i(Timeline& timeline, std::uint64_t sinceStartNs, const pwr::DataElement& element)
{
    std::string& out = m_file.pending();
    out += timeline.begin;
    appendDecimal(out, sinceStartNs, NANOSECONDS);
    out += timeline.names.get(element, [&element] { return namesOf(element); });
    const Reading reading = readValue(element.getValue());
    if (timeline.info.isResidency && reading.kind == Reading::Kind::UNSIGNED) {
        appendDecimal(out, time_i().toNs(reading.natural), MICROSECONDS);
    } else {
        appendJson(out, reading);
    }
    out += ",\"duration\":";
    appendDecimal(out, time_i().toNs(element.getDuration()), NANOSECONDS);
    out += "}\n";
    m_file.commit();
}

JsonlWriter::Timeline& JsonlWriter::timelineOf_i(const pwr::Metric& metric)
{
    const auto [entry, isNew] = m_timelines.try_emplace(metric.getId());
    Timeline& timeline = entry->second;
    if (!isNew) return timeline;
    timeline.info = valueInfoOf(metric);
    timeline.begin = "{\"type\":\"point\",\"metric\":" + std::to_string(metric.getId()) + ",\"time\":";
    announce_i(metric, timeline.info);
    return timeline;
}

void JsonlWriter::announce_i(const pwr::Metric& metric, const ValueInfo& info)
{
    JsonObject line(m_file.pending());
    line.text("type", "metric").number("metric", metric.getId()).text("name", metric.getName());
    line.text("kind", typeNameOf(metric.getMetricType())).text("value", info.name).text("unit", info.unit);
    const pwr::SystemMetadata* record = time_i().getRecord();
    if (record != nullptr && record->startTimeval != 0) {
        std::string start;
        time_i().appendUtc(start, 0);
        line.text("start", start);
    }
    line.end();
}

}    // namespace host
