#include "metrics/SummaryAccumulator.h"

#include "metrics/Metric.h"
#include "metrics/SampleCountSummarizer.h"
#include "metrics/SummaryTable.h"
#include "output/TextNotes.h"
#include "record/SystemMetadata.h"
#include "runtime/Log.h"
#include "values/Quantity.h"

#include <algorithm>
#include <utility>

using pwr::Metric;

namespace {

const char* const SAMPLE_COUNT = "SAMPLE-COUNT";

std::string unitsText(const pwr::Quantity* quantity)
{
    std::string text;
    if (quantity != nullptr && !quantity->toUnitsString().empty()) {
        pwr::TableMessage::quantityToUnits(quantity, text, " (", ")");
    }
    return text;
}

}    // namespace

SummaryAccumulator::SummaryAccumulator(std::list<Entry> summaries) : m_summaries(std::move(summaries)) {}

SummaryAccumulator::~SummaryAccumulator() = default;

void SummaryAccumulator::countSamples_i(bool isSampled, bool showIntervals, bool perEntity)
{
    const bool isWanted = std::any_of(m_summaries.begin(), m_summaries.end(),
                                      [](const Entry& entry) { return entry.name == SAMPLE_COUNT; });
    if (isWanted) m_sampleCounts = std::make_unique<SampleCountSummarizer>(isSampled, showIntervals, perEntity);
}

const pwr::TextNotes* SummaryAccumulator::makeNotes_i(const pwr::TableInfo& info)
{
    auto notes = std::make_unique<pwr::TextNotes>();
    std::string text;
    if (info.getPreTableNote(text)) notes->addPreTableNote(text);
    if (info.getPostTableNote(text)) notes->addPostTableNote(text);
    m_notes.push_back(std::move(notes));
    return m_notes.back().get();
}

int SummaryAccumulator::initialize(const Metric& metric, const pwr::SystemMetadata& system)
{
    m_clockMHz = static_cast<double>(system.qvaClockFreqMHz);
    m_units = unitsText(metric.getQuantity());
    if (m_sampleCounts != nullptr) m_sampleCounts->initialize(metric, system);
    initialize_i(metric);
    return 0;
}

void SummaryAccumulator::initialize_i(const Metric&) {}

void SummaryAccumulator::announceTable_i(const Metric&, const std::string&) const {}

int SummaryAccumulator::processMessage(const Metric& metric)
{
    if (m_summaries.empty()) {
        QV_LOG_DEBUG("DEBUG: %s: No summary or -r int output enabled.\n", metric.getName().c_str());
        return 0;
    }
    if (m_sampleCounts != nullptr && m_sampleCounts->processMessage(metric) != 0) {
        QV_LOG_WARNING("WARNING: Failed to process %s for sample count.\n", metric.getName().c_str());
        return 1;
    }
    return processMessage_i(metric);
}

int SummaryAccumulator::processMessage_i(const Metric& metric)
{
    for (const pwr::DataElement* element : metric.getData().elements) {
        m_valueType = element->getValue()->getType();    // a metric takes no element without a value
        addElement_i(*element);
    }
    return 0;
}

int SummaryAccumulator::finalize(const Metric& metric)
{
    for (const Entry& entry : m_summaries) {
        announceTable_i(metric, entry.name);
        const pwr::TableRequest request(metric, entry.name, *m_outputConfig);
        if (entry.name != SAMPLE_COUNT) {
            makeTable_i(entry.number, request);
        } else if (m_sampleCounts != nullptr) {
            m_sampleCounts->finalize(metric);
        }
    }
    return 0;
}
