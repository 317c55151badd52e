#include "collector/TreeCollector.h"

#include "collector/HostRequirement.h"
#include "collector/TreeOperations.h"

namespace host {

TreeCollector::TreeCollector(const SystemTree& tree, MachineClock& clock)
    : Collector("quorvane-host-tree-collector", clock)
{
    offer_i(new SysfsOperation(tree), std::make_unique<PathRequirement>(tree, "/sys"));
    offer_i(new ProcfsOperation(tree), std::make_unique<PathRequirement>(tree, "/proc"));
    addUnavailableKinds_i();
}

}    // namespace host
