#pragma once

#include "runtime/Export.h"
#include "values/AttributeManagers.h"
#include "values/DataHandle.h"

#include <cstdint>
#include <string>
#include <vector>

class QuorvaneHost;

namespace pwr {

class TNode;
enum class top_node_type : std::uint32_t;

// What a measurement is about: the system, a package, a core, a logical processor, or anything a plugin creates. The
// entities form a tree under "SYSTEM" and "CPU" that mirrors the measured processors. Owned by the registry.
//
//   const EntityHandle* core = EntityHandle::getCPUCoreHandle(3);    // the core of logical processor 3
//   EntityHandle* disk = EntityHandle::create("sda", EntityHandle::getSystemHandle());
class QUORVANE_API EntityHandle : public DataHandle, public AttributeValueManager {
public:
    // `parent` may be null: a root. Null, with a warning, without a registry.
    static EntityHandle* create(const Description& description, const EntityHandle* parent);
    static EntityHandle* create(const std::string& name, const EntityHandle* parent);
    static EntityHandle* create(const std::string& name, const std::string& shortName, const EntityHandle* parent);

    const EntityHandle* getParent() const { return m_parent; }

    // "CPU/Package_0/Core_0/Thread_0": up to the system entity, which is not named.
    std::string getQualifiedName() const override;

    // The entities of the measured processors. The argument is a logical processor number, whatever the level asked
    // for. Null when there is none; null with a warning before DataHandleProvider::initTopology.
    static const EntityHandle* getSystemHandle();
    static const EntityHandle* getCPUEntityHandle(const TNode* node);    // null gives "CPU"
    static const EntityHandle* getCPUPackageHandle(int logicalProcessor);
    static const EntityHandle* getCPUModuleHandle(int logicalProcessor);
    static const EntityHandle* getCPUCoreHandle(int logicalProcessor);
    static const EntityHandle* getCPUThreadHandle(int logicalProcessor);

    // Numbers of distinct entities; -1 with a warning before initTopology.
    static int getCPUPackageCount();
    static int getCPUModuleCount();
    static int getCPUCoreCount();
    static int getCPUThreadCount();

private:
    friend class ::QuorvaneHost;
    friend class DataHandleProvider;

    explicit EntityHandle(const Description& description);

    // Returns 0; 1 with a warning, and nothing changed, when `child` is this entity or one above it.
    int addChild(EntityHandle* child);

    static const EntityHandle* getCPUHandle_i(top_node_type type, int logicalProcessor);
    static int getCPUCount_i(top_node_type type);

    const EntityHandle* m_parent = nullptr;
    std::vector<EntityHandle*> m_children;    // not owned
    bool m_isSystem = false;                  // stays out of qualified names, also when the topology was read anew
};

}    // namespace pwr
