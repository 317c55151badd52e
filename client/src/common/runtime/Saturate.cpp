#include "runtime/Saturate.h"

namespace pwr {

namespace {

bool isBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// 36 for what is no digit in any base.
unsigned int digitOf(char c)
{
    if (c >= '0' && c <= '9') return static_cast<unsigned int>(c - '0');
    if (c >= 'a' && c <= 'z') return static_cast<unsigned int>(c - 'a') + 10;
    if (c >= 'A' && c <= 'Z') return static_cast<unsigned int>(c - 'A') + 10;
    return 36;
}

// Skips "0x" before a hexadecimal digit where the base allows it, and settles base 0.
unsigned int settleBase(const char*& text, int base)
{
    const bool isHex =
        (base == 0 || base == 16) && text[0] == '0' && (text[1] == 'x' || text[1] == 'X') && digitOf(text[2]) < 16;
    if (isHex) {
        text += 2;
        return 16;
    }
    if (base == 0) return text[0] == '0' ? 8 : 10;
    return static_cast<unsigned int>(base);
}

}    // namespace

std::uint32_t parseUInt32(const char* text, int base)
{
    if (text == nullptr) return 0;
    while (isBlank(*text))
        ++text;
    const bool isNegative = *text == '-';
    if (*text == '-' || *text == '+') ++text;

    const unsigned int radix = settleBase(text, base);
    constexpr std::uint64_t largest = std::numeric_limits<std::uint32_t>::max();
    std::uint64_t value = 0;
    for (unsigned int digit = digitOf(*text); digit < radix; digit = digitOf(*++text)) {
        value = value * radix + digit;
        if (value > largest) return static_cast<std::uint32_t>(largest);
    }
    const std::uint32_t magnitude = static_cast<std::uint32_t>(value);
    return isNegative ? 0U - magnitude : magnitude;
}

}    // namespace pwr
