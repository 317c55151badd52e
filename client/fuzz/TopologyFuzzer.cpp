// Input: a saved topology. Invariant: no read past the end, no leak, copies are whole, and every node that a walk
// reaches hangs in the tree.

#include "record/Serializer.h"
#include "record/TopTree.h"

#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

std::vector<char> written(const pwr::TopTree& tree)
{
    pwr::Serializer out;
    tree.serializeTree(out);
    return out.get_buffer();
}

void check(const pwr::TopTree& tree)
{
    for (unsigned type = 0; type < 8; ++type) {
        std::vector<const pwr::TNode*> nodes;
        tree.getAllNodesOfType(nodes, pwr::top_node_type{type});
        if (nodes.size() != tree.getNumNodesOfType(pwr::top_node_type{type})) std::abort();
        for (const pwr::TNode* node : nodes) {
            if (node->getUniqueID() < 0) std::abort();
        }
    }
}

}    // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    pwr::Serializer in(std::vector<char>(data, data + size));
    pwr::TopTree tree;
    tree.deserializeTree(in);
    check(tree);
    pwr::TopTree copy(tree);
    if (written(copy) != written(tree)) std::abort();
    copy.addNode(1, 2, 3, 0);
    copy.buildTopology("0 0 0 0 1 0 1 0", 0);
    check(copy);
    tree = copy;
    check(tree);
    return 0;
}
