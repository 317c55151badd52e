#include "features/PrintableName.h"

#include <cstddef>

namespace host {

namespace {

// The bytes of the character in front; 0 when there is none that can be printed.
std::size_t characterLength(std::string_view text)
{
    const auto byteAt = [text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char first = byteAt(0);
    if (first < 0x80) return first >= 0x20 && first != 0x7F ? 1 : 0;
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() < length) return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((byteAt(i) & 0xC0U) != 0x80) return 0;
    }
    // Longer than needed, a surrogate, or behind the last character; and the control characters from 0x80 on.
    const unsigned char second = byteAt(1);
    const bool isNone = (first == 0xE0 && second < 0xA0) || (first == 0xED && second >= 0xA0) ||
                        (first == 0xF0 && second < 0x90) || (first == 0xF4 && second >= 0x90) ||
                        (first == 0xC2 && second < 0xA0);
    return isNone ? 0 : length;
}

}    // namespace

std::string printableName(std::string_view bytes)
{
    std::string name;
    while (!bytes.empty()) {
        const std::size_t length = characterLength(bytes);
        name += length == 0 ? "?" : bytes.substr(0, length);
        bytes.remove_prefix(length == 0 ? 1 : length);
    }
    return name.empty() ? "unnamed" : name;
}

}    // namespace host
