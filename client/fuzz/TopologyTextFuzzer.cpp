// Input: eight bytes of cores per module, then the text of a topology. Invariant: no crash, no leak, and a tree that
// was saved and restored saves as the same bytes.

#include "record/Serializer.h"
#include "record/TopTree.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

std::vector<char> written(const pwr::TopTree& tree)
{
    pwr::Serializer out;
    tree.serializeTree(out);
    return out.get_buffer();
}

}    // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::uint64_t coresPerModule = 0;
    for (std::size_t i = 0; i < std::min(size, sizeof(coresPerModule)); ++i) {
        coresPerModule |= std::uint64_t{data[i]} << (8 * i);
    }
    const std::string text(data + std::min(size, sizeof(coresPerModule)), data + size);
    pwr::TopTree tree;
    tree.buildTopology(text, coresPerModule);
    if (static_cast<std::int32_t>(static_cast<std::uint32_t>(coresPerModule)) < 0) return 0;    // negative module ids

    pwr::Serializer in(written(tree));
    pwr::TopTree restored;
    restored.deserializeTree(in);
    if (written(restored) != written(tree)) std::abort();
    return 0;
}
