#pragma once

#include "record/Serializer.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

// How the fields of records go to the wire and come back: one pair of operations for every kind of field. Other kinds
// join by overloading both beside their records. Reading gives false where the bytes end or a text is empty.

namespace pwr {

template <typename T>
requires(std::is_arithmetic_v<T>) void putField(Serializer& out, const T& value)
{
    out.write_value(value);
}

template <typename T>
requires(std::is_arithmetic_v<T>) bool getField(Serializer& in, T& value)
{
    return in.read_value(value) != 0;
}

inline void putField(Serializer& out, const std::string& text)
{
    out.write_text(text);
}

// Appends to `text`.
inline bool getField(Serializer& in, std::string& text)
{
    return in.read_text(text) != 0;
}

inline void putField(Serializer& out, const std::pair<std::string, std::string>& pair)
{
    out.write_text(pair.first);
    out.write_text(pair.second);
}

inline bool getField(Serializer& in, std::pair<std::string, std::string>& pair)
{
    return in.read_text(pair.first) != 0 && in.read_text(pair.second) != 0;
}

// The count and as many elements of any container; what is above the largest count is left out.
template <typename List, typename Put>
void putList(Serializer& out, const List& list, Put put)
{
    std::size_t left = std::min(list.size(), Serializer::MAX_COUNT);
    out.write_value(static_cast<std::uint16_t>(left));
    for (auto element = list.begin(); left > 0; ++element, --left) {
        put(out, *element);
    }
}

template <typename List>
void putField(Serializer& out, const List& list) requires requires
{
    list.size();
}
{
    putList(out, list, [](Serializer& to, const auto& element) { putField(to, element); });
}

// A count of 0 leaves the list; any other gives it that many elements, those that are there before being read upon.
// The list grows as elements arrive, whatever the count claims; on failure the elements that arrived whole stay.
template <typename T>
bool getElements(Serializer& in, std::vector<T>& list, std::uint16_t count)
{
    if (count == 0) return true;
    if (list.size() > count) list.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        if (i == list.size()) list.emplace_back();
        if (!getField(in, list[i])) {
            list.resize(i);
            return false;
        }
    }
    return true;
}

template <typename T>
bool getField(Serializer& in, std::vector<T>& list)
{
    std::uint16_t count = 0;
    return getField(in, count) && getElements(in, list, count);
}

inline bool getField(Serializer& in, std::set<std::string>& texts)
{
    std::uint16_t count = 0;
    if (!getField(in, count)) return false;
    for (; count > 0; --count) {
        std::string text;
        if (!getField(in, text)) return false;
        texts.insert(texts.end(), std::move(text));    // saved in ascending order
    }
    return true;
}

}    // namespace pwr
