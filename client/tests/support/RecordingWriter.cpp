#include "support/RecordingWriter.h"

#include "metrics/Metric.h"
#include "output/TableMessage.h"
#include "output/TextNotes.h"
#include "output/WriterMessage.h"
#include "values/EntityHandle.h"
#include "values/Handles.h"

#include <algorithm>

namespace test {

namespace {

std::vector<std::string> toVector(const std::deque<std::string>& texts)
{
    return {texts.begin(), texts.end()};
}

RecordedElement recorded(const pwr::DataElement& element)
{
    RecordedElement copy;
    if (element.getEntity() != nullptr) copy.entity = element.getEntity()->getQualifiedName();
    if (element.getDescriptor() != nullptr) copy.descriptor = element.getDescriptor()->getName();
    if (element.getScopraDescriptor() != nullptr) copy.scopraDescriptor = element.getScopraDescriptor()->getName();
    if (element.getValue() != nullptr) copy.value = *element.getValue();
    copy.duration = element.getDuration();
    return copy;
}

// In the order of getRowValues().
std::vector<pwr::Data> cellValues(const pwr::TableMessage& table)
{
    std::vector<pwr::Data> values;
    if (table.getTableMessageType() == pwr::TableMessageType::TABLE_LAYOUT) return values;
    const auto keep = [&](const pwr::EntityHandle* entity, const pwr::DataHandle* handle) {
        const pwr::Data* value = nullptr;
        bool isValid = false;
        const int result = entity != nullptr ? table.getFieldValue(entity, handle, value, isValid)
                                             : table.getFieldValue(handle, value, isValid);
        values.push_back(result == 0 && isValid ? *value : pwr::Data());
    };
    const auto keepRow = [&](const pwr::EntityHandle* entity) {
        for (auto handle = table.handleBegin(); handle != table.handleEnd(); ++handle)
            keep(entity, *handle);
    };
    for (auto handle = table.sharedHandleBegin(); handle != table.sharedHandleEnd(); ++handle)
        keep(nullptr, *handle);
    if (table.getEntityCount() == 0) keepRow(nullptr);
    for (auto entity = table.entityBegin(); entity != table.entityEnd(); ++entity)
        keepRow(*entity);
    return values;
}

}    // namespace

int RecordingWriter::openOutput()
{
    ++opened;
    return 0;
}

int RecordingWriter::closeOutput()
{
    ++closed;
    return result;
}

std::vector<RecordedTable> RecordingWriter::tablesNamed(const std::string& title) const
{
    std::vector<RecordedTable> found;
    std::copy_if(tables.begin(), tables.end(), std::back_inserter(found),
                 [&title](const RecordedTable& table) { return table.title == title; });
    return found;
}

std::vector<std::string> RecordingWriter::tableTitles() const
{
    std::vector<std::string> titles;
    for (const RecordedTable& table : tables) {
        if (std::find(titles.begin(), titles.end(), table.title) == titles.end()) titles.push_back(table.title);
    }
    return titles;
}

void RecordingWriter::clear()
{
    tables.clear();
    points.clear();
    infos.clear();
    texts.clear();
    ids.clear();
    systems.clear();
}

int RecordingWriter::writeMessage(const pwr::MetricContainerInfoMessage& message)
{
    RecordedInfo info;
    info.metricId = message.getMetricContainerId();
    info.header = message.getContainerHeader();
    info.tag = message.getMetricContainerTag();
    info.hasNotes = message.getTextInfo() != nullptr;
    info.hasStaticTable = message.getStaticTableRowInfo() != nullptr;
    info.timeline = message.getTimelineTableToDisplay();
    infos.push_back(info);
    return result;
}

int RecordingWriter::writeMessage(const pwr::Metric& metric)
{
    RecordedPoint point;
    point.metric = metric.getName();
    point.timestamp = metric.getData().timestamp;
    for (const pwr::DataElement* element : metric.getData().elements)
        point.elements.push_back(recorded(*element));
    points.push_back(point);
    return result;
}

int RecordingWriter::writeMessage(const pwr::IdMessage& message)
{
    std::vector<unsigned long long> announced;
    for (const pwr::UniqueId* object : message)
        announced.push_back(object->getId());
    ids.push_back(announced);
    return result;
}

int RecordingWriter::writeMessage(const pwr::SystemMessage& message)
{
    systems.push_back(message.getSystemMetadata());
    return result;
}

int RecordingWriter::writeMessage(const pwr::TextMessage& message)
{
    texts.push_back({message.getMessageType(), message.getMessageId(), message.getMessage()});
    return result;
}

int RecordingWriter::writeMessage(const pwr::TableMessage& message)
{
    RecordedTable table;
    table.messageId = message.getMessageId();
    table.metricId = message.getMetricContainerId();
    table.isChildOfMetric = message.isChildOf(table.metricId);
    table.title = message.getTitle();
    table.type = message.getTableMessageType();
    std::deque<std::string> columns;
    getColumnTitles(message, columns);
    table.columns = toVector(columns);
    std::deque<std::string> cells;
    getRowValues(message, cells);
    table.cells = toVector(cells);
    table.values = cellValues(message);
    if (message.getTextNotes() != nullptr) {
        message.getTextNotes()->getPreTableNotes(table.preNotes);
        message.getTextNotes()->getPostTableNotes(table.postNotes);
    }
    tables.push_back(table);
    return result;
}

}    // namespace test
