#include "CpuTotalLoad.h"

#include "features/LoadMetric.h"

#include "values/EntityHandle.h"

#include <windows.h>

namespace host {

namespace {

unsigned long long toNumber(const FILETIME& time)
{
    return static_cast<unsigned long long>(time.dwHighDateTime) << 32U | time.dwLowDateTime;
}

}    // namespace

CpuTotalLoad::CpuTotalLoad() : Feature("cpu-load", "busy percent of the whole CPU") {}

bool CpuTotalLoad::find_i(std::string& reason)
{
    Times times;
    if (readTimes_i(times)) return true;
    reason = "the system does not tell its processor times";
    return false;
}

std::unique_ptr<pwr::Metric> CpuTotalLoad::makeMetric_i(const pwr::SystemMetadata& system)
{
    return makeLoadMetric(getSwitchTag(), system);
}

void CpuTotalLoad::readBaseline_i(unsigned long long)
{
    readTimes_i(m_last);
}

void CpuTotalLoad::readRound_i(unsigned long long timestamp)
{
    Times now;
    if (!readTimes_i(now) || now.total <= m_last.total) return;
    const unsigned long long busy = now.busy > m_last.busy ? now.busy - m_last.busy : 0;
    const auto percent = wholePercent(static_cast<double>(busy), static_cast<double>(now.total - m_last.total));
    handIn_i(timestamp, pwr::EntityHandle::getCPUEntityHandle(nullptr), nullptr, percent);
    m_last = now;
}

bool CpuTotalLoad::readTimes_i(Times& times)
{
    FILETIME idle = {};
    FILETIME kernel = {};    // idle time included
    FILETIME user = {};
    if (!GetSystemTimes(&idle, &kernel, &user)) return false;
    times.total = toNumber(kernel) + toNumber(user);
    times.busy = times.total - toNumber(idle);
    return true;
}

}    // namespace host
