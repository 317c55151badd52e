#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

// The library's one way from a double to an integer, and from text to a 32-bit number: the same result on every system,
// whatever the width of its `unsigned long`.

namespace pwr {

// Truncates towards zero; what does not fit becomes the nearest end of the range, NaN becomes 0.
template <typename Integer>
constexpr Integer saturate(double value)
{
    // The largest value converts to the power of two above it, which is itself out of range.
    constexpr double high = static_cast<double>(std::numeric_limits<Integer>::max());
    constexpr double low = static_cast<double>(std::numeric_limits<Integer>::min());
    if (value != value) return 0;
    if (value >= high) return std::numeric_limits<Integer>::max();
    if (value <= low) return std::numeric_limits<Integer>::min();
    return static_cast<Integer>(value);
}

// strtoul as where `unsigned long` has 32 bits: a minus sign negates modulo 2^32, what does not fit gives 0xFFFFFFFF,
// conversion stops at the first character that does not fit, no digits give 0. `base` is 0, 10 or 16.
std::uint32_t parseUInt32(const char* text, int base);

}    // namespace pwr
