#include "features/Counters.h"

#include "features/PrintableName.h"
#include "features/SaturatingMath.h"
#include "machine/SystemTree.h"

#include "values/Description.h"
#include "values/EntityHandle.h"
#include "values/Handles.h"
#include "values/Quantity.h"

#include <algorithm>
#include <limits>

namespace host {

namespace {

FeatureCapability* makeCapability(const CounterFeature& feature)
{
    auto* capability = new FeatureCapability(feature.name, feature.description, feature.prefix, 1);
    capability->require(new SourceRequirement(feature.prefix, feature.sources));
    return capability;
}

// The counts that the columns hold; none when the row is too short.
template <typename Columns>
std::vector<std::uint64_t> countsOf(const RecordItem& row, const Columns& columns)
{
    std::vector<std::uint64_t> counts;
    for (const auto& column : columns) {
        if (column.at >= row.numberCount) return {};
        counts.push_back(row.numbers.at(column.at));
    }
    return counts;
}

// Empty when one of them tells nothing: then all began anew.
std::vector<std::uint64_t> allCountedBetween(const std::vector<std::uint64_t>& last,
                                             const std::vector<std::uint64_t>& now)
{
    std::vector<std::uint64_t> counted;
    for (std::size_t i = 0; i < now.size(); ++i) {
        const std::optional<std::uint64_t> step = countedBetween(last[i], now[i]);
        if (!step) return {};
        counted.push_back(*step);
    }
    return counted;
}

}    // namespace

std::optional<std::uint64_t> countedBetween(std::uint64_t last, std::uint64_t now)
{
    // A counter that seems to have gone farther began anew.
    constexpr std::uint64_t FARTHEST_OVER_THE_END = std::uint64_t{1} << 28U;
    constexpr std::uint64_t BELOW_ZERO = std::uint64_t{1} << 63U;
    constexpr std::uint64_t MAX_32 = std::numeric_limits<std::uint32_t>::max();
    const std::uint64_t step = now - last;
    if (now >= last) return step < BELOW_ZERO ? std::optional(step) : std::nullopt;
    if (step <= FARTHEST_OVER_THE_END) return step;
    const std::uint64_t step32 = step & MAX_32;
    return last <= MAX_32 && step32 <= FARTHEST_OVER_THE_END ? std::optional(step32) : std::nullopt;
}

Counters::Counters(const CounterFeature& feature)
    : FeaturePlugin(std::string("quorvane-host-") + feature.name, makeCapability(feature)), m_feature(feature)
{
}

void Counters::takeBaseline_i(const Source& source, const Items& items, unsigned long long tsc)
{
    std::uint64_t factor = 0;
    if (SystemTree::parseNumber(constant_i("UNITS_FACTOR", ""), factor) && factor > 0) m_factor = factor;
    takeRows_i(groupOf_i(source), items, tsc);
}

Counters::Group& Counters::groupOf_i(const Source& source)
{
    const auto [entry, isNew] = m_groups.try_emplace(source.tag);
    Group& group = entry->second;
    if (!isNew) return group;
    for (const Amount& amount : m_feature.amounts) {
        if (amount.source != source.tag) continue;
        std::uint64_t at = 0;
        SystemTree::parseNumber(constant_i(std::string("COLUMNS_") + amount.column, ""), at);
        group.columns.push_back({static_cast<std::size_t>(at), amount.name, nullptr});
    }
    return group;
}

std::unique_ptr<pwr::Metric> Counters::makeMetric_i(const pwr::SystemMetadata& system)
{
    auto metric = std::make_unique<pwr::Metric>(m_feature.metric, pwr::Metric::MetricType::SampledDelta,
                                                m_feature.container, getSwitchTag(), system, m_feature.quantity());
    metric->setEntityGroupInfo(pwr::FieldDescription(m_feature.things, ""));
    metric->setDescriptorGroupInfo(pwr::FieldDescription(m_feature.kinds, ""));
    return metric;
}

void Counters::takeRound_i(const Source& source, const Items& items, unsigned long long tsc)
{
    Group& group = groupOf_i(source);
    for (Column& column : group.columns) {
        if (column.descriptor == nullptr && !column.name.empty())
            column.descriptor = pwr::DataDescriptor::create(pwr::DataDescriptorBuilder(column.name, ""));
    }
    takeRows_i(group, items, tsc);
}

void Counters::takeRows_i(Group& group, const Items& items, unsigned long long tsc)
{
    for (const RecordItem& row : items) {
        const Counts now = countsOf(row, group.columns);
        if (now.empty()) continue;
        const std::string name(row.text);
        Thing& thing = group.things[name];
        if (thing.seenTsc == tsc) continue;    // a second row of the same name
        thing.seenTsc = tsc;
        takeRow_i(group, thing, name, now, tsc);
    }
    // What is missing may be another thing when it is back.
    for (auto& [name, thing] : group.things)
        thing.hasBaseline = thing.hasBaseline && thing.seenTsc == tsc;
}

void Counters::takeRow_i(const Group& group, Thing& thing, const std::string& name, const Counts& now,
                         unsigned long long tsc)
{
    const Counts counted = thing.hasBaseline ? allCountedBetween(thing.last, now) : Counts();
    const bool isUnused = std::all_of(now.begin(), now.end(), [](std::uint64_t count) { return count == 0; });
    if (!counted.empty() && isUnused) return;
    if (thing.entity == nullptr && !counted.empty()) thing.entity = entityOf_i(name);
    for (std::size_t i = 0; i < counted.size(); ++i) {
        handIn_i(tsc, thing.entity, group.columns[i].descriptor, saturatingMultiply(counted[i], m_factor),
                 tsc - thing.lastTsc);
    }
    thing.last = now;
    thing.lastTsc = tsc;
    thing.hasBaseline = true;
}

const pwr::EntityHandle* Counters::entityOf_i(const std::string& name)
{
    if (name.empty()) return pwr::EntityHandle::getSystemHandle();
    const pwr::EntityHandle*& entity = m_entities[name];
    if (entity != nullptr) return entity;
    const std::string printable = printableName(name);
    std::string unique = printable;
    for (int number = 2; !m_names.insert(unique).second; ++number)
        unique = printable + " (" + std::to_string(number) + ")";
    entity = pwr::EntityHandle::create(unique, pwr::EntityHandle::getSystemHandle());
    return entity;
}

void Counters::forgetBaselines_i(unsigned long long)
{
    for (auto& [tag, group] : m_groups) {
        for (auto& [name, thing] : group.things)
            thing.hasBaseline = false;
    }
}

DiskIo::DiskIo()
    : Counters({.name = "disk-io",
                .description = "bytes read from and written to each disk",
                .prefix = "DISK-IO",
                .sources = "disk counters",
                .metric = "Disk IO",
                .container = "BYTES",
                .things = "Disk",
                .kinds = "Direction",
                .quantity = &pwr::Quantity::data,
                .amounts = {{"SECTORS", "READ", "Read"}, {"SECTORS", "WRITTEN", "Written"}}})
{
}

NetworkIo::NetworkIo()
    : Counters({.name = "network-io",
                .description = "bytes received and sent by each network interface",
                .prefix = "NETWORK-IO",
                .sources = "interface counters",
                .metric = "Network IO",
                .container = "BYTES",
                .things = "Interface",
                .kinds = "Direction",
                .quantity = &pwr::Quantity::data,
                .amounts = {{"BYTES", "RECEIVED", "Received"}, {"BYTES", "SENT", "Sent"}}})
{
}

ContextSwitches::ContextSwitches()
    : Counters({.name = "context-switches",
                .description = "context switches of all processors",
                .prefix = "CONTEXT-SWITCHES",
                .sources = "counters of context switches",
                .metric = "Context switches",
                .container = "COUNT",
                .things = "System",
                .kinds = "",
                .quantity = &pwr::Quantity::operations,
                .amounts = {{"TOTAL", "TOTAL", ""}}})
{
}

Interrupts::Interrupts()
    : Counters({.name = "interrupts",
                .description = "hardware and software interrupts of all processors",
                .prefix = "INTERRUPTS",
                .sources = "counters of interrupts",
                .metric = "Interrupts",
                .container = "COUNT",
                .things = "System",
                .kinds = "Kind",
                .quantity = &pwr::Quantity::operations,
                .amounts = {{"HARDWARE", "HARDWARE", "Hardware"}, {"SOFTWARE", "SOFTWARE", "Software"}}})
{
}

}    // namespace host
