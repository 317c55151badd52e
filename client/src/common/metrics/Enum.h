#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace pwr {

// The names of an enumeration's values, indexed by value. Each enumeration defines its table in its own source; tables
// are filled before any metric exists.
//
//   Enum<SampledValueAccumulator::Summary>::nameOf(Summary::MIN_MAX)    // "MIN-MAX"
template <typename T>
class Enum {
public:
    static std::size_t size() { return s_names.size(); }
    static const std::string& nameOf(T value) { return s_names[static_cast<std::size_t>(value)]; }

    // False, with `value` unchanged, for a name that is not in the table.
    static bool valueOf(const std::string& name, T& value)
    {
        for (std::size_t i = 0; i < s_names.size(); ++i) {
            if (s_names[i] != name) continue;
            value = static_cast<T>(i);
            return true;
        }
        return false;
    }

private:
    static const std::vector<std::string> s_names;
};

}    // namespace pwr
