#include "features/CpuLoad.h"

#include "features/LoadMetric.h"

#include "values/EntityHandle.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <system_error>

namespace host {

namespace {

const std::string STAT = "/proc/stat";
constexpr std::size_t IDLE = 3;
constexpr std::size_t WAITING = 4;

bool takeNumber(const char*& at, const char* end, auto& number)
{
    while (at != end && *at == ' ')
        ++at;
    const auto [stop, code] = std::from_chars(at, end, number);
    at = stop;
    return code == std::errc();
}

}    // namespace

CpuLoad::CpuLoad(const SystemTree& tree) : Feature("cpu-load", "busy percent of each logical processor"), m_tree(tree)
{
}

bool CpuLoad::find_i(std::string& reason)
{
    std::map<int, Times> times;
    if (readTimes_i(times)) return true;
    reason = m_tree.realPath(STAT) + " can't be read or tells no processor";
    return false;
}

std::unique_ptr<pwr::Metric> CpuLoad::makeMetric_i(const pwr::SystemMetadata& system)
{
    return makeLoadMetric(getSwitchTag(), system);
}

void CpuLoad::readBaseline_i(unsigned long long)
{
    readTimes_i(m_last);
}

void CpuLoad::readRound_i(unsigned long long timestamp)
{
    std::map<int, Times> now;
    if (!readTimes_i(now)) return;
    for (const auto& [processor, times] : now) {
        // A processor that comes on line during the run has its baseline here.
        const auto [last, isNew] = m_last.try_emplace(processor, times);
        if (isNew) continue;
        sample_i(timestamp, processor, last->second, times);
        last->second = times;
    }
}

void CpuLoad::sample_i(unsigned long long timestamp, int processor, const Times& last, const Times& now)
{
    double total = 0;
    double idle = 0;
    for (std::size_t i = 0; i < now.size(); ++i) {
        // Idle and waiting times may step back, and all begin anew when a processor was off line.
        const double passed = now[i] > last[i] ? static_cast<double>(now[i] - last[i]) : 0.0;
        total += passed;
        if (i == IDLE || i == WAITING) idle += passed;
    }
    const pwr::EntityHandle* thread = pwr::EntityHandle::getCPUThreadHandle(processor);
    if (total > 0 && thread != nullptr) handIn_i(timestamp, thread, nullptr, wholePercent(total - idle, total));
}

// Leaves out lines that make no sense. False when none is left.
bool CpuLoad::readTimes_i(std::map<int, Times>& times) const
{
    std::string text;
    times.clear();
    m_tree.readText(STAT, text);
    const char* end = text.data() + text.size();
    for (const char* line = text.data(); line < end;) {
        const char* lineEnd = std::find(line, end, '\n');
        int processor = 0;
        Times read = {};
        if (parseLine_i(line, lineEnd, processor, read)) times.emplace(processor, read);
        line = lineEnd + (lineEnd != end ? 1 : 0);
    }
    return !times.empty();
}

// "cpu3 4745 2102 2201 181596 45 0 7 4 0 0"; old systems count fewer times.
bool CpuLoad::parseLine_i(const char*& at, const char* end, int& processor, Times& times)
{
    for (const char letter : {'c', 'p', 'u'}) {
        if (at == end || *at++ != letter) return false;
    }
    if (at == end || *at == ' ' || !takeNumber(at, end, processor) || processor < 0) return false;
    std::size_t count = 0;
    while (count < times.size() && takeNumber(at, end, times[count]))
        ++count;
    return count > IDLE;
}

}    // namespace host
