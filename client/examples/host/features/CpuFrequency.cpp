#include "features/CpuFrequency.h"

#include "collector/NumberPattern.h"
#include "machine/SystemTree.h"

#include "values/Description.h"
#include "values/EntityHandle.h"
#include "values/Quantity.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

FeatureCapability* makeCapability()
{
    auto* capability =
        new FeatureCapability("cpu-frequency", "time of each logical processor at each frequency", "CPU-FREQUENCY", 1);
    capability->require(new SourceRequirement("CPU-FREQUENCY", "processor frequencies"));
    return capability;
}

}    // namespace

CpuFrequency::CpuFrequency() : FeaturePlugin("quorvane-host-cpu-frequency", makeCapability()) {}

void CpuFrequency::takeBaseline_i(const Source& source, const Items& items, unsigned long long tsc)
{
    std::uint64_t number = 0;
    if (SystemTree::parseNumber(constant_i("UNITS_PER-MHZ", ""), number) && number > 0) m_perMHz = number;
    if (SystemTree::parseNumber(constant_i("UNITS_STEP-MHZ", ""), number) && number > 0) m_stepMHz = number;
    for (const RecordItem& item : items) {
        if (!item.isRead) remarkLeftOut_i(fillPattern("processor *", item.indices), source, item);
    }
    takeRound_i(source, items, tsc);
}

std::unique_ptr<pwr::Metric> CpuFrequency::makeMetric_i(const pwr::SystemMetadata& system)
{
    auto metric = std::make_unique<pwr::Metric>("CPU frequency", pwr::Metric::MetricType::TracedValueTransition,
                                                "STEPS", getSwitchTag(), system, pwr::Quantity::frequency());
    metric->setEntityGroupInfo(pwr::FieldDescription("Processor", ""));
    metric->setValueGroupInfo(pwr::FieldDescription("Frequency (MHz)", ""));
    return metric;
}

void CpuFrequency::takeRound_i(const Source&, const Items& items, unsigned long long tsc)
{
    for (const RecordItem& item : items) {
        if (item.isRead && !item.isSigned && item.indices.count > 0) see_i(item.indices.values[0], stepOf_i(item), tsc);
    }
    for (auto& [number, processor] : m_processors) {
        if (processor.seenTsc != tsc) loseSight_i(number, processor);
    }
}

std::uint64_t CpuFrequency::stepOf_i(const RecordItem& item) const
{
    const double steps = item.toReal() / static_cast<double>(m_perMHz) / static_cast<double>(m_stepMHz);
    return static_cast<std::uint64_t>(std::llround(std::min(steps, 1e6))) * m_stepMHz;
}

void CpuFrequency::see_i(std::uint32_t number, std::uint64_t mhz, unsigned long long tsc)
{
    Processor& processor = m_processors[number];
    const bool isKept = processor.isInSight && processor.heldMHz == mhz;
    if (processor.isInSight && !isKept) tell_i(number, processor, tsc);
    if (!isKept) processor = {mhz, tsc, tsc, true};
    processor.seenTsc = tsc;
}

void CpuFrequency::tell_i(std::uint32_t number, const Processor& processor, unsigned long long until)
{
    const pwr::EntityHandle* entity = pwr::EntityHandle::getCPUThreadHandle(static_cast<int>(number));
    if (entity != nullptr && until > processor.heldSince)
        handIn_i(until, entity, nullptr, processor.heldMHz, until - processor.heldSince);
}

void CpuFrequency::loseSight_i(std::uint32_t number, Processor& processor)
{
    if (processor.isInSight) tell_i(number, processor, processor.seenTsc);
    processor.isInSight = false;
}

// Nothing is told before the first round: all that was seen then was seen in one moment.
void CpuFrequency::forgetBaselines_i(unsigned long long)
{
    for (auto& [number, processor] : m_processors)
        loseSight_i(number, processor);
}

// One that changed in the last round was held for a moment, which is a tick.
void CpuFrequency::closeSamples_i(unsigned long long tsc)
{
    for (auto& [number, processor] : m_processors) {
        if (processor.isInSight) tell_i(number, processor, std::max(tsc, processor.heldSince + 1));
    }
}

}    // namespace host
