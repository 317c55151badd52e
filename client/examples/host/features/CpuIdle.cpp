#include "features/CpuIdle.h"

#include "features/SaturatingMath.h"
#include "machine/SystemTree.h"

#include "record/SystemMetadata.h"
#include "values/Description.h"
#include "values/EntityHandle.h"
#include "values/Handles.h"
#include "values/Quantity.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace host {

namespace {

const pwr::DataDescriptor* describe(const std::string& name)
{
    return pwr::DataDescriptor::create(pwr::DataDescriptorBuilder(name, ""));
}

FeatureCapability* makeCapability()
{
    auto* capability = new FeatureCapability(
        "cpu-idle", "time of each logical processor in each idle state, and active", "CPU-IDLE", 1);
    capability->require(new SourceRequirement("CPU-IDLE", "idle states"));
    return capability;
}

// Calls `take` with the number and the items of each processor. Items without state have none.
template <typename Take>
void forEachProcessor(const std::vector<RecordItem>& items, const Take& take)
{
    const RecordItem* end = items.data() + items.size();
    for (const RecordItem* first = items.data(); first != end;) {
        const std::uint32_t number = first->indices.values[0];
        const RecordItem* next =
            std::find_if(first, end, [number](const RecordItem& item) { return item.indices.values[0] != number; });
        if (first->indices.count == 2) take(number, first, next);
        first = next;
    }
}

const RecordItem* findUnread(const RecordItem* first, const RecordItem* end)
{
    return std::find_if(first, end, [](const RecordItem& item) { return !item.isRead || item.isSigned; });
}

}    // namespace

CpuIdle::CpuIdle() : FeaturePlugin("quorvane-host-cpu-idle", makeCapability()) {}

void CpuIdle::takeBaseline_i(const Source& source, const Items& items, unsigned long long tsc)
{
    if (m_active != nullptr) {    // all states are announced with the first round
        remark_i("the states of " + source.pattern + " are left out, since they came after others");
        return;
    }
    m_activeName = constant_i("LABELS_ACTIVE", "Active");
    forEachProcessor(items, [&](std::uint32_t number, const RecordItem* first, const RecordItem* end) {
        Processor& processor = m_processors[number];
        processor = Processor();
        processor.lastTsc = tsc;
        const RecordItem* unread = findUnread(first, end);
        for (const RecordItem* item = first; item != end && unread == end; ++item)
            processor.states.push_back(nameState_i(source, *item, processor));
        if (unread == end) return;
        // Without one of its states nobody knows what is left for the active one.
        remarkLeftOut_i("processor " + std::to_string(number), source, *unread);
        m_processors.erase(number);
    });
}

CpuIdle::State CpuIdle::nameState_i(const Source& source, const RecordItem& item, const Processor& processor) const
{
    State state;
    state.number = item.indices.values[1];
    state.counter = item.number;
    state.name = textOf_i(source, item);
    if (state.name.empty()) state.name = plainName_i(source, item);
    const auto& states = processor.states;
    const auto hasName = [&state](const State& other) { return other.name == state.name; };
    if (state.name == m_activeName || std::any_of(states.begin(), states.end(), hasName)) {
        state.name += " (" + plainName_i(source, item) + ")";
    }
    return state;
}

std::unique_ptr<pwr::Metric> CpuIdle::makeMetric_i(const pwr::SystemMetadata& system)
{
    auto metric = std::make_unique<pwr::Metric>("CPU idle states", pwr::Metric::MetricType::SampledResidency, "STATES",
                                                getSwitchTag(), system, pwr::Quantity::time());
    metric->setEntityGroupInfo(pwr::FieldDescription("Processor", ""));
    metric->setDescriptorGroupInfo(pwr::FieldDescription("State", ""));
    std::uint64_t nanoseconds = 1000;
    SystemTree::parseNumber(constant_i("UNITS_NANOSECONDS", ""), nanoseconds);
    m_ticksPerCount = static_cast<std::uint64_t>(
        std::llround(static_cast<double>(system.qvaClockFreqMHz) * static_cast<double>(nanoseconds) / 1000.0));
    m_active = describe(m_activeName);
    for (auto& [number, processor] : m_processors) {
        processor.entity = pwr::EntityHandle::getCPUThreadHandle(static_cast<int>(number));
        for (State& state : processor.states)
            state.descriptor = describe(state.name);
    }
    std::erase_if(m_processors, [](const auto& entry) { return entry.second.entity == nullptr; });
    announce_i(*metric);
    return metric;
}

// A state that first showed up later would put its processor's sampling points back to the start.
void CpuIdle::announce_i(pwr::Metric& metric) const
{
    std::vector<pwr::Metric::EntityDescCombo> combinations;
    for (const auto& [number, processor] : m_processors) {
        combinations.push_back({processor.entity, m_active});
        for (const State& state : processor.states)
            combinations.push_back({processor.entity, state.descriptor});
    }
    metric.setEntityDescriptorCombinations(combinations);
}

void CpuIdle::takeRound_i(const Source&, const Items& items, unsigned long long tsc)
{
    forEachProcessor(items, [&](std::uint32_t number, const RecordItem* first, const RecordItem* end) {
        const auto processor = m_processors.find(number);
        if (processor != m_processors.end()) takeProcessor_i(processor->second, first, end, tsc);
    });
}

// A processor that can't be read in this round has no samples in it; its next ones cover the time since its last.
void CpuIdle::takeProcessor_i(Processor& processor, const RecordItem* first, const RecordItem* end,
                              unsigned long long tsc)
{
    if (findUnread(first, end) != end || tsc <= processor.lastTsc) return;
    const auto isState = [](const RecordItem& item, const State& state) {
        return item.indices.values[1] == state.number;
    };
    if (!std::equal(first, end, processor.states.begin(), processor.states.end(), isState)) return;
    std::vector<std::uint64_t> counters;
    for (const RecordItem* item = first; item != end; ++item)
        counters.push_back(item->number);
    if (processor.hasBaseline) {
        book_i(processor, counters);
        handInStates_i(processor, tsc);
    } else {
        begin_i(processor, counters, tsc);
    }
}

// Behind a reset: the sampling point has no time, the next one begins here.
void CpuIdle::begin_i(Processor& processor, const std::vector<std::uint64_t>& counters, unsigned long long tsc)
{
    for (std::size_t i = 0; i < counters.size(); ++i) {
        State& state = processor.states[i];
        state.counter = counters[i];
        state.pendingTicks = 0;
        handIn_i(tsc, processor.entity, state.descriptor, std::uint64_t{0}, pwr::Metric::RESET_DURATION);
    }
    handIn_i(tsc, processor.entity, m_active, std::uint64_t{0}, pwr::Metric::RESET_DURATION);
    processor.lastTsc = tsc;
    processor.hasBaseline = true;
}

// A counter that went back began anew: what it counted meanwhile nobody knows.
void CpuIdle::book_i(Processor& processor, const std::vector<std::uint64_t>& counters) const
{
    for (std::size_t i = 0; i < counters.size(); ++i) {
        State& state = processor.states[i];
        const std::uint64_t counts = counters[i] > state.counter ? counters[i] - state.counter : 0;
        state.counter = counters[i];
        state.pendingTicks = saturatingAdd(state.pendingTicks, saturatingMultiply(counts, m_ticksPerCount));
    }
}

void CpuIdle::handInStates_i(Processor& processor, unsigned long long tsc)
{
    std::uint64_t left = tsc - processor.lastTsc;
    for (State& state : processor.states) {
        const std::uint64_t ticks = std::min(state.pendingTicks, left);
        state.pendingTicks -= ticks;
        left -= ticks;
        handIn_i(tsc, processor.entity, state.descriptor, ticks);
    }
    handIn_i(tsc, processor.entity, m_active, left);
    processor.lastTsc = tsc;
}

void CpuIdle::forgetBaselines_i(unsigned long long)
{
    for (auto& [number, processor] : m_processors)
        processor.hasBaseline = false;
}

}    // namespace host
