#pragma once

namespace pwr::os {

// The time sources of the machine.
class Clocks {
public:
    virtual ~Clocks() = default;

    // A steady counter and its frequency in Hz.
    virtual unsigned long long performanceCounter() = 0;
    virtual unsigned long long performanceFrequencyHz() = 0;

    // Wall clock in units of 100 ns since 1601-01-01 UTC.
    virtual unsigned long long systemTime100ns() = 0;

    // The processor's time stamp counter, in its ticks; 0 where the processor has none.
    virtual unsigned long long timeStampCounter() = 0;
};

Clocks& systemClocks();

// From 1601-01-01 to 1970-01-01, in units of 100 ns.
inline constexpr unsigned long long UNIX_EPOCH_100NS = 116444736000000000ULL;

}    // namespace pwr::os
