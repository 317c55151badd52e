#include "collector/TreeCollector.h"

#include "collector/HostRequirement.h"
#include "collector/ProcessesOperation.h"
#include "collector/ProcfsOperation.h"
#include "collector/SysfsOperation.h"

namespace host {

TreeCollector::TreeCollector(const SystemTree& tree, MachineClock& clock)
    : Collector("quorvane-host-tree-collector", clock)
{
    offer_i(new SysfsOperation(tree), std::make_unique<PathRequirement>(tree, "/sys"));
    offer_i(new ProcfsOperation(tree), std::make_unique<PathRequirement>(tree, "/proc"));
    offer_i(new ProcessesOperation(tree), std::make_unique<PathRequirement>(tree, "/proc"));
    addUnavailableKinds_i();
}

}    // namespace host
