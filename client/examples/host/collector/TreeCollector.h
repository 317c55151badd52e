#pragma once

#include "collector/Collector.h"
#include "machine/SystemTree.h"

namespace host {

// Collects from a machine that tells about itself by files: "SYSFS", "PROCFS" and "PROCESSES", see the
// operations beside this.
class TreeCollector : public Collector {
public:
    TreeCollector(const SystemTree& tree, MachineClock& clock);
};

}    // namespace host
