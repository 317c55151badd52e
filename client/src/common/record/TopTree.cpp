#include "record/TopTree.h"

#include "config/pw_utils.h"
#include "record/Serializer.h"
#include "runtime/Log.h"
#include "runtime/Saturate.h"

#include <algorithm>
#include <memory>
#include <unordered_map>

namespace pwr {

namespace {

constexpr std::int32_t END_MARK = -1;
constexpr int MAX_DEPTH = 16;
constexpr int NO_ID = -1;

const char* nameOf(top_node_type type)
{
    static constexpr std::array<const char*, 8> NAMES = {"NONE",   "Package", "Module", "Core",
                                                         "Thread", "SOC",     "Die",    "NULL"};
    return NAMES[std::min(static_cast<std::size_t>(type), NAMES.size() - 1)];
}

bool hasMap(top_node_type type)
{
    return type >= top_node_type::PACKAGE && type <= top_node_type::DIE;
}

long long childKey(long long parentKey, long long id)
{
    return static_cast<long long>(static_cast<unsigned long long>(parentKey) << 16) | id;
}

void dump(const TNode& node, int depth)
{
    for (int i = 0; i < depth; ++i) {
        QV_LOG_DEBUG(" ");
    }
    QV_LOG_DEBUG("%d [%d] (%s)\n", node.getID(), node.getUniqueID(), nameOf(node.getType()));
    for (const TNode* child : node) {
        dump(*child, depth + 1);
    }
}

void writeNode(Serializer& out, const TNode& node)
{
    out.write_value(std::int32_t{node.getID()});
    if (node.getID() >= 0) out.write_value(node.getType());
    for (const TNode* child : node) {
        writeNode(out, *child);
    }
    out.write_value(END_MARK);
}

using Copies = std::unordered_map<const TNode*, TNode*>;

void noteCopies(const TNode& original, TNode& copy, Copies& copies)
{
    copies.emplace(&original, &copy);
    auto child = copy.begin();
    for (const TNode* originalChild : original) {
        noteCopies(*originalChild, **child++, copies);
    }
}

void warnOfModuleAndDie()
{
    static bool s_isWarned = false;    // once in the life of the process
    if (s_isWarned) return;
    s_isWarned = true;
    QV_STREAM_WARNING_FOR("TopTree::buildTopology")
        << "Unknown topology has both a module AND a die ID -- choosing to report module ID only\n";
}

}    // namespace

TNode::TNode(int id, top_node_type type) : m_id(id), m_type(type) {}

TNode::TNode(const TNode& other) : TNode(other.m_id, other.m_type)
{
    m_uniqueId = other.m_uniqueId;
    m_children.reserve(other.m_children.size());
    for (const TNode* child : other.m_children) {
        m_children.push_back(new TNode(*child));
        m_children.back()->m_parent = this;
    }
}

// Keeps its own place: the parent stays.
TNode& TNode::operator=(const TNode& other)
{
    TNode copy(other);    // before anything goes: `other` may stand below this node
    m_id = copy.m_id;
    m_uniqueId = copy.m_uniqueId;
    m_type = copy.m_type;
    m_children.swap(copy.m_children);
    for (TNode* child : m_children) {
        child->m_parent = this;
    }
    return *this;
}

TNode::~TNode()
{
    while (!m_children.empty()) {
        delete m_children.back();
        m_children.pop_back();
    }
}

void TNode::setUniqueID(int& next)
{
    m_uniqueId = next++;
    for (TNode* child : m_children) {
        child->setUniqueID(next);
    }
}

std::string TNode::getName() const
{
    return std::string(nameOf(m_type)) + "_" + std::to_string(m_id);
}

std::string TNode::getFullyQualifiedName() const
{
    if (m_parent == nullptr) return getName();
    return m_parent->getFullyQualifiedName() + "/" + getName();
}

void TNode::addChild_i(TNode* child)
{
    if (child == nullptr) return;
    const auto place = std::lower_bound(m_children.begin(), m_children.end(), child->m_id,
                                        [](const TNode* node, int id) { return node->m_id < id; });
    m_children.insert(place, child);
    child->m_parent = this;
}

void TNode::getAllNodesOfType_i(std::vector<const TNode*>& out, const top_node_type& type) const
{
    if (m_type == type) {
        out.push_back(this);
        return;
    }
    for (const TNode* child : m_children) {
        child->getAllNodesOfType_i(out, type);
    }
}

struct TopTree::Group {
    int thread = NO_ID;
    int package = NO_ID;
    int core = NO_ID;
    int die = NO_ID;
    int module = NO_ID;
    bool hasModules = false;

    // False when fewer than four numbers are left.
    bool read(Tokenizer& tokens)
    {
        for (int* number : {&thread, &package, &core, &die}) {
            const char* token = tokens.get_next_token();
            if (token == nullptr) return false;
            *number = static_cast<int>(parseUInt32(token, 0));
        }
        return true;
    }

    // A system reports modules or dies, never both.
    void chooseModuleOrDie(unsigned long long coresPerModule)
    {
        hasModules = static_cast<std::uint32_t>(coresPerModule) != 0;
        module = moduleOf_i(core, coresPerModule);
        if (module < 0 || die < 0) return;
        die = NO_ID;
        warnOfModuleAndDie();
    }
};

// Reads node records until the bytes end or the nesting gets too deep.
class TopTree::Reader {
public:
    explicit Reader(Serializer& in) : m_in(in) {}

    // Null at an end mark and where the bytes end; a node of a type that has no map is the caller's to drop.
    std::unique_ptr<TNode> readNode(int depth = 1)
    {
        std::int32_t id = END_MARK;
        if (m_isEnded || m_in.read_value(id) == 0 || id == END_MARK) return nullptr;
        m_isEnded = depth > MAX_DEPTH;
        top_node_type type{};
        if (m_isEnded || m_in.read_value(type) == 0) return nullptr;
        auto node = std::make_unique<TNode>(id, type);
        readChildren_i(*node, depth + 1);
        return node;
    }

private:
    void readChildren_i(TNode& parent, int depth)
    {
        while (std::unique_ptr<TNode> child = readNode(depth)) {
            if (!hasMap(child->getType())) continue;
            child->m_parent = &parent;
            parent.m_children.push_back(child.get());
            child.release();
        }
        // Siblings with one id keep the order of the record, so that the numbers are those of the tree that was saved.
        const auto hasLowerId = [](const TNode* a, const TNode* b) { return a->m_id < b->m_id; };
        auto& children = parent.m_children;
        if (std::is_sorted(children.begin(), children.end(), hasLowerId)) return;
        std::stable_sort(children.begin(), children.end(), hasLowerId);
    }

    Serializer& m_in;
    bool m_isEnded = false;
};

TopTree::TopTree() = default;

TopTree::TopTree(const TopTree& other) : TopTree()
{
    Copies copies;
    Nodes& packages = nodes_i(top_node_type::PACKAGE);
    other.forEachRoot_i([&](long long key, const TNode& root) {
        auto copy = std::make_unique<TNode>(root);
        noteCopies(root, *copy, copies);
        packages[key] = copy.release();
    });
    for (std::size_t type = 0; type < TYPE_COUNT; ++type) {
        for (const auto& entry : other.m_nodes[type]) {
            TNode* node = entry.second == nullptr ? nullptr : copies.at(entry.second);
            m_nodes[type].emplace_hint(m_nodes[type].end(), entry.first, node);
        }
    }
}

TopTree& TopTree::operator=(const TopTree& other)
{
    TopTree copy(other);
    m_nodes.swap(copy.m_nodes);
    return *this;
}

TopTree::~TopTree()
{
    clear_i();
}

void TopTree::buildTopology(const std::string& text, unsigned long long coresPerModule)
{
    Tokenizer tokens(text, " ");
    Group group;
    while (group.read(tokens)) {
        addGroup_i(group, coresPerModule);
    }
    setUniqueID_i();
    QV_LOG_INFO("INFO: Dumping trees\n");
    dumpPackages();
}

// Only 32 bits of the count are looked at.
int TopTree::moduleOf_i(int coreId, unsigned long long coresPerModule)
{
    const int divisor = static_cast<int>(static_cast<std::uint32_t>(coresPerModule));
    return divisor == 0 ? NO_ID : coreId / divisor;
}

void TopTree::addGroup_i(Group group, unsigned long long coresPerModule)
{
    if (group.thread < 0 || group.package < 0 || group.core < 0) return;
    group.chooseModuleOrDie(coresPerModule);
    const long long packageKey = group.package;
    const long long moduleKey = childKey(packageKey, group.module);
    const long long dieKey = childKey(packageKey, group.die);
    const long long parentKey = group.die >= 0 ? dieKey : group.module >= 0 ? moduleKey : packageKey;
    const long long coreKey = childKey(parentKey, group.core);

    // Entries are made for what is not there too: a module or die entry may have no node.
    TNode*& package = nodes_i(top_node_type::PACKAGE)[packageKey];
    TNode*& module = nodes_i(top_node_type::MODULE)[moduleKey];
    TNode*& die = nodes_i(top_node_type::DIE)[dieKey];
    TNode*& core = nodes_i(top_node_type::CORE)[coreKey];
    TNode*& thread = nodes_i(top_node_type::THREAD)[childKey(coreKey, group.thread)];
    makeNode_i(package, group.package, top_node_type::PACKAGE, nullptr);
    if (group.hasModules) makeNode_i(module, group.module, top_node_type::MODULE, package);
    if (group.die >= 0) makeNode_i(die, group.die, top_node_type::DIE, package);
    makeNode_i(core, group.core, top_node_type::CORE, module != nullptr ? module : die != nullptr ? die : package);
    makeNode_i(thread, group.thread, top_node_type::THREAD, core);
}

void TopTree::makeNode_i(TNode*& entry, int id, top_node_type type, TNode* parent)
{
    if (entry != nullptr) return;
    entry = new TNode(id, type);
    if (parent != nullptr) parent->addChild_i(entry);
}

bool TopTree::addNode(int threadID, int coreID, int moduleID, int packageID)
{
    if (threadID < 0 || coreID < 0 || packageID < 0) return false;
    const std::pair<int, top_node_type> levels[] = {
        {packageID, top_node_type::PACKAGE},
        {moduleID, top_node_type::MODULE},
        {coreID, top_node_type::CORE},
        {threadID, top_node_type::THREAD},
    };
    TNode* parent = nullptr;
    for (const auto& [id, type] : levels) {
        if (id == NO_ID) {
            QV_LOG_DEBUG("DEBUG: addNode_i::ID is negative -- going to next level!\n");
            continue;
        }
        TNode* known = find_i(parent, id);
        parent = known != nullptr ? known : addNew_i(parent, id, type);
    }
    return true;
}

// A package for a null parent; else a child, of whatever type.
TNode* TopTree::find_i(const TNode* parent, int id) const
{
    if (parent == nullptr) {
        const Nodes& packages = m_nodes[static_cast<std::size_t>(top_node_type::PACKAGE)];
        const auto found = packages.find(id);
        return found != packages.end() && isRoot_i(found->second) ? found->second : nullptr;
    }
    const auto found = std::lower_bound(parent->begin(), parent->end(), id,
                                        [](const TNode* node, int wanted) { return node->getID() < wanted; });
    return found != parent->end() && (*found)->getID() == id ? *found : nullptr;
}

TNode* TopTree::addNew_i(TNode* parent, int id, top_node_type type)
{
    const std::uint32_t parentBits = parent == nullptr ? 0 : static_cast<std::uint32_t>(parent->getID()) << 16;
    const int key = static_cast<int>(parentBits | static_cast<std::uint32_t>(id));
    auto node = std::make_unique<TNode>(id, type);
    TNode*& entry = nodes_i(type)[key];
    if (parent != nullptr) parent->addChild_i(node.get());
    entry = node.release();
    return entry;
}

void TopTree::getAllPackages(std::vector<const TNode*>& out) const
{
    getAllNodesOfType(out, top_node_type::PACKAGE);
}

void TopTree::getAllModules(std::vector<const TNode*>& out) const
{
    getAllNodesOfType(out, top_node_type::MODULE);
}

void TopTree::getAllDies(std::vector<const TNode*>& out) const
{
    getAllNodesOfType(out, top_node_type::DIE);
}

void TopTree::getAllCores(std::vector<const TNode*>& out) const
{
    getAllNodesOfType(out, top_node_type::CORE);
}

void TopTree::getAllThreads(std::vector<const TNode*>& out) const
{
    getAllNodesOfType(out, top_node_type::THREAD);
}

void TopTree::getAllNodesOfType(std::vector<const TNode*>& out, top_node_type type) const
{
    if (!hasMap(type)) return;
    for (const auto& entry : m_nodes[static_cast<std::size_t>(type)]) {
        if (entry.second != nullptr) out.push_back(entry.second);
    }
}

std::size_t TopTree::getNumPackages() const
{
    return getNumNodesOfType(top_node_type::PACKAGE);
}

std::size_t TopTree::getNumModules() const
{
    return getNumNodesOfType(top_node_type::MODULE);
}

std::size_t TopTree::getNumDies() const
{
    return getNumNodesOfType(top_node_type::DIE);
}

std::size_t TopTree::getNumCores() const
{
    return getNumNodesOfType(top_node_type::CORE);
}

std::size_t TopTree::getNumThreads() const
{
    return getNumNodesOfType(top_node_type::THREAD);
}

std::size_t TopTree::getNumNodesOfType(top_node_type type) const
{
    if (!hasMap(type)) return 0;
    const Nodes& nodes = m_nodes[static_cast<std::size_t>(type)];
    const auto isThere = [](const auto& entry) { return entry.second != nullptr; };
    return static_cast<std::size_t>(std::count_if(nodes.begin(), nodes.end(), isThere));
}

void TopTree::serializeTree(Serializer& out) const
{
    std::size_t count = 0;
    forEachRoot_i([&](long long, const TNode&) { ++count; });
    std::size_t left = std::min(count, std::size_t{Serializer::MAX_COUNT});
    out.write_value(static_cast<std::uint16_t>(left));
    forEachRoot_i([&](long long, const TNode& root) {
        if (left == 0) return;
        writeNode(out, root);
        --left;
    });
}

void TopTree::deserializeTree(Serializer& in)
{
    std::uint16_t count = 0;
    if (in.read_value(count) == 0 || count == 0) return;
    clear_i();
    Reader reader(in);
    Nodes& packages = nodes_i(top_node_type::PACKAGE);
    for (; count > 0; --count) {
        std::unique_ptr<TNode> root = reader.readNode();
        if (!root || !hasMap(root->getType())) continue;
        TNode*& entry = packages[root->getID()];
        delete entry;    // of two packages with one id the later stays
        entry = root.release();
    }
    forEachRoot_i(
        [this](long long, const TNode& root) { indexChildren_i(root, static_cast<std::int16_t>(root.getID())); });
    setUniqueID_i();
}

// A node is entered behind those below it, as its record ends behind theirs. Of nodes with one key the last is the one
// in the index; but a package that stands below another node never takes the place of one without a parent.
void TopTree::indexChildren_i(const TNode& parent, long long key)
{
    for (TNode* child : parent) {
        indexChildren_i(*child, childKey(key, static_cast<std::int16_t>(child->getID())));
        Nodes& nodes = nodes_i(child->getType());
        TNode*& entry = nodes.try_emplace(nodes.end(), childKey(key, child->getID()), child)->second;
        if (!isRoot_i(entry)) entry = child;
    }
}

void TopTree::dumpPackages() const
{
    if (!isLogged(LogLevel::DEBUG_)) return;
    forEachRoot_i([](long long, const TNode& root) { dump(root, 0); });
}

template <typename Visit>
void TopTree::forEachRoot_i(Visit visit) const
{
    for (const auto& entry : m_nodes[static_cast<std::size_t>(top_node_type::PACKAGE)]) {
        if (isRoot_i(entry.second)) visit(entry.first, *entry.second);
    }
}

void TopTree::setUniqueID_i()
{
    int next = 0;
    for (const auto& entry : nodes_i(top_node_type::PACKAGE)) {
        if (isRoot_i(entry.second)) entry.second->setUniqueID(next);
    }
}

void TopTree::clear_i()
{
    Nodes& packages = nodes_i(top_node_type::PACKAGE);
    std::erase_if(packages, [](const auto& entry) { return !isRoot_i(entry.second); });
    for (const auto& entry : packages) {
        delete entry.second;
    }
    for (Nodes& nodes : m_nodes) {
        nodes.clear();
    }
}

}    // namespace pwr
