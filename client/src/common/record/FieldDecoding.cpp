#include "record/FieldDecoding.h"

#include "config/pw_utils.h"
#include "runtime/Log.h"

#include <bit>
#include <locale>
#include <sstream>
#include <vector>

namespace pwr {

namespace {

// Unlike a number of the configuration language: only "0x" makes it hexadecimal, and what can't be read is told.
std::uint32_t readNumber(const std::string& text)
{
    const bool isHex = text.starts_with("0x") || text.starts_with("0X");
    std::istringstream in(text);
    in.imbue(std::locale::classic());
    std::uint32_t number = 0;
    in >> (isHex ? std::hex : std::dec) >> number;
    if (!in.fail()) return number;
    QV_STREAM_WARNING << "Failed to extract numeric value of " << text;
    return 0;
}

// The low 8 bits of the number.
std::uint8_t readByte(const std::string& text)
{
    return static_cast<std::uint8_t>(readNumber(text) & 0xFF);
}

std::uint8_t bitOfMask(const std::string& mask, std::size_t part)
{
    const Tokenizer tokenizer(mask, ":");
    const std::vector<std::string>& parts = tokenizer.get_all_tokens();
    return parts.size() == 2 ? readByte(parts[part]) : std::uint8_t{0};
}

bool isFormatType(char type)
{
    return type == 'U' || type == 'S';
}

// 2 to the power of -`bits`, put together from its exponent: 1023 stands for 0.
double fractionUnit(std::uint8_t bits)
{
    return std::bit_cast<double>((std::uint64_t{1023} - bits) << 52);
}

// Apart from the conversion, which is a hot path.
[[gnu::noinline, gnu::cold]] void complainOfType(const qv_qformat& format)
{
    if (format.type == 'S') {
        QV_LOG_ERROR("ERROR: Signed Qformat is currently not supported");
        return;
    }
    QV_LOG_ERROR("ERROR: Invalid DATA-FORMAT entry. %c%d.%d is invalid. Format expected as UX.Y or SX.Y", format.type,
                 format.integerBits, format.fractionBits);
}

}    // namespace

std::string getFormatedPCIBDF(_qv_pmt_pci_location location)
{
    const unsigned int bus = location.value & 0xFF;
    const unsigned int device = location.value >> 8 & 0x1F;
    const unsigned int function = location.value >> 13 & 0x7;
    return std::to_string(bus) + ":" + std::to_string(device) + ":" + std::to_string(function);
}

std::string getCounterNameFromMsgTag(const std::string& tag)
{
    Tokenizer tokens(tag.c_str(), "_");    // the tag ends at its first NUL
    tokens.get_next_token();
    return tokens.str_get_next_token();
}

std::string getCounterNameFromInitValue(const std::string& text, std::string endMarker, std::string startMarker)
{
    const std::size_t begin = text.find(startMarker);
    if (begin == std::string::npos) return "";
    const std::size_t end = text.find(endMarker, begin + 1);
    if (end == std::string::npos) return "";
    return text.substr(begin, end - begin);
}

std::string getIPNameFromInitValue(const std::string& text, std::string separators, std::string suffix)
{
    const Tokenizer tokenizer(text, separators.c_str());
    const std::vector<std::string>& parts = tokenizer.get_all_tokens();
    if (parts.size() != 3) return "";
    const std::size_t end = parts[1].find("-" + suffix);
    return end != std::string::npos ? parts[1].substr(0, end) : "";
}

bool isMaskValid(const std::string& text, std::string separators)
{
    const Tokenizer tokenizer(text, separators.c_str());
    const std::vector<std::string>& parts = tokenizer.get_all_tokens();
    return parts.size() == 2 && isNumber(parts[0]) && isNumber(parts[1]);
}

unsigned char retrieveLsbFromMask(const std::string& mask)
{
    return bitOfMask(mask, 1);
}

unsigned char retrieveMsbFromMask(const std::string& mask)
{
    return bitOfMask(mask, 0);
}

const qv_qformat retrieveQFormat(const std::string& text)
{
    const Tokenizer tokenizer(text, ".");
    const std::vector<std::string>& parts = tokenizer.get_all_tokens();
    if (parts.size() == 2 && isFormatType(parts[0].front())) {
        return {parts[0].front(), readByte(parts[0].substr(1)), readByte(parts[1])};
    }
    QV_LOG_ERROR("ERROR: Invalid DATA-FORMAT entry. %s is invalid. Format expected as UX.Y or SX.Y", text.c_str());
    return {};
}

// These two run for every sample. Each fits one cache line and starts on it, so that its speed does not hang on what
// stands before it.
[[gnu::aligned(64)]] unsigned long long extractBitRangeValue(unsigned long long value, unsigned char msb,
                                                             unsigned char lsb)
{
    const unsigned long long shifted = value >> (lsb & 63);
    if (msb == 63) return shifted;
    return shifted & ((1ULL << ((msb - lsb + 1) & 63)) - 1);
}

[[gnu::aligned(64)]] double convertToFloatPoint(unsigned long long raw, const qv_qformat& format)
{
    const double number = static_cast<double>(raw);
    if (format.type == 'U') return number * fractionUnit(format.fractionBits);
    complainOfType(format);
    return number;
}

}    // namespace pwr
