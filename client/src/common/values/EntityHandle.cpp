#include "values/EntityHandle.h"

#include "record/TopTree.h"
#include "runtime/Log.h"
#include "values/DataHandleProvider.h"
#include "values/Description.h"
#include "values/IdManager.h"

#include <memory>

namespace pwr {

namespace {

const DataHandleProvider* providerForHandle(const DataHandleProvider* provider)
{
    if (provider == nullptr) {
        QV_LOG_WARNING("WARNING: Cannot retrieve a CPU Entity handle until it has been initialized\n");
    }
    return provider;
}

}    // namespace

EntityHandle::EntityHandle(const Description& description) : DataHandle(DataHandleType::ENTITY, description) {}

EntityHandle* EntityHandle::create(const Description& description, const EntityHandle* parent)
{
    IdManager* registry = IdManager::instance();
    if (registry == nullptr) return nullptr;
    std::unique_ptr<EntityHandle> entity(new EntityHandle(description));
    // A parent is handed on as const, since it doesn't change for those who look at it: its children aren't shown.
    if (parent != nullptr) const_cast<EntityHandle*>(parent)->addChild(entity.get());
    return registry->add(std::move(entity));
}

EntityHandle* EntityHandle::create(const std::string& name, const EntityHandle* parent)
{
    return create(name, "", parent);
}

EntityHandle* EntityHandle::create(const std::string& name, const std::string& shortName, const EntityHandle* parent)
{
    return create(Description(name, shortName), parent);
}

int EntityHandle::addChild(EntityHandle* child)
{
    // Only an entity with children can stand above this one: making a new leaf costs no walk.
    const bool canBeAbove = child == this || !child->m_children.empty();
    for (const EntityHandle* above = canBeAbove ? this : nullptr; above != nullptr; above = above->m_parent) {
        if (above != child) continue;
        QV_LOG_WARNING("WARNING: Could not add relationship because cycle detected\n");
        return 1;
    }
    m_children.push_back(child);
    child->m_parent = this;
    return 0;
}

std::string EntityHandle::getQualifiedName() const
{
    std::string qualified = getName();
    for (const EntityHandle* above = m_parent; above != nullptr; above = above->m_parent) {
        if (above->m_isSystem || above->getName().empty()) break;
        qualified = above->getName() + "/" + qualified;
    }
    return qualified;
}

const EntityHandle* EntityHandle::getSystemHandle()
{
    const DataHandleProvider* provider = providerForHandle(DataHandleProvider::instance_i());
    return provider != nullptr ? provider->m_system : nullptr;
}

const EntityHandle* EntityHandle::getCPUEntityHandle(const TNode* node)
{
    const DataHandleProvider* provider = providerForHandle(DataHandleProvider::instance_i());
    return provider != nullptr ? provider->entityOf_i(node) : nullptr;
}

const EntityHandle* EntityHandle::getCPUHandle_i(top_node_type type, int logicalProcessor)
{
    const DataHandleProvider* provider = providerForHandle(DataHandleProvider::instance_i());
    return provider != nullptr ? provider->find_i(type, logicalProcessor) : nullptr;
}

const EntityHandle* EntityHandle::getCPUPackageHandle(int logicalProcessor)
{
    return getCPUHandle_i(top_node_type::PACKAGE, logicalProcessor);
}

const EntityHandle* EntityHandle::getCPUModuleHandle(int logicalProcessor)
{
    return getCPUHandle_i(top_node_type::MODULE, logicalProcessor);
}

const EntityHandle* EntityHandle::getCPUCoreHandle(int logicalProcessor)
{
    return getCPUHandle_i(top_node_type::CORE, logicalProcessor);
}

const EntityHandle* EntityHandle::getCPUThreadHandle(int logicalProcessor)
{
    return getCPUHandle_i(top_node_type::THREAD, logicalProcessor);
}

int EntityHandle::getCPUCount_i(top_node_type type)
{
    const DataHandleProvider* provider = DataHandleProvider::instance_i();
    if (provider == nullptr) {
        QV_LOG_WARNING("WARNING: Cannot retrieve a CPU Entity count until it has been initialized\n");
        return -1;
    }
    return provider->m_counts[static_cast<std::size_t>(type)];
}

int EntityHandle::getCPUPackageCount()
{
    return getCPUCount_i(top_node_type::PACKAGE);
}

int EntityHandle::getCPUModuleCount()
{
    return getCPUCount_i(top_node_type::MODULE);
}

int EntityHandle::getCPUCoreCount()
{
    return getCPUCount_i(top_node_type::CORE);
}

int EntityHandle::getCPUThreadCount()
{
    return getCPUCount_i(top_node_type::THREAD);
}

}    // namespace pwr
