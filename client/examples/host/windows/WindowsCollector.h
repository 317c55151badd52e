#pragma once

#include "collector/Collector.h"

namespace host {

// Collects from this Windows machine, by asking the system. Each kind has the category FIELD, with one value:
//
//   SYSTEM-TIMES  TOTAL   the times of all processors together
//   INTERFACES    BYTES   what each network interface has moved
//   PROCESSORS    KHZ     the frequency of each logical processor, as the power management tells it
//   PROCESSES     ALL     all processes
class WindowsCollector : public Collector {
public:
    explicit WindowsCollector(MachineClock& clock);
};

}    // namespace host
