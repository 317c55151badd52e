#pragma once

#include "runtime/Export.h"

#include <cstddef>
#include <cstdint>
#include <map>

class WriterStream;

namespace pwr {

class EntityHandle;
class SystemMetadata;
class TNode;
enum class top_node_type : std::uint32_t;

// Mirrors the processors of the measured system as entities and connects the registry to the writer stream. There is
// one provider in the process, kept in the PluginEnvironment from initTopology() to UniqueId::destroy().
//
//   DataHandleProvider::initTopology(system);    // the record's topology is built
//   DataHandleProvider::addStream(stream);       // announces everything so far, then each new object
class QUORVANE_API DataHandleProvider {
public:
    // Makes the entities; does nothing when they exist. Returns 0; 1 without an environment or a registry.
    static int initTopology(const SystemMetadata& system);

    // Makes new entities from another record; the old ones stay in the registry. Returns 0; 1 as above.
    static int resetTopology(const SystemMetadata& system);

    // Announces all identified objects so far in one message, then stores the stream, so that later ones are announced
    // one by one. Returns 0; 1 for a null stream, and without an environment or a registry.
    static int addStream(WriterStream* stream);

private:
    friend class EntityHandle;
    friend class UniqueId;

    static constexpr std::size_t TYPE_COUNT = 7;    // node types from NONE to DIE

    explicit DataHandleProvider(const SystemMetadata& system);
    static DataHandleProvider* instance_i();    // null: none
    static int publish_i(const SystemMetadata& system);
    static void withdraw_i();    // the environment forgets the provider, which ends with the registry

    void createEntities_i(const TNode& node);
    void mapThreads_i(const SystemMetadata& system);
    const EntityHandle* entityOf_i(const TNode* node) const;    // null gives the CPU entity
    const EntityHandle* find_i(top_node_type type, int logicalProcessor) const;

    // By node type, then by logical processor number: what is above a thread has an entry for each of its threads.
    std::map<int, const EntityHandle*> m_cpuEntities[TYPE_COUNT];
    std::map<int, const EntityHandle*> m_entityOfNode;    // by the node's unique id; -1: the CPU entity
    int m_counts[TYPE_COUNT] = {};                        // distinct entities with a thread
    const EntityHandle* m_system = nullptr;
    const EntityHandle* m_cpu = nullptr;
};

}    // namespace pwr
