#include "runtime/OsInfo.h"

#include "runtime/Utf8.h"
#include "runtime/os/Os.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <new>
#include <sstream>
#include <stdexcept>

namespace {

bool isCharacter(std::uint32_t unit)
{
    const bool isSurrogate = unit >= 0xD800 && unit <= 0xDFFF;
    return !isSurrogate && unit <= 0x10FFFF;
}

}    // namespace

void* safeMalloc(unsigned int size)
{
    void* block = pwr::os::current().memory->allocate(size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

std::string doubleToString(double value, int precision)
{
    // A double has no more digits than these; the stream would want room for all that are asked for at once.
    constexpr int mostDigits = 1074;
    std::ostringstream text;
    text << std::fixed << std::setprecision(std::min(precision, mostDigits)) << value;
    if (precision > mostDigits && std::isfinite(value)) {
        return text.str().append(static_cast<std::size_t>(precision - mostDigits), '0');
    }
    return text.str();
}

std::wstring stringToWstring(const std::string& text)
{
    std::wstring wide(text.size(), L'\0');
    std::transform(text.begin(), text.end(), wide.begin(), [](char unit) {
        return static_cast<wchar_t>(static_cast<std::uint16_t>(static_cast<signed char>(unit)));
    });
    return wide;
}

std::string wStringToString(const std::wstring& text)
{
    std::string narrow;
    narrow.reserve(text.size());
    for (const wchar_t unit : text) {
        const auto character = static_cast<std::uint32_t>(unit);
        if (!isCharacter(character)) throw std::range_error("bad conversion");
        pwr::appendUtf8(narrow, character);
    }
    return narrow;
}
