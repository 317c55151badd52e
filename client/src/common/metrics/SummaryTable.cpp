#include "metrics/SummaryTable.h"

#include "metrics/Metric.h"
#include "output/WriterStream.h"
#include "runtime/Log.h"
#include "values/DataHandle.h"
#include "values/Description.h"
#include "values/EntityHandle.h"
#include "values/Formatter.h"
#include "values/Handles.h"

namespace pwr {

namespace {

RealFormatter realFormatter()
{
    return RealFormatter(0, 2);
}

const Field* orUnnamed(const Field* group)
{
    return group != nullptr ? group : Field::create(FieldDescription("", ""));
}

}    // namespace

TableRequest::TableRequest(const Metric& requester, const std::string& tableType,
                           const WriterInterfaceConfigFileParser& config)
    : metric(requester)
{
    const std::string& tag = metric.getMetricContainerTag();
    if (!config.getTableInfoFor(info, tag, metric.getFeatureSwitchTag(), tableType)) {
        QV_LOG_INFO("INFO: Output config file entry not present for MetricContainer %s and table type %s.\n",
                    tag.c_str(), tableType.c_str());
    }
    if (!info.getTableTitle(title)) title = metric.getName();
}

SummaryTable::SummaryTable(WriterStream& stream, const Metric& metric, const std::string& title, const TextNotes* notes)
    : m_stream(stream), m_table(title, nullptr)
{
    m_table.addParentMessage(metric.getId());
    m_table.setMetricContainerId(metric.getId());
    m_table.setTextNotes(notes);
}

unsigned int SummaryTable::addGroupColumn(const Field* group, DataType type)
{
    m_table.addField(orUnnamed(group), type, false);
    return m_fieldCount++;
}

unsigned int SummaryTable::addSharedGroupColumn(const Field* group, DataType type)
{
    m_table.addField(orUnnamed(group), type, true);
    return m_fieldCount++;
}

unsigned int SummaryTable::addSharedColumn(const std::string& name, DataType type)
{
    m_table.addField(name, type, true);
    return m_fieldCount++;
}

unsigned int SummaryTable::addColumn(const std::string& name, DataType type)
{
    m_table.addField(name, type, false);
    return m_fieldCount++;
}

unsigned int SummaryTable::addRealColumn(const std::string& name)
{
    m_table.addField(name, DataType::REAL, realFormatter(), false);
    return m_fieldCount++;
}

std::string SummaryTable::realText(const Data& value)
{
    std::string text;
    Formatter::formatReal(realFormatter(), text, value);
    return text;
}

void SummaryTable::addPairColumns(const Metric& metric, bool withDescriptors)
{
    addGroupColumn(metric.getEntityGroupInfo(), DataType::HANDLE);
    if (withDescriptors) addGroupColumn(metric.getDescriptorGroupInfo(), DataType::HANDLE);
    m_pairColumnCount = m_fieldCount;
}

void SummaryTable::create()
{
    m_table.createTable();
}

void SummaryTable::pushHeader()
{
    create();
    pushRow();
}

void SummaryTable::pushRow()
{
    m_stream.pushMessage(m_table);
}

void SummaryTable::setHandle(unsigned int field, const DataHandle* handle)
{
    if (handle != nullptr) m_table.setField(field, *handle);
}

unsigned int SummaryTable::setPair(const EntityHandle* entity, const DataDescriptor* descriptor)
{
    setHandle(0, entity);
    if (m_pairColumnCount > 1) setHandle(1, descriptor);
    return m_pairColumnCount;
}

}    // namespace pwr
