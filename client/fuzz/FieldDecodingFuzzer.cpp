// Input: a character that chooses the separators, then a text as a collector configuration tells a register field.
// Invariant: no crash; a name is a part of the text; a field lies within the bits of its mask; a format that is read
// scales to a number between 0 and the raw value.

#include "record/FieldDecoding.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

void check(bool holds)
{
    if (!holds) std::abort();
}

void checkNames(const std::string& text, const std::string& separator)
{
    const std::string tagName = pwr::getCounterNameFromMsgTag(text);
    check(text.find(tagName) != std::string::npos && tagName.find('_') == std::string::npos);

    const std::string name = pwr::getCounterNameFromInitValue(text, separator, "-");
    check(text.find(name) != std::string::npos && (name.empty() || name.front() == '-'));

    const std::string ip = pwr::getIPNameFromInitValue(text, separator, "IP");
    check(ip.empty() || text.find(ip + "-IP") != std::string::npos);
    check(ip.find_first_of(separator.c_str()) == std::string::npos);
}

void checkMask(const std::string& text, const std::string& separator)
{
    pwr::isMaskValid(text, separator);
    const unsigned char msb = pwr::retrieveMsbFromMask(text);
    const unsigned char lsb = pwr::retrieveLsbFromMask(text);
    const unsigned long long field = pwr::extractBitRangeValue(~0ULL, msb, lsb);
    if (lsb > msb || msb > 63) return;    // the caller's mistake: any value
    const unsigned int width = msb - lsb + 1U;
    check(field == ~0ULL >> (64 - width));
}

void checkFormat(const std::string& text)
{
    const qv_qformat format = pwr::retrieveQFormat(text);
    check(format.type == 'U' || (format.type == 'S' && !text.empty()));
    const double value = pwr::convertToFloatPoint(~0ULL, format);
    check(value > 0 && value <= 18446744073709551616.0);
    check(format.type == 'U' || value == 18446744073709551616.0);
}

}    // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const char* separators[] = {":", "_", "-", ".:", "", ";"};
    if (size == 0) return 0;
    const std::string separator = separators[data[0] % 6];
    const std::string text(data + 1, data + size);
    checkNames(text, separator);
    checkMask(text, separator);
    checkFormat(text);
    return 0;
}
