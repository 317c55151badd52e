#pragma once

#include "record/Clocks.h"

namespace host {

// What a collector stamps its records with, and how it learns of a suspend: the boot clock goes on while the system
// sleeps, the monotonic clock stands still. Tests put a clock of their own in its place.
class MachineClock {
public:
    // All of one moment.
    struct Reading {
        unsigned long long tick = 0;           // of the source
        unsigned long long bootNs = 0;         // since some moment
        unsigned long long monotonicNs = 0;    // since some moment
    };

    virtual ~MachineClock() = default;
    virtual Reading read() = 0;
    virtual pwr::QVClockSource& getSource() = 0;
};

// The clocks of this system; ticks are nanoseconds of the wall clock.
class SystemClock : public MachineClock {
public:
    Reading read() override;
    pwr::QVClockSource& getSource() override { return m_source; }

private:
    pwr::QVNanoClock m_source;
};

}    // namespace host
