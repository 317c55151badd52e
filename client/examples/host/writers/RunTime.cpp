#include "writers/RunTime.h"

#include "writers/Text.h"

#include "record/SystemMetadata.h"
#include "runtime/pw_functions.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>

namespace host {

namespace {

constexpr std::uint64_t NS_PER_SECOND = 1'000'000'000;
constexpr std::uint64_t EXACT_LIMIT = std::numeric_limits<std::uint64_t>::max() / NS_PER_SECOND;

// With what stands between date and time, and behind the time.
std::string dateText(std::uint64_t secondsSinceEpoch, const char* between, const char* behind)
{
    using namespace std::chrono;
    const sys_seconds moment{seconds(static_cast<std::int64_t>(secondsSinceEpoch))};
    const sys_days day = floor<days>(moment);
    const year_month_day date(day);
    const auto second = static_cast<int>((moment - day).count());
    char text[64];
    pw_snprintf(text, sizeof(text), "%04d-%02u-%02u%s%02d:%02d:%02d%s", static_cast<int>(date.year()),
                static_cast<unsigned int>(date.month()), static_cast<unsigned int>(date.day()), between, second / 3600,
                second / 60 % 60, second % 60, behind);
    return text;
}

}    // namespace

void RunTime::use(const pwr::SystemMetadata& record)
{
    m_record = &record;
    const double hertz = static_cast<double>(record.qvaClockFreqMHz) * 1e6;
    const bool isKnown = hertz >= 1 && hertz < static_cast<double>(EXACT_LIMIT);
    m_ticksPerSecond = isKnown ? static_cast<std::uint64_t>(std::llround(hertz)) : NS_PER_SECOND;
}

std::uint64_t RunTime::toNs(std::uint64_t ticks) const
{
    if (m_ticksPerSecond == NS_PER_SECOND) return ticks;
    if (ticks / m_ticksPerSecond >= EXACT_LIMIT) return std::numeric_limits<std::uint64_t>::max();
    const std::uint64_t rest = ticks % m_ticksPerSecond;
    return ticks / m_ticksPerSecond * NS_PER_SECOND + (rest * NS_PER_SECOND + m_ticksPerSecond / 2) / m_ticksPerSecond;
}

std::uint64_t RunTime::sinceStartNs(std::uint64_t timestamp) const
{
    const std::uint64_t start = m_record != nullptr ? m_record->startTSC : 0;
    return timestamp > start ? toNs(timestamp - start) : 0;
}

void RunTime::appendUtc(std::string& out, std::uint64_t sinceStartNs)
{
    if (m_record == nullptr || m_record->startTimeval == 0) return;
    const std::uint64_t ns = m_record->startTimeval +
                             std::min(sinceStartNs, std::numeric_limits<std::uint64_t>::max() - m_record->startTimeval);
    if (m_text.empty() || ns / NS_PER_SECOND != m_second) {
        m_second = ns / NS_PER_SECOND;
        m_text = dateText(m_second, "T", ".");
    }
    out += m_text;
    char digits[] = "000000000Z";
    std::uint64_t rest = ns % NS_PER_SECOND;
    for (std::size_t i = sizeof(digits) - 2; rest != 0; rest /= 10)
        digits[--i] = static_cast<char>('0' + rest % 10);
    out += digits;
}

std::string utcText(std::uint64_t sinceEpochNs)
{
    return dateText(sinceEpochNs / NS_PER_SECOND, " ", " UTC");
}

}    // namespace host
