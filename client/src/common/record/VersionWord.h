#pragma once

#include <cstdint>
#include <ostream>

namespace pwr {

// A version of the record as text: "first.second.third" in the stream's number base.
struct VersionWord {
    std::uint32_t word;
};

inline std::ostream& operator<<(std::ostream& out, const VersionWord& version)
{
    return out << (version.word >> 16) << "." << (version.word >> 8 & 0xFF) << "." << (version.word & 0xFF);
}

}    // namespace pwr
