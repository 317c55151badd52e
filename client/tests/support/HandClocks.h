#pragma once

#include "runtime/os/Clocks.h"

namespace test {

// Clocks that stand until they are set: 1000 ticks a second. For use with a DoorGuard.
class HandClocks : public pwr::os::Clocks {
public:
    unsigned long long performanceCounter() override { return ticks; }
    unsigned long long performanceFrequencyHz() override { return 1000; }
    unsigned long long systemTime100ns() override { return wallTime; }
    unsigned long long timeStampCounter() override { return ticks * 7; }

    unsigned long long ticks = 100;
    unsigned long long wallTime = 5000;
};

}    // namespace test
