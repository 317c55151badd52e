#pragma once

#include <cstdint>
#include <string>

namespace pwr {

// Appends the UTF-8 bytes of a character, one of at most 21 bits.
inline void appendUtf8(std::string& text, std::uint32_t character)
{
    const auto last = [](std::uint32_t bits) { return static_cast<char>(0x80 | (bits & 0x3F)); };
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += {static_cast<char>(0xC0 | character >> 6), last(character)};
    } else if (character < 0x10000) {
        text += {static_cast<char>(0xE0 | character >> 12), last(character >> 6), last(character)};
    } else {
        text += {static_cast<char>(0xF0 | (character >> 18 & 0x07)), last(character >> 12), last(character >> 6),
                 last(character)};
    }
}

}    // namespace pwr
