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
using pwr::ResidencyFigure;
using pwr::ResidencyFigures;
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
    const ResidencyFigures figures = pwr::residencyFigures(static_cast<Summary>(summary));
    const std::string title = pwr::residencyTitle(request.title, figures);
    SummaryTable table(*m_stream, request.metric, title, makeNotes_i(request.info));
    if (request.info.isTableTransposed()) {
        fillTransposedTable_i(table, request.metric, figures);
    } else {
        fillTable_i(table, request.metric, figures);
    }
}

// Rows are states, each entity has columns of its own. An entity that only a combination names comes too late for the
// layout: the table refuses its cells.
void SampledResidencyAccumulator::fillTable_i(SummaryTable& table, const Metric& metric,
                                              const ResidencyFigures& figures)
{
    const unsigned int state = table.addSharedGroupColumn(metric.getDescriptorGroupInfo(), DataType::HANDLE);
    for (const ResidencyFigure figure : figures)
        table.addRealColumn(pwr::residencyColumn("Residency", figure));
    for (const auto& entry : m_entities)
        table.addEntity(entry.second.handle);
    table.pushHeader();

    addCombinations_i(metric);
    for (const DataDescriptor* descriptor : validDescriptors_i()) {
        table.setHandle(state, descriptor);
        unsigned int column = state;
        for (const ResidencyFigure figure : figures) {
            ++column;
            for (const auto& entry : m_entities) {
                const EntityHandle* entity = entry.second.handle;
                table.set(entity, column, residencyOf_i(entity, descriptor, figure));
            }
        }
        table.pushRow();
    }
}

// Rows are entities, each state has columns of its own: first all percentages, then all times.
void SampledResidencyAccumulator::fillTransposedTable_i(SummaryTable& table, const Metric& metric,
                                                        const ResidencyFigures& figures)
{
    table.addGroupColumn(metric.getEntityGroupInfo(), DataType::HANDLE);
    addCombinations_i(metric);
    const std::vector<const DataDescriptor*> descriptors = validDescriptors_i();
    for (const ResidencyFigure figure : figures) {
        for (const DataDescriptor* descriptor : descriptors)
            table.addRealColumn(pwr::residencyColumn(descriptor->getName(), figure));
    }
    table.pushHeader();

    for (const auto& entry : m_entities) {
        const EntityHandle* entity = entry.second.handle;
        unsigned int column = 0;
        table.setHandle(column++, entity);
        for (const ResidencyFigure figure : figures) {
            for (const DataDescriptor* descriptor : descriptors)
                table.set(column++, residencyOf_i(entity, descriptor, figure));
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

// 0 for a pair without a sample.
double SampledResidencyAccumulator::residencyOf_i(const EntityHandle* entity, const DataDescriptor* descriptor,
                                                  ResidencyFigure figure) const
{
    const Record* record = m_records.find(pwr::elementKey(entity, descriptor));
    if (record == nullptr) return 0.0;
    const pwr::Residency residency{record->residency, record->entity->totalDuration};
    pwr::tellResidency(pwr::saturate<std::uint64_t>(residency.ticks),
                       pwr::saturate<std::uint64_t>(residency.totalTicks), m_clockMHz);
    return pwr::residencyValue(figure, residency, m_clockMHz);
}
