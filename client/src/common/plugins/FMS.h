#pragma once

#include "runtime/Export.h"

#include <cstdint>
#include <ostream>

namespace pwr {

// Family, model and stepping of a processor. A stepping of 0 matches any.
struct FMS {
    std::uint8_t family = 0;
    std::uint8_t model = 0;
    std::uint8_t stepping = 0;

    QUORVANE_API bool operator==(const FMS& other) const;
};

// "0x6.0x8e.0x9"; leaves the stream in decimal mode.
QUORVANE_API std::ostream& operator<<(std::ostream& out, const FMS& fms);

}    // namespace pwr
