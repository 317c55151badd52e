#include "record/Serializer.h"
#include "record/TopTree.h"
#include "runtime/Log.h"

namespace pwr {

namespace {

const char* nameOf(cpu_action action)
{
    switch (action) {
    case cpu_action::OFFLINE:
        return "OFFLINE";
    case cpu_action::ONLINE_PREPARE:
        return "ONLINE PREPARE";
    case cpu_action::ONLINE:
        return "ONLINE";
    case cpu_action::NOP:
        break;
    }
    return "NOP";
}

}    // namespace

TopologyChange::TopologyChange() : m_actionName(nameOf(m_action)) {}

TopologyChange::TopologyChange(const qv_driver_topology_change& change, unsigned long long coresPerModule)
    : m_timestamp(change.timestamp), m_action(static_cast<cpu_action>(change.type)), m_logicalProcessorId(change.cpu),
      m_coreId(change.core), m_packageId(change.package), m_moduleId(TopTree::moduleOf_i(change.core, coresPerModule)),
      m_actionName(nameOf(m_action))
{
}

void TopologyChange::resetTimestamp(unsigned long long timestamp)
{
    m_timestamp = timestamp;
}

void TopologyChange::serialize(Serializer& out) const
{
    out.write_value(m_timestamp);
    out.write_value(m_action);
    out.write_value(m_logicalProcessorId);
    out.write_value(m_coreId);
    out.write_value(m_packageId);
    out.write_value(m_moduleId);
}

int TopologyChange::deserialize(Serializer& in)
{
    const char* missing = nullptr;
    const auto read = [&](auto& field, const char* what) {
        if (missing == nullptr && in.read_value(field) == 0) missing = what;
    };
    read(m_timestamp, "timestamp");
    read(m_action, "type");
    m_actionName = nameOf(m_action);
    read(m_logicalProcessorId, "cpu id");
    read(m_coreId, "core id");
    read(m_packageId, "pkg id");
    read(m_moduleId, "module id");
    if (missing == nullptr) return 0;
    QV_LOG_WARNING("WARNING: couldn't extract %s for topology change!\n", missing);
    QV_LOG_WARNING("WARNING: error extracting topology changes!\n");
    return -1;
}

std::ostream& operator<<(std::ostream& out, const TopologyChange& change)
{
    out << "Top Change:" << std::endl;
    out << "\ttsc = " << change.getTimestamp() << std::endl;
    out << "\ttype = " << change.getActionName() << std::endl;
    out << "\tlogicalProcID = " << change.getLogicalProcessorID() << std::endl;
    out << "\tcoreID = " << change.getCoreID() << std::endl;
    out << "\tmoduleID = " << change.getModuleID() << std::endl;
    return out << "\tpkgID = " << change.getPackageID() << std::endl;
}

}    // namespace pwr
