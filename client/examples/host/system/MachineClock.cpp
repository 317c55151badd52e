#include "system/MachineClock.h"

#include "system/System.h"

namespace host {

namespace {

constexpr unsigned long long SAME_MOMENT_NS = 50'000'000;

bool isNear(const SleepClocks& a, const SleepClocks& b)
{
    const auto asleepBetween = static_cast<long long>((b.bootNs - a.bootNs) - (b.monotonicNs - a.monotonicNs));
    constexpr auto LIMIT = static_cast<long long>(SAME_MOMENT_NS);
    return asleepBetween > -LIMIT && asleepBetween < LIMIT;
}

}    // namespace

// The clocks can only be read one after the other. A suspend in between, or a long wait for a processor, shows when
// they are read again.
MachineClock::Reading SystemClock::read()
{
    constexpr int MOST_TRIES = 5;
    Reading reading;
    for (int i = 0; i < MOST_TRIES; ++i) {
        const SleepClocks before = readSleepClocks();
        reading = {m_source.getTimestamp(), before.bootNs, before.monotonicNs};
        if (isNear(before, readSleepClocks())) break;
    }
    return reading;
}

}    // namespace host
