#include "metrics/SampledResidencyAccumulator.h"

#include "metrics/Metric.h"
#include "metrics/SummaryTable.h"
#include "runtime/Log.h"
#include "runtime/Saturate.h"

using pwr::DataDescriptor;
using pwr::DataElement;
using pwr::DataType;
using pwr::EntityHandle;
using pwr::Metric;
using pwr::SummaryTable;

template <>
const std::vector<std::string> pwr::Enum<SampledResidencyAccumulator::Summary>::s_names = {
    "SAMPLE-COUNT", "RESIDENCY-PERCENTAGE", "RESIDENCY-MILLISECOND", "RESIDENCY-COMBINED"};

SampledResidencyAccumulator::SampledResidencyAccumulator(const std::list<Summary>& summaries)
    : SummaryAccumulator(entriesOf_i(summaries))
{
    countSamples_i(false, true, true);
}

void SampledResidencyAccumulator::initialize_i(const Metric& metric)
{
    m_descriptors = pwr::UniqueSequence<std::list<const DataDescriptor*>>(metric.getDescriptorList());
}

int SampledResidencyAccumulator::processMessage_i(const Metric& metric)
{
    ++m_point;
    for (const DataElement* element : metric.getData().elements) {
        if (element->getValue()->getType() != DataType::UINT) {
            QV_LOG_WARNING("WARNING: %s: MetricType::SampledResidency metric type is requiredto have values of type "
                           "pw_u64_t\n",
                           metric.getName().c_str());
            return 1;
        }
        addElement_i(*element);
    }
    return 0;
}

void SampledResidencyAccumulator::addElement_i(const DataElement& element)
{
    Record& record = recordOf_i(element);
    unsigned long long ticks = 0;
    element.getValue()->toUInt(ticks);
    record.residency += static_cast<double>(ticks);
    ++record.count;

    // Whatever the number of its states, an entity's time counts once in a data point.
    Entity& entity = *record.entity;
    if (entity.lastPoint == m_point) return;
    entity.lastPoint = m_point;
    entity.totalDuration += static_cast<double>(element.getDuration());
}

SampledResidencyAccumulator::Record& SampledResidencyAccumulator::recordOf_i(const DataElement& element)
{
    const auto [record, isNew] = m_records.at(pwr::elementKey(element));
    if (isNew) {
        record->entity = &m_entities[pwr::idOf(element.getEntity())];
        record->entity->handle = element.getEntity();
        if (element.getDescriptor() != nullptr) m_descriptors.add(element.getDescriptor());
    }
    return *record;
}

void SampledResidencyAccumulator::makeTable_i(std::size_t summary, const pwr::TableRequest& request)
{
    const auto type = static_cast<Summary>(summary);
    const Figures figures{type != Summary::RESIDENCY_MILLISECOND, type != Summary::RESIDENCY_PERCENTAGE};
    std::string title = request.title + " Summary: Residency";
    if (figures.percent && figures.msec) {
        title += " (Percentage and Time)";
    } else {
        title += figures.percent ? " (Percentage)" : " (Time)";
    }
    SummaryTable table(*m_stream, request.metric, title, makeNotes_i(request.info));
    if (request.info.isTableTransposed()) {
        fillTransposedTable_i(table, request.metric, figures);
    } else {
        fillTable_i(table, request.metric, figures);
    }
}

// Rows are states, each entity has columns of its own. An entity that only a combination names comes too late for the
// layout: the table refuses its cells.
void SampledResidencyAccumulator::fillTable_i(SummaryTable& table, const Metric& metric, Figures figures)
{
    const unsigned int state = table.addSharedGroupColumn(metric.getDescriptorGroupInfo(), DataType::HANDLE);
    unsigned int percent = 0;
    unsigned int msec = 0;
    if (figures.percent) percent = table.addRealColumn("Residency (%)");
    if (figures.msec) msec = table.addRealColumn("Residency (msec)");
    for (const auto& entry : m_entities)
        table.addEntity(entry.second.handle);
    table.pushHeader();

    addCombinations_i(metric);
    for (const DataDescriptor* descriptor : validDescriptors_i()) {
        table.setHandle(state, descriptor);
        for (const auto& entry : m_entities) {
            const EntityHandle* entity = entry.second.handle;
            if (figures.percent) table.set(entity, percent, percentage_i(entity, descriptor));
            if (figures.msec) table.set(entity, msec, milliseconds_i(entity, descriptor));
        }
        table.pushRow();
    }
}

// Rows are entities, each state has columns of its own: first all percentages, then all times.
void SampledResidencyAccumulator::fillTransposedTable_i(SummaryTable& table, const Metric& metric, Figures figures)
{
    table.addGroupColumn(metric.getEntityGroupInfo(), DataType::HANDLE);
    addCombinations_i(metric);
    const std::vector<const DataDescriptor*> descriptors = validDescriptors_i();
    if (figures.percent) {
        for (const DataDescriptor* descriptor : descriptors)
            table.addRealColumn(descriptor->getName() + " (%)");
    }
    if (figures.msec) {
        for (const DataDescriptor* descriptor : descriptors)
            table.addRealColumn(descriptor->getName() + " (msec)");
    }
    table.pushHeader();

    for (const auto& entry : m_entities) {
        const EntityHandle* entity = entry.second.handle;
        unsigned int column = 0;
        table.setHandle(column++, entity);
        if (figures.percent) {
            for (const DataDescriptor* descriptor : descriptors)
                table.set(column++, percentage_i(entity, descriptor));
        }
        if (figures.msec) {
            for (const DataDescriptor* descriptor : descriptors)
                table.set(column++, milliseconds_i(entity, descriptor));
        }
        table.pushRow();
    }
}

void SampledResidencyAccumulator::addCombinations_i(const Metric& metric)
{
    for (const Metric::EntityDescCombo& combo : metric.getEntityDescriptorCombinations()) {
        m_entities.try_emplace(pwr::idOf(combo.entity), Entity{combo.entity});
        if (combo.descriptor != nullptr) m_descriptors.add(combo.descriptor);
    }
}

std::vector<const DataDescriptor*> SampledResidencyAccumulator::validDescriptors_i() const
{
    std::vector<const DataDescriptor*> valid;
    for (const DataDescriptor* descriptor : m_descriptors.items()) {
        if (descriptor != nullptr) {
            valid.push_back(descriptor);
        } else {
            QV_LOG_WARNING("WARNING: MetricType::SampledResidency: Descriptor is not valid\n");
        }
    }
    return valid;
}

double SampledResidencyAccumulator::percentage_i(const EntityHandle* entity, const DataDescriptor* descriptor) const
{
    const Record* record = countedRecord_i(entity, descriptor);
    return record != nullptr ? record->residency / record->entity->totalDuration * 100.0 : 0.0;
}

double SampledResidencyAccumulator::milliseconds_i(const EntityHandle* entity, const DataDescriptor* descriptor) const
{
    const Record* record = countedRecord_i(entity, descriptor);
    return record != nullptr ? record->residency / (m_clockMHz * 1000.0) : 0.0;
}

// Null for a pair without a sample.
const SampledResidencyAccumulator::Record*
SampledResidencyAccumulator::countedRecord_i(const EntityHandle* entity, const DataDescriptor* descriptor) const
{
    const Record* record = m_records.find(pwr::elementKey(entity, descriptor));
    if (record == nullptr) return nullptr;
    QV_LOG_INFO("INFO: timestamp freq=%lf residency=%llu, total duration=%llu\n", m_clockMHz,
                pwr::saturate<unsigned long long>(record->residency),
                pwr::saturate<unsigned long long>(record->entity->totalDuration));
    return record;
}
