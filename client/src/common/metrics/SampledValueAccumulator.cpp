#include "metrics/SampledValueAccumulator.h"

#include "metrics/Metric.h"
#include "metrics/ResidencyFigures.h"
#include "metrics/SummaryTable.h"
#include "runtime/Log.h"
#include "runtime/Saturate.h"
#include "values/Description.h"
#include "values/Quantity.h"

using pwr::Data;
using pwr::DataElement;
using pwr::DataType;
using pwr::Metric;
using pwr::SummaryTable;

template <>
const std::vector<std::string> pwr::Enum<SampledValueAccumulator::Summary>::s_names = {
    "SAMPLE-COUNT", "MIN-MAX-AVG",           "NUMBER-OF-OCCURENCES", "RELATIVE-FREQUENCY-PERCENTAGE",
    "MIN-MAX",      "APPROXIMATED-RESIDENCY"};

namespace {

bool isNumber(DataType type)
{
    return type == DataType::INT || type == DataType::UINT || type == DataType::REAL;
}

// A value that can't be read counts as zero.
double asDouble(const Data& value, DataType type)
{
    long long signedValue = 0;
    unsigned long long unsignedValue = 0;
    double real = 0;
    switch (type) {
    case DataType::INT:
        value.toInt(signedValue);
        return static_cast<double>(signedValue);
    case DataType::UINT:
        value.toUInt(unsignedValue);
        return static_cast<double>(unsignedValue);
    default:
        value.toReal(real);
        return real;
    }
}

}    // namespace

SampledValueAccumulator::SampledValueAccumulator(const std::list<Summary>& summaries)
    : SummaryAccumulator(entriesOf_i(summaries))
{
    countSamples_i(true, true, true);
}

void SampledValueAccumulator::addElement_i(const DataElement& element)
{
    const Data& value = *element.getValue();
    Record& record = recordOf_i(element);
    const double weightUs = static_cast<double>(element.getDuration()) / m_clockMHz;
    if (weightUs == 0.0) QV_LOG_WARNING("WARNING: SampledValueAccumulator has zero weight!\n");
    if (isNumber(m_valueType)) {
        if (record.minimum > value) record.minimum = value;
        if (record.maximum < value) record.maximum = value;
        record.sum.addValue(value);
        record.weightedSum += asDouble(value, m_valueType) * weightUs;
    }
    record.tallies.add(record.group->seen.add(value), pwr::saturate<std::uint64_t>(weightUs + 0.5));
}

SampledValueAccumulator::Record& SampledValueAccumulator::recordOf_i(const DataElement& element)
{
    const auto [record, isNew] = m_records.at(pwr::elementKey(element));
    if (isNew) openRecord_i(*record, element);
    return *record;
}

void SampledValueAccumulator::openRecord_i(Record& record, const DataElement& element)
{
    Group& group = m_groups[pwr::idOf(element.getDescriptor())];
    if (group.descriptor == nullptr && element.getDescriptor() != nullptr) {
        group.descriptor = element.getDescriptor();
        ++m_descriptorCount;
    }
    group.entities.emplace(pwr::idOf(element.getEntity()), &record);
    record.entity = element.getEntity();
    record.group = &group;
    if (!isNumber(m_valueType)) return;
    record.minimum = Data(m_valueType);
    record.minimum.initMin();
    record.maximum = Data(m_valueType);
    record.maximum.initMax();
    record.sum = Data(m_valueType);
    record.sum.initZero();
}

void SampledValueAccumulator::makeTable_i(std::size_t summary, const pwr::TableRequest& request)
{
    switch (static_cast<Summary>(summary)) {
    case Summary::SAMPLE_COUNT:
        break;
    case Summary::MIN_MAX_AVG:
        return makeMinMaxTable_i(request, true);
    case Summary::MIN_MAX:
        return makeMinMaxTable_i(request, false);
    case Summary::NUMBER_OF_OCCURENCES:
        return makeValueTables_i(request, Figure::COUNT);
    case Summary::RELATIVE_FREQUENCY_PERCENTAGE:
        return makeValueTables_i(request, Figure::SHARE);
    case Summary::APPROXIMATED_RESIDENCY:
        return makeValueTables_i(request, Figure::TIME_SHARE);
    }
}

void SampledValueAccumulator::makeMinMaxTable_i(const pwr::TableRequest& request, bool withAverages)
{
    if (!isNumber(m_valueType)) {
        QV_LOG_WARNING("WARNING: Unable to provide min/max/avg summary for non-numeric data.\n");
        return;
    }
    const Metric& metric = request.metric;
    const std::string title = request.title + " Summary - Sampled: " + (withAverages ? "Min/Max/Avg" : "Min/Max");
    SummaryTable table(*m_stream, metric, title, makeNotes_i(request.info));
    table.addPairColumns(metric, m_descriptorCount != 0);
    table.addColumn("Min" + m_units, m_valueType);
    table.addColumn("Max" + m_units, m_valueType);
    if (withAverages) {
        table.addRealColumn("Avg" + m_units);
        table.addRealColumn("Time-weighted Avg" + m_units);
    }
    table.pushHeader();
    for (const Record* record : m_records.inKeyOrder())
        pushMinMaxRow_i(table, *record, withAverages);
}

void SampledValueAccumulator::pushMinMaxRow_i(SummaryTable& table, const Record& record, bool withAverages) const
{
    unsigned int column = table.setPair(record.entity, record.group->descriptor);
    table.set(column++, record.minimum);
    table.set(column++, record.maximum);
    if (withAverages) {
        const pwr::ValueTallies::Tally& all = record.tallies.ofAll();
        table.set(column++, asDouble(record.sum, m_valueType) / static_cast<double>(all.count));
        table.set(column, record.weightedSum / static_cast<double>(all.time));
    }
    table.pushRow();
}

void SampledValueAccumulator::makeValueTables_i(const pwr::TableRequest& request, Figure figure)
{
    const pwr::TextNotes* notes = makeNotes_i(request.info);
    for (const auto& [id, group] : m_groups) {
        SummaryTable table(*m_stream, request.metric, valueTableTitle_i(request, figure, group), notes);
        if (request.info.isTableTransposed()) {
            fillTransposedTable_i(table, request.metric, figure, group);
        } else {
            fillValueTable_i(table, request.metric, figure, group);
        }
    }
}

std::string SampledValueAccumulator::valueTableTitle_i(const pwr::TableRequest& request, Figure figure,
                                                       const Group& group) const
{
    std::string title = request.title;
    switch (figure) {
    case Figure::COUNT:
        title += " Summary - Sampled: Counts";
        break;
    case Figure::SHARE:
        title += " Summary - Sampled: Sample Distribution";
        break;
    case Figure::TIME_SHARE:
        title += " Summary - Sampled: Residency (Percentage)";
        break;
    }
    if (m_descriptorCount >= 2 && group.descriptor != nullptr) title += " for " + group.descriptor->getName();
    if (request.metric.getValueGroupInfo() != nullptr) title += m_units;
    return title;
}

const pwr::Field* SampledValueAccumulator::valueField_i(const Metric& metric, const Group& group) const
{
    if (metric.getValueGroupInfo() != nullptr) return metric.getValueGroupInfo();
    std::string name;
    if (group.descriptor != nullptr) {
        name = group.descriptor->getName() + m_units;
    } else if (metric.getQuantity() != nullptr) {
        metric.getQuantity()->toTitleString(name);
    }
    return pwr::Field::create(pwr::FieldDescription(name, ""));
}

// Rows are values, each entity has a column.
void SampledValueAccumulator::fillValueTable_i(SummaryTable& table, const Metric& metric, Figure figure,
                                               const Group& group) const
{
    table.addSharedGroupColumn(valueField_i(metric, group), m_valueType);
    for (const auto& entry : group.entities) {
        addFigureColumn_i(table, entry.second->entity->getQualifiedName(), figure);
    }
    table.pushHeader();
    for (const pwr::SeenValues::Entry& row : group.seen.listedAfter(metric.getFiniteSetValues())) {
        unsigned int column = 0;
        table.set(column++, *row.value);
        for (const auto& entry : group.entities)
            setFigure_i(table, column++, figure, *entry.second, row);
        table.pushRow();
    }
}

// Rows are entities, each value has a column.
void SampledValueAccumulator::fillTransposedTable_i(SummaryTable& table, const Metric& metric, Figure figure,
                                                    const Group& group) const
{
    const bool namesEntities = figure == Figure::TIME_SHARE;    // by text, if at all; the others by handle
    const bool hasEntityColumn = !(namesEntities && metric.getSuppressEntityInfoInSummary());
    const auto values = group.seen.listedAfter(metric.getFiniteSetValues());
    if (hasEntityColumn) {
        table.addGroupColumn(metric.getEntityGroupInfo(), namesEntities ? DataType::STRING : DataType::HANDLE);
    }
    for (const auto& value : values) {
        if (figure == Figure::TIME_SHARE) {
            table.addColumn(value.text() + " (%)", DataType::REAL);
        } else {
            addFigureColumn_i(table, value.text(), figure);
        }
    }
    table.pushHeader();
    for (const auto& entry : group.entities) {
        const Record& record = *entry.second;
        unsigned int column = 0;
        if (hasEntityColumn && namesEntities) table.set(column++, record.entity->getQualifiedName());
        if (hasEntityColumn && !namesEntities) table.setHandle(column++, record.entity);
        for (const auto& value : values)
            setFigure_i(table, column++, figure, record, value);
        table.pushRow();
    }
}

void SampledValueAccumulator::addFigureColumn_i(SummaryTable& table, const std::string& name, Figure figure)
{
    if (figure == Figure::COUNT) {
        table.addColumn(name, DataType::UINT);
    } else {
        table.addRealColumn(name + " (%)");
    }
}

void SampledValueAccumulator::setFigure_i(SummaryTable& table, unsigned int column, Figure figure, const Record& record,
                                          const pwr::SeenValues::Entry& value)
{
    const pwr::ValueTallies::Tally tally = record.tallies.of(value);
    const pwr::ValueTallies::Tally& all = record.tallies.ofAll();
    if (figure == Figure::COUNT) {
        table.set(column, tally.count);
    } else if (tally.count == 0) {
        table.set(column, 0.0);
    } else if (figure == Figure::SHARE) {
        table.set(column, pwr::percentage(static_cast<double>(tally.count), static_cast<double>(all.count)));
    } else {
        table.set(column, pwr::percentage(static_cast<double>(tally.time), static_cast<double>(all.time)));
    }
}
