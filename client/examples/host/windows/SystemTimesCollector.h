#pragma once

#include "collector/Collector.h"

namespace host {

// Collects from this Windows machine: "SYSTEM-TIMES", the times of all processors together. Its category FIELD is
// TOTAL.
class SystemTimesCollector : public Collector {
public:
    explicit SystemTimesCollector(MachineClock& clock);
};

}    // namespace host
