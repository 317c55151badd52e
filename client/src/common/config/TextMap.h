#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace pwr {

struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};

// A hash map by text in which a piece of a line is looked up without a copy of it. Entries keep their place in memory.
template <typename T>
using TextMap = std::unordered_map<std::string, T, TextHash, std::equal_to<>>;

// The entry of a key, made where there is none.
template <typename T>
typename TextMap<T>::value_type& entryOf(TextMap<T>& map, std::string_view key)
{
    const auto found = map.find(key);
    return found != map.end() ? *found : *map.emplace(key, T()).first;
}

}    // namespace pwr
