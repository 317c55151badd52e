#pragma once

#include <unordered_set>

namespace pwr {

// A sequence of different pointers in first-seen order, with an index beside it so that adding never searches it.
template <typename Sequence>
class UniqueSequence {
public:
    using Item = typename Sequence::value_type;

    UniqueSequence() = default;
    explicit UniqueSequence(const Sequence& items)
    {
        for (const Item item : items)
            add(item);
    }

    // False for an item that is there already.
    bool add(Item item)
    {
        if (!m_index.insert(item).second) return false;
        m_items.push_back(item);
        return true;
    }

    const Sequence& items() const { return m_items; }

private:
    Sequence m_items;
    std::unordered_set<Item> m_index;
};

}    // namespace pwr
