#include "metrics/TracedEventAccumulator.h"

#include "metrics/Metric.h"
#include "metrics/SummaryTable.h"

#include <algorithm>
#include <utility>

using pwr::Data;
using pwr::DataElement;
using pwr::DataType;
using pwr::EntityHandle;
using pwr::Metric;
using pwr::SummaryTable;

template <>
const std::vector<std::string> pwr::Enum<TracedEventAccumulator::Summary>::s_names = {
    "SAMPLE-COUNT", "EVENT-NAME-COUNTS", "TOP-TEN-EVENT"};

namespace {

constexpr std::size_t TOP_COUNT = 10;

// Empty for what is no handle, and for a handle that is gone.
std::string eventName(const Data& value)
{
    const pwr::DataHandle* handle = nullptr;
    if (value.getType() != DataType::HANDLE || value.toHandle(handle) != 0) return {};
    return handle->getName();
}

}    // namespace

TracedEventAccumulator::TracedEventAccumulator(const std::list<Summary>& summaries)
    : SummaryAccumulator(entriesOf_i(summaries))
{
    countSamples_i(false, false, false);
}

void TracedEventAccumulator::addElement_i(const DataElement& element)
{
    const Data& value = *element.getValue();
    const auto [record, isNew] = m_records.at(pwr::elementKey(element));
    if (isNew) openRecord_i(*record, element);

    Tally& tally = record->values[value];
    if (tally.nameCount == nullptr) tally.nameCount = &nameCount_i(*record, value);
    ++tally.count;
    ++*tally.nameCount;
}

void TracedEventAccumulator::openRecord_i(Record& record, const DataElement& element)
{
    record.entity = element.getEntity();
    record.descriptor = element.getDescriptor();
    m_participants.addSampled(element);
}

// A value's name is looked up once for each pair: equal values are the same handle.
std::uint64_t& TracedEventAccumulator::nameCount_i(Record& record, const Data& value)
{
    const std::string name = eventName(value);
    m_names[pwr::idOf(record.descriptor)].insert(name);
    return record.nameCounts[name];
}

void TracedEventAccumulator::makeTable_i(std::size_t summary, const pwr::TableRequest& request)
{
    switch (static_cast<Summary>(summary)) {
    case Summary::SAMPLE_COUNT:
        break;
    case Summary::EVENT_NAME_COUNTS:
        return makeNameTables_i(request);
    case Summary::TOP_TEN_EVENT:
        return makeTopTables_i(request);
    }
}

// One table for each descriptor, those of the combinations included. Only what the samples had decides whether there
// are descriptors at all and whether titles tell them apart.
void TracedEventAccumulator::makeNameTables_i(const pwr::TableRequest& request)
{
    m_participants.addCombinations(request.metric);
    const pwr::TextNotes* notes = makeNotes_i(request.info);
    const std::string title = request.title + " Summary: Type Count";
    const std::size_t seenDescriptors = m_participants.sampledDescriptorCount();
    if (seenDescriptors == 0) return makeNameTable_i(request, title, 0, notes);
    for (const auto& [id, descriptor] : m_participants.descriptors()) {
        makeNameTable_i(request, seenDescriptors >= 2 ? title + " for " + descriptor->getName() : title, id, notes);
    }
}

// Rows are names, each entity has a column.
void TracedEventAccumulator::makeNameTable_i(const pwr::TableRequest& request, const std::string& title,
                                             std::uint64_t descriptorId, const pwr::TextNotes* notes) const
{
    const pwr::Field* group = request.metric.getValueGroupInfo();
    SummaryTable table(*m_stream, request.metric, title, notes);
    const unsigned int nameColumn = table.addSharedColumn(group != nullptr ? group->getName() : "", DataType::STRING);
    const unsigned int countColumn = table.addColumn("Count", DataType::UINT);
    std::vector<std::pair<const EntityHandle*, const Record*>> columns;
    for (const auto& [id, entity] : m_participants.entities()) {
        table.addEntity(entity);
        columns.emplace_back(entity, m_records.find(pwr::elementKey(id, descriptorId)));
    }
    table.pushHeader();

    const auto names = m_names.find(descriptorId);
    if (names == m_names.end()) return;
    for (const std::string& name : names->second) {
        table.set(nameColumn, name);
        for (const auto& [entity, record] : columns) {
            std::uint64_t count = 0;
            if (record != nullptr) {
                const auto found = record->nameCounts.find(name);
                if (found != record->nameCounts.end()) count = found->second;
            }
            table.set(entity, countColumn, count);
        }
        table.pushRow();
    }
}

// One table for each entity and descriptor that had events. It has no header: its first message is its first row.
void TracedEventAccumulator::makeTopTables_i(const pwr::TableRequest& request)
{
    const Metric& metric = request.metric;
    const pwr::TextNotes* notes = makeNotes_i(request.info);
    for (const Record* record : m_records.inKeyOrder()) {
        std::string title = request.title + " Summary: Top " + std::to_string(TOP_COUNT) + " Most-Frequent for " +
                            record->entity->getName();
        if (record->descriptor != nullptr) title += " and " + record->descriptor->getName();
        SummaryTable table(*m_stream, metric, title, notes);
        const unsigned int valueColumn = table.addGroupColumn(metric.getValueGroupInfo(), m_valueType);
        const unsigned int countColumn = table.addColumn("Count", DataType::UINT);
        table.create();
        for (const Tallies::const_iterator& entry : mostFrequent_i(record->values)) {
            table.set(valueColumn, entry->first);
            table.set(countColumn, entry->second.count);
            table.pushRow();
        }
    }
}

// By falling count; values of equal count from the greatest down.
std::vector<TracedEventAccumulator::Tallies::const_iterator>
TracedEventAccumulator::mostFrequent_i(const Tallies& tallies)
{
    std::vector<Tallies::const_iterator> entries;
    entries.reserve(tallies.size());
    for (auto entry = tallies.begin(); entry != tallies.end(); ++entry)
        entries.push_back(entry);
    std::reverse(entries.begin(), entries.end());
    std::stable_sort(entries.begin(), entries.end(),
                     [](const auto& a, const auto& b) { return a->second.count > b->second.count; });
    entries.resize(std::min(entries.size(), TOP_COUNT));
    return entries;
}
