#pragma once

#include "system/MachineClock.h"

namespace test {

// A clock that the test turns: 1000 MHz.
//
//   clock.advance(100 * MS);
//   clock.sleep(3'600'000 * MS);    // the system's monotonic clock stands still meanwhile
class HandClock : public host::MachineClock {
public:
    explicit HandClock(unsigned long long start = 5'000) : m_source(now.tick)
    {
        now = {start, 7'000'000'000, 3'000'000'000};    // it had slept before
    }

    Reading read() override { return now; }
    pwr::QVClockSource& getSource() override { return m_source; }

    void advance(unsigned long long ns)
    {
        sleep(ns);
        now.monotonicNs += ns;
    }
    void sleep(unsigned long long ns)
    {
        now.tick += ns;
        now.bootNs += ns;
    }

    Reading now;

private:
    class Source : public pwr::QVClockSource {
    public:
        explicit Source(const unsigned long long& tick) : QVClockSource("hand", "hand", "turned by hand"), m_tick(tick)
        {
        }
        float getFreqMHz() override { return 1000; }
        unsigned long long getTimestamp() override { return m_tick; }

    private:
        const unsigned long long& m_tick;
    };

    Source m_source;
};

}    // namespace test
