#pragma once

#include <cstdint>

namespace pwr {

// What a Data holds. The order of the numbers matters: values of different types compare by it, and the numeric types
// are INT to REAL_RANGE.
enum class DataType : std::uint8_t {
    NONE = 0,
    INT = 1,          // signed 64-bit
    UINT = 2,         // unsigned 64-bit
    REAL = 3,         // double
    INT_RANGE = 4,    // pairs of the above
    UINT_RANGE = 5,
    REAL_RANGE = 6,
    HANDLE = 7,    // the UniqueId number of a DataHandle
    STRING = 8,
};

}    // namespace pwr
