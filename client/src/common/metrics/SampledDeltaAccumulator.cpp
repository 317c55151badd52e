#include "metrics/SampledDeltaAccumulator.h"

#include "metrics/Metric.h"
#include "metrics/SummaryTable.h"
#include "runtime/Log.h"
#include "runtime/Saturate.h"
#include "values/Description.h"
#include "values/Quantity.h"

#include <algorithm>
#include <optional>

using pwr::Data;
using pwr::DataDescriptor;
using pwr::DataElement;
using pwr::DataType;
using pwr::EntityHandle;
using pwr::Metric;
using pwr::SummaryTable;

template <>
const std::vector<std::string> pwr::Enum<SampledDeltaAccumulator::Summary>::s_names = {
    "SAMPLE-COUNT", "AVERAGE-RATE-TOTAL", "TOTAL-DELTA"};

namespace {

const char* const RATE_TITLE = " Summary: Average Rate and Total";

using Summary = SampledDeltaAccumulator::Summary;

auto isEntryOf(Summary summary)
{
    return [summary](const auto& entry) { return static_cast<Summary>(entry.number) == summary; };
}

// The sum of a column. Without an addend it has no number to show.
class ColumnSum {
public:
    void add(const Data& value)
    {
        if (m_sum.has_value()) {
            m_sum->addValue(value);
        } else {
            m_sum = value;
        }
    }

    Data get() const { return m_sum.value_or(Data()); }

private:
    std::optional<Data> m_sum;
};

}    // namespace

SampledDeltaAccumulator::SampledDeltaAccumulator(const std::list<Summary>& summaries)
    : SummaryAccumulator(entriesOf_i(summaries)), m_chosen(m_summaries)
{
    countSamples_i(false, true, true);
}

void SampledDeltaAccumulator::initialize_i(const Metric& metric)
{
    m_summaries = m_chosen;
    const bool isWanted = isListed_i(Summary::AVERAGE_RATE_TOTAL);
    if (!prepareRate_i(metric.getQuantity(), isWanted) && isWanted) {
        replaceRateByTotal_i();
    } else {
        m_summaries.remove_if(isEntryOf(Summary::TOTAL_DELTA));
    }
}

// False when the quantity has no rate form.
bool SampledDeltaAccumulator::prepareRate_i(const pwr::Quantity* quantity, bool isWanted)
{
    m_rateMultiplier = 1.0;
    m_rateUnits.clear();
    if (quantity == nullptr) {
        if (isWanted) {
            QV_LOG_WARNING("WARNING: Quantity and rate conversion are not specified. Disabling rate calculations.\n");
        }
        return false;
    }
    const pwr::Quantity* rate = nullptr;
    if (quantity->getRateConversion(rate, m_rateMultiplier) != 0) {
        if (isWanted) QV_LOG_WARNING("WARNING: Rate conversion is not specified. Disabling rate calculations.\n");
        return false;
    }
    pwr::TableMessage::quantityToUnits(rate, m_rateUnits, " (", ")");
    return true;
}

// The total takes the place of the rate unless it has one of its own.
void SampledDeltaAccumulator::replaceRateByTotal_i()
{
    const auto isRate = isEntryOf(Summary::AVERAGE_RATE_TOTAL);
    if (!isListed_i(Summary::TOTAL_DELTA)) {
        m_summaries.splice(std::find_if(m_summaries.begin(), m_summaries.end(), isRate),
                           entriesOf_i(std::list<Summary>{Summary::TOTAL_DELTA}));
    }
    m_summaries.remove_if(isRate);
}

bool SampledDeltaAccumulator::isListed_i(Summary summary) const
{
    return std::any_of(m_summaries.begin(), m_summaries.end(), isEntryOf(summary));
}

void SampledDeltaAccumulator::addElement_i(const DataElement& element)
{
    Record& record = *m_records.at(pwr::elementKey(element)).first;
    if (record.count == 0) openRecord_i(record, element);
    record.total.addValue(*element.getValue());
    ++record.count;
    record.duration += static_cast<double>(element.getDuration());
}

void SampledDeltaAccumulator::openRecord_i(Record& record, const DataElement& element)
{
    record.entity = element.getEntity();
    record.descriptor = element.getDescriptor();
    record.total = Data(m_valueType);
    record.total.initZero();
    m_participants.addSampled(element);
}

// Pairs that were promised but never had a sample get an empty row.
void SampledDeltaAccumulator::addCombinations_i(const Metric& metric)
{
    for (const Metric::EntityDescCombo& combo : metric.getEntityDescriptorCombinations()) {
        const auto [record, isNew] = m_records.at(pwr::elementKey(combo.entity, combo.descriptor));
        if (!isNew) continue;
        record->entity = combo.entity;
        record->descriptor = combo.descriptor;
    }
}

Data SampledDeltaAccumulator::rate_i(const Record& record) const
{
    const auto ticks = pwr::saturate<std::uint64_t>(record.duration);
    const double seconds = static_cast<double>(ticks) / (m_clockMHz * 1e6);
    Data rate = Data::convertToReal(&record.total);
    rate.multiplyValue(m_rateMultiplier / seconds);
    return rate;
}

void SampledDeltaAccumulator::makeTable_i(std::size_t summary, const pwr::TableRequest& request)
{
    switch (static_cast<Summary>(summary)) {
    case Summary::SAMPLE_COUNT:
        break;
    case Summary::AVERAGE_RATE_TOTAL:
        return request.info.isTableTransposed() ? makeTransposedRateTable_i(request) : makeRateTable_i(request);
    case Summary::TOTAL_DELTA:
        return makeTotalTable_i(request);
    }
}

void SampledDeltaAccumulator::makeRateTable_i(const pwr::TableRequest& request)
{
    const Metric& metric = request.metric;
    SummaryTable table(*m_stream, metric, request.title + RATE_TITLE, makeNotes_i(request.info));
    table.addPairColumns(metric, hasDescriptors_i());
    const unsigned int rateColumn = table.addColumn("Average Rate" + m_rateUnits, DataType::STRING);
    const unsigned int totalColumn = table.addColumn("Total" + m_units, DataType::STRING);
    table.pushHeader();

    addCombinations_i(metric);
    ColumnSum rates;
    ColumnSum totals;
    for (const Record* record : m_records.inKeyOrder()) {
        if (record->count != 0) {
            const Data rate = rate_i(*record);
            const Data total = Data::convertToReal(&record->total);
            rates.add(rate);
            totals.add(total);
            table.setPair(record->entity, record->descriptor);
            table.set(rateColumn, SummaryTable::realText(rate));
            table.set(totalColumn, SummaryTable::realText(total));
        }
        table.pushRow();
    }
    if (request.info.suppressTotal()) return;

    setTotalPair_i(table);
    table.set(rateColumn, SummaryTable::realText(rates.get()));
    table.set(totalColumn, SummaryTable::realText(totals.get()));
    table.pushRow();
}

// Rows are descriptors, each entity has columns of its own.
void SampledDeltaAccumulator::makeTransposedRateTable_i(const pwr::TableRequest& request)
{
    const Metric& metric = request.metric;
    SummaryTable table(*m_stream, metric, request.title + RATE_TITLE, makeNotes_i(request.info));
    const unsigned int what = table.addSharedGroupColumn(metric.getDescriptorGroupInfo(), DataType::HANDLE);
    const unsigned int rate = table.addColumn("Average Rate" + m_rateUnits, DataType::STRING);
    const unsigned int total = table.addColumn("Total" + m_units, DataType::STRING);
    for (const auto& entry : m_participants.entities())
        table.addEntity(entry.second);
    table.pushHeader();

    for (const auto& entry : m_participants.descriptors()) {
        const DataDescriptor* descriptor = entry.second;
        if (descriptor == nullptr) {
            QV_LOG_WARNING("WARNING: MetricType::SampledDelta: Descriptor is not valid\n");
            continue;
        }
        table.setHandle(what, descriptor);
        for (const auto& column : m_participants.entities()) {
            const Record* record = m_records.find(pwr::elementKey(column.second, descriptor));
            if (record == nullptr || record->count == 0) continue;
            table.set(column.second, rate, SummaryTable::realText(rate_i(*record)));
            table.set(column.second, total, SummaryTable::realText(Data::convertToReal(&record->total)));
        }
        table.pushRow();
    }
}

void SampledDeltaAccumulator::makeTotalTable_i(const pwr::TableRequest& request)
{
    const Metric& metric = request.metric;
    SummaryTable table(*m_stream, metric, request.title + " Summary: Total", makeNotes_i(request.info));
    table.addPairColumns(metric, hasDescriptors_i());
    const unsigned int totalColumn = table.addColumn("Total" + m_units, DataType::STRING);
    table.pushHeader();

    addCombinations_i(metric);
    double sum = 0;
    for (const Record* record : m_records.inKeyOrder()) {
        if (record->count != 0) {
            const Data total = Data::convertToReal(&record->total);
            const std::string text = SummaryTable::realText(total);
            double number = 0;
            if (total.toReal(number) != 0) QV_LOG_WARNING("WARNING: couldn't convert %s to real!\n", text.c_str());
            sum += number;
            table.setPair(record->entity, record->descriptor);
            table.set(totalColumn, text);
        }
        table.pushRow();
    }
    setTotalPair_i(table);
    table.set(totalColumn, SummaryTable::realText(Data(sum)));
    table.pushRow();
}

// The row of sums stands for an entity of its own, and for no descriptor.
void SampledDeltaAccumulator::setTotalPair_i(SummaryTable& table) const
{
    const DataDescriptor* nothing =
        hasDescriptors_i() ? DataDescriptor::create(pwr::DataDescriptorBuilder("", "")) : nullptr;
    table.setPair(EntityHandle::create("Total", nullptr), nothing);
}
