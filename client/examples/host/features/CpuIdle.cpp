#include "features/CpuIdle.h"

#include "metrics/Metric.h"
#include "record/SystemMetadata.h"
#include "values/Description.h"
#include "values/EntityHandle.h"
#include "values/Handles.h"
#include "values/Quantity.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <set>
#include <utility>

namespace host {

namespace {

const std::string CPU_FOLDER = "/sys/devices/system/cpu";
const std::string ACTIVE = "Active";

const pwr::DataDescriptor* describe(const std::string& name)
{
    return pwr::DataDescriptor::create(pwr::DataDescriptorBuilder(name, ""));
}

// The tick counts of years fit; a file of nonsense must not wrap.
std::uint64_t saturatingMultiply(std::uint64_t a, std::uint64_t b)
{
    constexpr std::uint64_t MAX = std::numeric_limits<std::uint64_t>::max();
    return b != 0 && a > MAX / b ? MAX : a * b;
}

std::uint64_t saturatingAdd(std::uint64_t a, std::uint64_t b)
{
    constexpr std::uint64_t MAX = std::numeric_limits<std::uint64_t>::max();
    return a > MAX - b ? MAX : a + b;
}

}    // namespace

CpuIdle::CpuIdle(const SystemTree& tree)
    : Feature("cpu-idle", "time of each logical processor in each idle state, and active"), m_tree(tree)
{
}

bool CpuIdle::find_i(std::string& reason)
{
    m_processors.clear();
    for (const int number : m_tree.numberedEntries(CPU_FOLDER, "cpu"))
        addProcessor_i(number);
    if (!m_processors.empty()) return true;
    reason = "no processor has idle states that can be read below " + m_tree.realPath(CPU_FOLDER);
    return false;
}

void CpuIdle::addProcessor_i(int number)
{
    const std::string folder = CPU_FOLDER + "/cpu" + std::to_string(number) + "/cpuidle";
    Processor processor;
    processor.number = number;
    std::set<std::string> names{ACTIVE};
    for (const int index : m_tree.numberedEntries(folder, "state")) {
        const std::string plainName = "state" + std::to_string(index);
        State state;
        state.file = folder + "/" + plainName + "/time";
        if (!m_tree.readText(folder + "/" + plainName + "/name", state.name) || state.name.empty()) {
            state.name = plainName;
        }
        if (names.count(state.name) != 0) state.name += " (" + plainName + ")";
        names.insert(state.name);
        processor.states.push_back(state);
    }
    if (processor.states.empty()) return;
    std::vector<std::uint64_t> counters;
    std::string unreadable;
    if (readCounters_i(processor, counters, unreadable)) {
        m_processors.push_back(std::move(processor));
    } else {
        leaveOut_i(number, unreadable);
    }
}

// Without one of its states nobody knows what is left for the active one.
void CpuIdle::leaveOut_i(int number, const std::string& file)
{
    remark_i("processor " + std::to_string(number) + " is left out, since " + file + " can't be read");
}

bool CpuIdle::readCounters_i(const Processor& processor, std::vector<std::uint64_t>& counters,
                             std::string& unreadable) const
{
    counters.assign(processor.states.size(), 0);
    for (std::size_t i = 0; i < counters.size(); ++i) {
        if (m_tree.readNumber(processor.states[i].file, counters[i])) continue;
        unreadable = m_tree.realPath(processor.states[i].file);
        return false;
    }
    return true;
}

std::unique_ptr<pwr::Metric> CpuIdle::makeMetric_i(const pwr::SystemMetadata& system)
{
    auto metric = std::make_unique<pwr::Metric>("CPU idle states", pwr::Metric::MetricType::SampledResidency, "STATES",
                                                getSwitchTag(), system, pwr::Quantity::time());
    metric->setEntityGroupInfo(pwr::FieldDescription("Processor", ""));
    metric->setDescriptorGroupInfo(pwr::FieldDescription("State", ""));
    m_ticksPerMicrosecond = static_cast<std::uint64_t>(std::llround(system.qvaClockFreqMHz));
    m_active = describe(ACTIVE);
    for (Processor& processor : m_processors) {
        processor.entity = pwr::EntityHandle::getCPUThreadHandle(processor.number);
        for (State& state : processor.states)
            state.descriptor = describe(state.name);
    }
    std::erase_if(m_processors, [](const Processor& processor) { return processor.entity == nullptr; });
    announce_i(*metric);
    return metric;
}

// A state that first showed up later would put its processor's sampling points back to the start.
void CpuIdle::announce_i(pwr::Metric& metric) const
{
    std::vector<pwr::Metric::EntityDescCombo> combinations;
    for (const Processor& processor : m_processors) {
        combinations.push_back({processor.entity, m_active});
        for (const State& state : processor.states)
            combinations.push_back({processor.entity, state.descriptor});
    }
    metric.setEntityDescriptorCombinations(combinations);
}

void CpuIdle::readBaseline_i(unsigned long long timestamp)
{
    std::vector<std::uint64_t> counters;
    std::string unreadable;
    for (Processor& processor : m_processors) {
        processor.lastTimestamp = timestamp;
        if (!readCounters_i(processor, counters, unreadable)) {
            leaveOut_i(processor.number, unreadable);
            processor.states.clear();
            continue;
        }
        for (std::size_t i = 0; i < counters.size(); ++i)
            processor.states[i].counter = counters[i];
    }
    std::erase_if(m_processors, [](const Processor& processor) { return processor.states.empty(); });
}

// A processor that can't be read in this round has no samples in it; its next ones cover the time since its last.
void CpuIdle::readRound_i(unsigned long long timestamp)
{
    std::vector<std::uint64_t> counters;
    std::string ignored;
    for (Processor& processor : m_processors) {
        if (!readCounters_i(processor, counters, ignored)) continue;
        book_i(processor, counters);
        handInStates_i(processor, timestamp);
    }
}

// A counter that went back began anew: what it counted meanwhile nobody knows.
void CpuIdle::book_i(Processor& processor, const std::vector<std::uint64_t>& counters) const
{
    for (std::size_t i = 0; i < counters.size(); ++i) {
        State& state = processor.states[i];
        const std::uint64_t microseconds = counters[i] > state.counter ? counters[i] - state.counter : 0;
        state.counter = counters[i];
        state.pendingTicks = saturatingAdd(state.pendingTicks, saturatingMultiply(microseconds, m_ticksPerMicrosecond));
    }
}

void CpuIdle::handInStates_i(Processor& processor, unsigned long long timestamp)
{
    std::uint64_t left = timestamp - processor.lastTimestamp;
    for (State& state : processor.states) {
        const std::uint64_t ticks = std::min(state.pendingTicks, left);
        state.pendingTicks -= ticks;
        left -= ticks;
        handIn_i(timestamp, processor.entity, state.descriptor, ticks);
    }
    handIn_i(timestamp, processor.entity, m_active, left);
    processor.lastTimestamp = timestamp;
}

}    // namespace host
