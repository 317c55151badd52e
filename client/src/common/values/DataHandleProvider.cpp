#include "values/DataHandleProvider.h"

#include "record/SystemMetadata.h"
#include "runtime/Log.h"
#include "values/EntityHandle.h"
#include "values/IdManager.h"

#include <memory>
#include <set>
#include <utility>
#include <vector>

namespace pwr {

int DataHandleProvider::initTopology(const SystemMetadata& system)
{
    return instance_i() != nullptr ? 0 : publish_i(system);
}

int DataHandleProvider::resetTopology(const SystemMetadata& system)
{
    return publish_i(system);
}

int DataHandleProvider::addStream(WriterStream* stream)
{
    IdManager* registry = IdManager::instanceIfAny();
    if (stream == nullptr || registry == nullptr || g_pluginEnvironment == nullptr) return 1;
    registry->announceAllTo(*stream);
    return 0;
}

DataHandleProvider* DataHandleProvider::instance_i()
{
    const IdManager* registry = IdManager::instanceIfAny();
    if (registry == nullptr || g_pluginEnvironment == nullptr) return nullptr;
    // An environment that was not the published one when its provider ended may still hold that one.
    auto* provider = static_cast<DataHandleProvider*>(g_pluginEnvironment->getTopologyManager());
    return provider == registry->getProvider() ? provider : nullptr;
}

int DataHandleProvider::publish_i(const SystemMetadata& system)
{
    IdManager* registry = IdManager::instanceIfAny();
    if (registry == nullptr || g_pluginEnvironment == nullptr) return 1;
    std::unique_ptr<DataHandleProvider> provider(new DataHandleProvider(system));
    g_pluginEnvironment->setTopologyManager(provider.get());    // a DataHandleProvider*, as it is cast back
    registry->setProvider(std::move(provider));
    return 0;
}

void DataHandleProvider::withdraw_i()
{
    if (instance_i() != nullptr) g_pluginEnvironment->setTopologyManager(nullptr);
}

DataHandleProvider::DataHandleProvider(const SystemMetadata& system)
{
    EntityHandle* root = EntityHandle::create("SYSTEM", nullptr);
    root->m_isSystem = true;
    m_system = root;
    m_cpu = EntityHandle::create("CPU", m_system);
    m_entityOfNode.emplace(-1, m_cpu);

    std::vector<const TNode*> packages;
    system.getCPUTopology().getAllPackages(packages);
    for (const TNode* package : packages)
        createEntities_i(*package);
    mapThreads_i(system);
}

// Depth first, a node before its children; a tree is at most 16 levels deep.
void DataHandleProvider::createEntities_i(const TNode& node)
{
    const EntityHandle* parent = entityOf_i(node.getParent());
    if (parent == nullptr) QV_LOG_WARNING("WARNING: Error processing topology\n");
    const std::string name = node.getName();
    QV_LOG_INFO("INFO: node name = %s\n", name.c_str());
    const EntityHandle* entity = EntityHandle::create(name, parent);
    m_entityOfNode.emplace(node.getUniqueID(), entity);    // a node without a number doesn't take the place of the CPU
    QV_LOG_INFO("INFO: NODE %p maps to ENTITY %p\n", static_cast<const void*>(&node), static_cast<const void*>(entity));
    for (const TNode* child : node)
        createEntities_i(*child);
}

void DataHandleProvider::mapThreads_i(const SystemMetadata& system)
{
    std::vector<const TNode*> threads;
    system.getCPUTopology().getAllNodesOfType(threads, top_node_type::THREAD);
    std::set<const EntityHandle*> counted;
    for (const TNode* thread : threads) {
        const EntityHandle* entity = entityOf_i(thread);
        if (entity == nullptr) {
            QV_LOG_WARNING("WARNING: Topology is broken");
            return;
        }
        const int logicalProcessor = thread->getID();
        constexpr auto THREAD = static_cast<std::size_t>(top_node_type::THREAD);
        m_cpuEntities[THREAD][logicalProcessor] = entity;
        ++m_counts[THREAD];

        const TNode* node = thread->getParent();
        for (entity = entity->getParent(); node != nullptr && entity != nullptr; entity = entity->getParent()) {
            const auto type = static_cast<std::size_t>(node->getType());
            if (type < TYPE_COUNT) {
                m_cpuEntities[type].emplace(logicalProcessor, entity);
                if (counted.insert(entity).second) ++m_counts[type];
            }
            node = node->getParent();
        }
    }
}

const EntityHandle* DataHandleProvider::entityOf_i(const TNode* node) const
{
    const auto found = m_entityOfNode.find(node != nullptr ? node->getUniqueID() : -1);
    return found != m_entityOfNode.end() ? found->second : nullptr;
}

const EntityHandle* DataHandleProvider::find_i(top_node_type type, int logicalProcessor) const
{
    const auto& entities = m_cpuEntities[static_cast<std::size_t>(type)];
    const auto found = entities.find(logicalProcessor);
    return found != entities.end() ? found->second : nullptr;
}

}    // namespace pwr
