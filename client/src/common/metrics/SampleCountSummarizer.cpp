#include "metrics/SampleCountSummarizer.h"

#include "metrics/Metric.h"
#include "metrics/SummaryTable.h"
#include "record/SystemMetadata.h"
#include "runtime/Log.h"

#include <algorithm>
#include <limits>

using pwr::DataElement;
using pwr::DataType;
using pwr::Metric;

namespace {

constexpr std::uint64_t NO_INTERVAL = std::numeric_limits<std::uint64_t>::max();

}    // namespace

SampleCountSummarizer::SampleCountSummarizer(bool isSampled, bool showIntervals, bool perEntity)
    : m_isSampled(isSampled), m_showIntervals(showIntervals), m_perEntity(perEntity)
{
}

int SampleCountSummarizer::initialize(const Metric&, const pwr::SystemMetadata& system)
{
    m_clockMHz = static_cast<double>(system.qvaClockFreqMHz);
    return 0;
}

int SampleCountSummarizer::processMessage(const Metric& metric)
{
    const Metric::DataPoint& point = metric.getData();
    QV_LOG_INFO("INFO: %s has timestamp = %llu\n", "SampleCountSummarizer::processMessage", point.timestamp);
    for (const DataElement* element : point.elements)
        countElement_i(*element, point.timestamp);
    return 0;
}

void SampleCountSummarizer::countElement_i(const DataElement& element, std::uint64_t timestamp)
{
    const std::uint64_t key = m_perEntity ? pwr::idOf(element.getEntity()) : pwr::elementKey(element);
    const auto [record, isNew] = m_records.at(key);
    if (isNew) {
        openRecord_i(*record, key, element);
    } else if (timestamp != record->previousTimestamp) {
        noteInterval_i(*record, timestamp, element);
    }
    if (timestamp != record->previousTimestamp) ++record->samples;
    record->previousTimestamp = timestamp;
}

void SampleCountSummarizer::openRecord_i(Record& record, std::uint64_t key, const DataElement& element)
{
    const Row row{element.getEntity(), element.getDescriptor()};
    addRow_i(key, row);
    if (row.descriptor != nullptr) m_hasDescriptors = true;
    record.minInterval = NO_INTERVAL;
    record.firstDuration = static_cast<double>(element.getDuration());
    QV_LOG_INFO("INFO: set key = %llu for %s, %s\n", static_cast<unsigned long long>(key),
                row.entity->getName().c_str(), row.descriptor != nullptr ? row.descriptor->getName().c_str() : "<N/A>");
}

void SampleCountSummarizer::noteInterval_i(Record& record, std::uint64_t timestamp, const DataElement& element) const
{
    const std::uint64_t interval = timestamp - record.previousTimestamp;
    record.minInterval = std::min(record.minInterval, interval);
    record.maxInterval = std::max(record.maxInterval, interval);
    record.intervalSum += interval;
    const pwr::DataDescriptor* descriptor = element.getDescriptor();
    QV_LOG_INFO("INFO: %s, %s has prev = %llu, min = %llu, max = %llu\n", element.getEntity()->getName().c_str(),
                descriptor != nullptr ? descriptor->getName().c_str() : "<N/A>",
                static_cast<unsigned long long>(record.previousTimestamp),
                static_cast<unsigned long long>(record.minInterval),
                static_cast<unsigned long long>(record.maxInterval));
}

// An entity name that repeats under another id is counted, but has no row of its own where entities are counted.
void SampleCountSummarizer::addRow_i(std::uint64_t key, const Row& row)
{
    if (m_perEntity && !m_rowEntities.insert(row.entity->getQualifiedName()).second) return;
    m_rows.try_emplace(key, row);
}

// Pairs that were promised but never had a sample get a row too.
void SampleCountSummarizer::addCombinations_i(const Metric& metric)
{
    for (const Metric::EntityDescCombo& combo : metric.getEntityDescriptorCombinations()) {
        addRow_i(pwr::elementKey(combo.entity, combo.descriptor), {combo.entity, combo.descriptor});
    }
}

int SampleCountSummarizer::finalize(const Metric& metric)
{
    const pwr::TableRequest request(metric, "SAMPLE-COUNT", *m_outputConfig);
    pwr::SummaryTable table(*m_stream, metric, title_i(request.title), nullptr);
    addColumns_i(table, metric);
    table.pushHeader();
    addCombinations_i(metric);
    for (const auto& [key, row] : m_rows)
        pushRow_i(table, key, row);
    return 0;
}

std::string SampleCountSummarizer::title_i(const std::string& base) const
{
    return base + " Summary" + (m_isSampled ? " - Sampled" : "") + ": Total Samples Received";
}

void SampleCountSummarizer::addColumns_i(pwr::SummaryTable& table, const Metric& metric) const
{
    table.addPairColumns(metric, m_hasDescriptors && !m_perEntity);
    table.addColumn("Total # of samples", DataType::UINT);
    if (!m_showIntervals) return;
    table.addRealColumn("Min sampling interval (msec)");
    table.addRealColumn("Max sampling interval (msec)");
    table.addRealColumn("Avg sampling interval (msec)");
}

void SampleCountSummarizer::pushRow_i(pwr::SummaryTable& table, std::uint64_t key, const Row& row) const
{
    const Record* found = m_records.find(key);
    const Record record = found != nullptr ? *found : Record();
    unsigned int column = table.setPair(row.entity, row.descriptor);
    table.set(column++, record.samples);
    QV_LOG_INFO("INFO: Key = %llu, Entity = %s, Min = %llu, Max = %llu\n", static_cast<unsigned long long>(key),
                row.entity->getName().c_str(), static_cast<unsigned long long>(record.minInterval),
                static_cast<unsigned long long>(record.maxInterval));
    if (m_showIntervals) {
        const Intervals intervals = intervalsOf_i(record);
        table.set(column++, intervals.min);
        table.set(column++, intervals.max);
        table.set(column, intervals.average);
    }
    table.pushRow();
}

// A single sample has no interval: its own duration stands in.
SampleCountSummarizer::Intervals SampleCountSummarizer::intervalsOf_i(const Record& record) const
{
    const double ticksPerMs = m_clockMHz * 1000.0;
    const double fallback = record.firstDuration / ticksPerMs;
    Intervals intervals{fallback, fallback, fallback};
    if (record.minInterval < NO_INTERVAL) intervals.min = static_cast<double>(record.minInterval) / ticksPerMs;
    if (record.maxInterval != 0) intervals.max = static_cast<double>(record.maxInterval) / ticksPerMs;
    if (record.intervalSum != 0) {
        const double count = static_cast<double>(record.samples - 1);
        intervals.average = static_cast<double>(record.intervalSum) / (count * ticksPerMs);
    }
    return intervals;
}
