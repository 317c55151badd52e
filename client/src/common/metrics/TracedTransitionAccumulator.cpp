#include "metrics/TracedTransitionAccumulator.h"

#include "metrics/Metric.h"
#include "metrics/SummaryTable.h"
#include "runtime/Log.h"

using pwr::DataDescriptor;
using pwr::DataElement;
using pwr::DataType;
using pwr::EntityHandle;
using pwr::Metric;
using pwr::ResidencyFigure;
using pwr::ResidencyFigures;
using pwr::SummaryTable;

using Value = pwr::SeenValues::Entry;

template <>
const std::vector<std::string> pwr::Enum<TracedTransitionAccumulator::Summary>::s_names = {
    "RESIDENCY-PERCENTAGE", "RESIDENCY-MILLISECOND", "TRANSITION-COUNTS", "RESIDENCY-COMBINED"};

TracedTransitionAccumulator::TracedTransitionAccumulator(const std::list<Summary>& summaries)
    : SummaryAccumulator(entriesOf_i(summaries))
{
}

void TracedTransitionAccumulator::addElement_i(const DataElement& element)
{
    const auto [record, isNew] = m_records.at(pwr::elementKey(element));
    if (isNew) {
        record->seen = &m_seen[pwr::idOf(element.getDescriptor())];
        m_participants.addSampled(element);
    }
    record->tallies.add(record->seen->add(*element.getValue()), element.getDuration());
}

void TracedTransitionAccumulator::announceTable_i(const Metric& metric, const std::string& tableType) const
{
    QV_LOG_INFO("INFO: Metric: %s, SSSSSummary table: %s\n", metric.getMetricContainerTag().c_str(), tableType.c_str());
}

void TracedTransitionAccumulator::makeTable_i(std::size_t summary, const pwr::TableRequest& request)
{
    const Metric& metric = request.metric;
    const ResidencyFigures figures = pwr::residencyFigures(static_cast<Summary>(summary));
    const std::string title =
        figures.empty() ? request.title + " Summary: Entry Counts" : pwr::residencyTitle(request.title, figures);
    const std::vector<const DataDescriptor*> descriptors = tableDescriptors_i(metric);
    const pwr::TextNotes* notes = makeNotes_i(request.info);
    for (const DataDescriptor* descriptor : descriptors) {
        const std::string suffix = descriptor != nullptr ? " for " + descriptor->getName() : std::string();
        SummaryTable table(*m_stream, metric, title + suffix, notes);
        const Content content = contentOf_i(metric, descriptor);
        if (figures.empty()) {
            fillCountTable_i(table, metric, content);
        } else if (request.info.isTableTransposed()) {
            fillTransposedTable_i(table, metric, content, figures);
        } else {
            fillResidencyTable_i(table, metric, content, figures);
        }
    }
}

// One table for each descriptor that has samples, but counted off in the order of all ids: a combination with a lower
// one takes a table. Without such descriptors there is one table for all, told by null.
std::vector<const DataDescriptor*> TracedTransitionAccumulator::tableDescriptors_i(const Metric& metric)
{
    m_participants.addCombinations(metric);
    const std::size_t tableCount = m_participants.sampledDescriptorCount();
    if (tableCount == 0) return {nullptr};
    std::vector<const DataDescriptor*> descriptors;
    for (const auto& entry : m_participants.descriptors()) {
        if (descriptors.size() == tableCount) break;
        descriptors.push_back(entry.second);
    }
    return descriptors;
}

TracedTransitionAccumulator::Content TracedTransitionAccumulator::contentOf_i(const Metric& metric,
                                                                              const DataDescriptor* descriptor) const
{
    Content content;
    const pwr::SeenValues none;
    const auto seen = m_seen.find(pwr::idOf(descriptor));
    content.values = (seen != m_seen.end() ? seen->second : none).listedAfter(metric.getFiniteSetValues());
    for (const auto& entry : m_participants.entities()) {
        content.members.push_back({entry.second, m_records.find(pwr::elementKey(entry.second, descriptor))});
    }
    return content;
}

void TracedTransitionAccumulator::addValueColumn_i(SummaryTable& table, const Metric& metric) const
{
    table.addSharedGroupColumn(metric.getValueGroupInfo(), m_valueType);
}

// Rows are values, each entity has a column. The total closes it always.
void TracedTransitionAccumulator::fillCountTable_i(SummaryTable& table, const Metric& metric,
                                                   const Content& content) const
{
    addValueColumn_i(table, metric);
    const unsigned int column = table.addColumn("Entry Count", DataType::UINT);
    for (const Member& member : content.members)
        table.addEntity(member.entity);
    table.pushHeader();

    std::vector<std::uint64_t> totals(content.members.size());
    for (const Value& value : content.values) {
        table.set(0, *value.value);
        for (std::size_t i = 0; i < totals.size(); ++i) {
            const Member& member = content.members[i];
            const std::uint64_t count = member.record != nullptr ? member.record->tallies.of(value).count : 0;
            totals[i] += count;
            table.set(member.entity, column, count);
        }
        table.pushRow();
    }

    table.setHandle(0, EntityHandle::create("Total", nullptr));    // refused unless the values are handles
    for (std::size_t i = 0; i < totals.size(); ++i)
        table.set(content.members[i].entity, column, totals[i]);
    table.pushRow();
}

// Rows are values, each entity has columns of its own.
void TracedTransitionAccumulator::fillResidencyTable_i(SummaryTable& table, const Metric& metric,
                                                       const Content& content, const ResidencyFigures& figures) const
{
    addValueColumn_i(table, metric);
    for (const ResidencyFigure figure : figures)
        table.addRealColumn(pwr::residencyColumn("Residency", figure));
    for (const Member& member : content.members)
        table.addEntity(member.entity);
    table.pushHeader();

    for (const Value& value : content.values) {
        table.set(0, *value.value);
        for (const Member& member : content.members)
            setResidency_i(table, member, value, figures);
        table.pushRow();
    }
}

void TracedTransitionAccumulator::setResidency_i(SummaryTable& table, const Member& member, const Value& value,
                                                 const ResidencyFigures& figures) const
{
    const Record* record = member.record;
    if (record != nullptr) pwr::tellResidency(record->tallies.of(value).time, record->tallies.ofAll().time, m_clockMHz);
    unsigned int column = 1;
    for (const ResidencyFigure figure : figures)
        table.set(member.entity, column++, record != nullptr ? residencyOf_i(*record, value, figure) : 0.0);
}

// Rows are entities, each value has columns of its own: first all percentages, then all times. The cells of an entity
// without a transition stay empty.
void TracedTransitionAccumulator::fillTransposedTable_i(SummaryTable& table, const Metric& metric,
                                                        const Content& content, const ResidencyFigures& figures) const
{
    table.addGroupColumn(metric.getEntityGroupInfo(), DataType::HANDLE);
    for (const ResidencyFigure figure : figures) {
        for (const Value& value : content.values)
            table.addRealColumn(pwr::residencyColumn(value.text(), figure));
    }
    table.pushHeader();

    for (const Member& member : content.members) {
        unsigned int column = 0;
        table.setHandle(column++, member.entity);
        for (const ResidencyFigure figure : figures) {
            if (member.record == nullptr) break;
            for (const Value& value : content.values) {
                table.set(column++, residencyOf_i(*member.record, value, figure));
            }
        }
        table.pushRow();
    }
}

// The share of a value is that of its entity's own transitions: those of an entity add up to 100 %.
double TracedTransitionAccumulator::residencyOf_i(const Record& record, const Value& value,
                                                  ResidencyFigure figure) const
{
    const pwr::Residency residency{static_cast<double>(record.tallies.of(value).time),
                                   static_cast<double>(record.tallies.ofAll().time)};
    return pwr::residencyValue(figure, residency, m_clockMHz);
}
