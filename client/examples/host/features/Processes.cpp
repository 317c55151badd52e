#include "features/Processes.h"

#include "features/PrintableName.h"

#include "values/Description.h"
#include "values/EntityHandle.h"
#include "values/Handles.h"
#include "values/Process.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <tuple>

namespace host {

namespace {

// The numbers of a row.
constexpr std::size_t PARENT = 0;
constexpr std::size_t STARTED = 1;
constexpr std::size_t HAS_ENDED = 2;
constexpr std::size_t COUNT = 3;    // later ones may follow

FeatureCapability* makeCapability()
{
    auto* capability = new FeatureCapability("processes", "processes that start and end", "PROCESSES", 1);
    capability->require(new SourceRequirement("PROCESSES", "processes"));
    return capability;
}

bool isProcess(const RecordItem& item)
{
    return item.indices.count == 1 && item.indices.values[0] < std::uint32_t{Processes::REUSED} &&
           item.numberCount >= COUNT;
}

}    // namespace

Processes::Processes() : FeaturePlugin("quorvane-host-processes", makeCapability()) {}

void Processes::takeBaseline_i(const Source&, const Items& items, unsigned long long tsc)
{
    m_lastTsc = tsc;
    m_last = listed_i(items);
    for (const RecordItem& item : items) {
        if (isProcess(item)) m_last[item.indices.values[0]].knownId = meet_i(item, 0);
    }
}

std::unique_ptr<pwr::Metric> Processes::makeMetric_i(const pwr::SystemMetadata& system)
{
    auto metric = std::make_unique<pwr::Metric>("Processes", pwr::Metric::MetricType::TracedEvent, "EVENTS",
                                                getSwitchTag(), system, nullptr);
    metric->setEntityGroupInfo(pwr::FieldDescription("System", ""));
    metric->setDescriptorGroupInfo(pwr::FieldDescription("Event", ""));
    metric->setValueGroupInfo(pwr::FieldDescription("Process", ""));
    m_started = pwr::DataDescriptor::create(pwr::DataDescriptorBuilder("Started", ""));
    m_ended = pwr::DataDescriptor::create(pwr::DataDescriptorBuilder("Ended", ""));
    return metric;
}

// A list without any process was not read.
void Processes::takeRound_i(const Source& source, const Items& items, unsigned long long tsc)
{
    List now = listed_i(items);
    if (now.empty()) return;
    if (m_last.empty()) {
        takeBaseline_i(source, items, tsc);
        return;
    }
    std::vector<Event> events;
    endMissing_i(now, events);
    startNew_i(now, items, tsc, events);
    handInEvents_i(events, tsc);
    m_last = std::move(now);
}

Processes::List Processes::listed_i(const Items& items)
{
    List list;
    for (const RecordItem& item : items) {
        if (isProcess(item)) list[item.indices.values[0]] = {item.numbers[STARTED], 0, item.numbers[HAS_ENDED] != 0};
    }
    return list;
}

// Those that are gone, whose id another has, or that have ended but are still listed.
void Processes::endMissing_i(const List& now, std::vector<Event>& events) const
{
    for (const auto& [id, process] : m_last) {
        const auto found = now.find(id);
        const bool isThere = found != now.end() && found->second.started == process.started && !found->second.hasEnded;
        if (!process.hasEnded && !isThere) events.push_back({m_ended, process.knownId});
    }
}

void Processes::startNew_i(List& now, const Items& items, unsigned long long tsc, std::vector<Event>& events)
{
    std::vector<const RecordItem*> started;
    for (const RecordItem& item : items) {
        if (!isProcess(item)) continue;
        Listed& process = now[item.indices.values[0]];
        const auto before = m_last.find(item.indices.values[0]);
        if (before != m_last.end() && before->second.started == process.started) {
            process.knownId = before->second.knownId;
        } else {
            started.push_back(&item);
        }
    }
    const auto order = [](const RecordItem* item) {
        return std::tuple(item->numbers[STARTED], item->indices.values[0]);
    };
    std::sort(started.begin(), started.end(), [&order](auto* a, auto* b) { return order(a) < order(b); });
    std::vector<Event> ended;
    for (const RecordItem* item : started) {
        Listed& process = now[item->indices.values[0]];
        process.knownId = meet_i(*item, tsc);
        events.push_back({m_started, process.knownId});
        if (process.hasEnded) ended.push_back({m_ended, process.knownId});
    }
    events.insert(events.end(), ended.begin(), ended.end());
}

// Describes a new process to the library. Gives the id by which it is known there.
int Processes::meet_i(const RecordItem& item, unsigned long long startTsc)
{
    constexpr int MOST_TIMES = std::numeric_limits<int>::max() / REUSED;
    int& met = m_met[item.indices.values[0]];
    const int times = std::min(met++, MOST_TIMES);
    const int id = static_cast<int>(item.indices.values[0]) + times * REUSED;
    const int parent = static_cast<int>(std::min<std::uint64_t>(item.numbers[PARENT], REUSED));
    pwr::ProcessManager::create(pwr::ProcessDescription(id, startTsc, parent, printableName(item.text)));
    return id;
}

// The handle is taken before an end is told, which forgets a process that nobody has referred to.
void Processes::handInEvents_i(const std::vector<Event>& events, unsigned long long tsc)
{
    const unsigned long long first = tsc - std::min<unsigned long long>(events.size(), tsc) + 1;
    unsigned long long time = std::max(first, m_lastTsc + 1);
    for (const Event& event : events) {
        const pwr::Process* process = pwr::Process::get(event.knownId);
        if (process == nullptr) continue;
        handIn_i(time, pwr::EntityHandle::getSystemHandle(), event.kind, *process);
        if (event.kind == m_ended) pwr::ProcessManager::addProcessEndTime(event.knownId, time);
        ++time;
    }
    m_lastTsc = std::max(tsc, time - 1);
}

}    // namespace host
