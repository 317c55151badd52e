#pragma once

#include <cstdint>
#include <limits>

namespace host {

// The counts of years fit; a file of nonsense must not wrap.

constexpr std::uint64_t saturatingMultiply(std::uint64_t a, std::uint64_t b)
{
    constexpr std::uint64_t MAX = std::numeric_limits<std::uint64_t>::max();
    return b != 0 && a > MAX / b ? MAX : a * b;
}

constexpr std::uint64_t saturatingAdd(std::uint64_t a, std::uint64_t b)
{
    constexpr std::uint64_t MAX = std::numeric_limits<std::uint64_t>::max();
    return a > MAX - b ? MAX : a + b;
}

}    // namespace host
