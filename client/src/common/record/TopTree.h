#pragma once

#include "runtime/Export.h"

#include <array>
#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

// A change as the driver reports it. The layout is the driver's: fields from byte 0 in this order.
struct qv_driver_topology_change {
    std::uint64_t timestamp;    // ticks
    std::uint32_t type;         // cpu_action
    std::uint16_t cpu;
    std::uint16_t core;
    std::uint16_t package;
};

namespace pwr {

using ::qv_driver_topology_change;

class Serializer;

enum class top_node_type : std::uint32_t {
    NONE = 0,
    PACKAGE = 1,
    MODULE = 2,
    CORE = 3,
    THREAD = 4,
    SOC = 5,
    DIE = 6,
    NULL_NODE = 7,
};

// A package, module, die, core or hardware thread of the measured system. A node owns its children, which stand in
// ascending order of their ids. A copy is deep and has no parent.
class QUORVANE_API TNode {
public:
    using const_iterator = std::vector<TNode*>::const_iterator;

    TNode(int id, top_node_type type);
    TNode(const TNode& other);
    TNode& operator=(const TNode& other);
    ~TNode();

    int getID() const { return m_id; }                // the system's number, unique among siblings only
    int getUniqueID() const { return m_uniqueId; }    // unique in the tree; -1 until numbered
    top_node_type getType() const { return m_type; }
    const TNode* getParent() const { return m_parent; }    // null for a package
    const_iterator begin() const { return m_children.begin(); }
    const_iterator end() const { return m_children.end(); }

    // Numbers this node and then those below it, depth first; `next` ends behind the last number.
    void setUniqueID(int& next);

    std::string getName() const;                  // "Core_3"
    std::string getFullyQualifiedName() const;    // "Package_0/Core_3"

private:
    friend class TopTree;

    void addChild_i(TNode* child);    // takes ownership; null is ignored
    void getAllNodesOfType_i(std::vector<const TNode*>& out, const top_node_type& type) const;

    int m_id;
    int m_uniqueId = -1;
    top_node_type m_type;
    std::vector<TNode*> m_children;    // owned; ascending by id
    TNode* m_parent = nullptr;
};

// The processors of the measured system as a forest, one tree per package: packages, modules or dies, cores, threads.
// Built from a collector's text or restored from a saved record; part of SystemMetadata. Copies are deep. One thread at
// a time.
//
//   TopTree tree;
//   tree.buildTopology("0 0 0 -1 1 0 0 -1", 0);    // two threads of core 0 of package 0
//   tree.getNumThreads();                          // 2
class QUORVANE_API TopTree {
public:
    TopTree();
    TopTree(const TopTree& other);
    TopTree& operator=(const TopTree& other);
    ~TopTree();

    // Adds groups of four numbers separated by blanks (thread id, package id, core id, die id; "0x" is hexadecimal, -1
    // is none) and numbers the tree. With `coresPerModule` cores stand in modules and die ids are dropped. Groups that
    // are known change nothing; an incomplete last group and groups with a negative package, core or thread id are
    // skipped. Only the low 32 bits of `coresPerModule` count; 0 is no modules.
    void buildTopology(const std::string& text, unsigned long long coresPerModule);

    // Adds one thread with what is above it; a module id of -1 is none. At each level a node with that id is taken for
    // the one wanted, whatever its type. False, with nothing added, when another id is negative. Numbers nothing.
    bool addNode(int threadID, int coreID, int moduleID, int packageID);

    // Append the nodes of a type, in the order of their keys (package first). The nodes stay the tree's.
    void getAllPackages(std::vector<const TNode*>& out) const;
    void getAllModules(std::vector<const TNode*>& out) const;
    void getAllDies(std::vector<const TNode*>& out) const;
    void getAllCores(std::vector<const TNode*>& out) const;
    void getAllThreads(std::vector<const TNode*>& out) const;
    void getAllNodesOfType(std::vector<const TNode*>& out, top_node_type type) const;

    std::size_t getNumPackages() const;
    std::size_t getNumModules() const;
    std::size_t getNumDies() const;
    std::size_t getNumCores() const;
    std::size_t getNumThreads() const;
    std::size_t getNumNodesOfType(top_node_type type) const;

    // The saved form: a 16-bit count of packages, then node records. Reading replaces what is there, but for a record
    // without a count or with a count of 0, which changes nothing; a short record ends the tree where the bytes end, a
    // node of an unknown type is dropped with what is below it, nesting ends at 16 levels.
    void serializeTree(Serializer& out) const;
    void deserializeTree(Serializer& in);

    void dumpPackages() const;    // to the log, at debug level

private:
    friend class TopologyChange;

    using Nodes = std::map<long long, TNode*>;
    static constexpr std::size_t TYPE_COUNT = 7;

    struct Group;
    class Reader;

    static bool isRoot_i(const TNode* package) { return package != nullptr && package->m_parent == nullptr; }
    static int moduleOf_i(int coreId, unsigned long long coresPerModule);    // -1: none
    void addGroup_i(Group group, unsigned long long coresPerModule);
    static void makeNode_i(TNode*& entry, int id, top_node_type type, TNode* parent);
    TNode* find_i(const TNode* parent, int id) const;
    TNode* addNew_i(TNode* parent, int id, top_node_type type);
    void indexChildren_i(const TNode& parent, long long key);
    template <typename Visit>
    void forEachRoot_i(Visit visit) const;
    Nodes& nodes_i(top_node_type type) { return m_nodes[static_cast<std::size_t>(type)]; }
    void setUniqueID_i();
    void clear_i();

    // By type and key; an entry may have no node. Key order is the order of every walk. The tree owns the packages that
    // have no parent; all else is owned by its parent, and the maps are indexes.
    std::array<Nodes, TYPE_COUNT> m_nodes;
};

enum class cpu_action : std::uint32_t { NOP = 0, OFFLINE = 1, ONLINE_PREPARE = 2, ONLINE = 3 };

// A logical processor that went on or off line during the run. A plain value.
class QUORVANE_API TopologyChange {
public:
    TopologyChange();    // all zero, module -1, "NOP"
    TopologyChange(const qv_driver_topology_change& change, unsigned long long coresPerModule);

    unsigned long long getTimestamp() const { return m_timestamp; }    // ticks
    cpu_action getActionType() const { return m_action; }
    const std::string& getActionName() const { return m_actionName; }
    std::uint16_t getLogicalProcessorID() const { return m_logicalProcessorId; }
    std::uint16_t getCoreID() const { return m_coreId; }
    int getModuleID() const { return m_moduleId; }    // -1: unknown
    std::uint16_t getPackageID() const { return m_packageId; }
    void resetTimestamp(unsigned long long timestamp);

    // 22 bytes. Reading returns 0; or -1 with a warning that names the first field missing, those before it are set.
    void serialize(Serializer& out) const;
    int deserialize(Serializer& in);

private:
    unsigned long long m_timestamp = 0;
    cpu_action m_action = cpu_action::NOP;
    std::uint16_t m_logicalProcessorId = 0;
    std::uint16_t m_coreId = 0;
    std::uint16_t m_packageId = 0;
    int m_moduleId = -1;
    std::string m_actionName;
};

QUORVANE_API std::ostream& operator<<(std::ostream& out, const TopologyChange& change);

}    // namespace pwr
