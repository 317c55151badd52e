#include "config/Specifier.h"

#include "config/Parser.h"
#include "config/pw_utils.h"
#include "runtime/Log.h"
#include "runtime/Saturate.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

namespace pwr {

namespace {

enum Match { NONE = 0, PARTIAL = 1, EXACT = 2 };

// Moves behind `literal`; false when the text goes on otherwise.
bool skipText(std::string_view& text, std::string_view literal)
{
    if (!text.starts_with(literal)) return false;
    text.remove_prefix(literal.size());
    return true;
}

// What scanf reads for %x: blanks, a sign and one more "0x" may stand before the digits. A number above 32 bits is the
// largest one, on every system.
bool takeHex(std::string_view& text, std::uint32_t& number)
{
    constexpr std::string_view BLANKS = " \t\n\v\f\r";
    constexpr std::string_view HEX_DIGITS = "0123456789abcdefABCDEF";
    const std::size_t begin = text.find_first_not_of(BLANKS);
    if (begin == std::string_view::npos) return false;
    std::string_view digits = text.substr(begin);
    const bool isNegative = digits.starts_with('-');
    if (isNegative || digits.starts_with('+')) digits.remove_prefix(1);
    if (digits.starts_with("0x") || digits.starts_with("0X")) digits.remove_prefix(2);

    const std::size_t end = std::min(digits.find_first_not_of(HEX_DIGITS), digits.size());
    if (end == 0) return false;
    number = parseUInt32(((isNegative ? "-" : "") + std::string(digits.substr(0, end))).c_str(), 16);
    text = digits.substr(end);
    return true;
}

// Cut to 8 bits; false for a text that is no number.
bool takeByte(const std::string& text, std::uint8_t& number)
{
    if (!isNumber(text)) return false;
    number = static_cast<std::uint8_t>(extract_number_i(text) & 0xFF);
    return true;
}

}    // namespace

Specifier::Specifier(const std::string& name) : m_name(name) {}

Specifier::~Specifier() = default;

int Specifier::is_match(const std::string& name, const std::string& value) const
{
    QV_LOG_INFO_FOR(Parser::LOG_TAG, "INFO: Specifier::is_match(): m_name:%s, name:%s\n", m_name.c_str(), name.c_str());
    return name == m_name ? is_match_i(value) : NONE;
}

ValueSpecifier::ValueSpecifier(const std::string& name, const std::string& value) : Specifier(name), m_value(value) {}

std::string ValueSpecifier::toString() const
{
    return m_name + "=" + m_value;
}

int ValueSpecifier::is_match_i(const std::string& value) const
{
    QV_LOG_INFO("INFO: ValueSpecifier::is_match_i:m_value:%s, str:%s\n", m_value.c_str(), value.c_str());
    return value == m_value ? EXACT : NONE;
}

RangeSpecifier::RangeSpecifier(const std::string& name, std::uint32_t first, std::uint32_t second)
    : Specifier(name), m_range(first, second)
{
}

std::string RangeSpecifier::toString() const
{
    return m_name + "=" + std::to_string(m_range.first) + "," + std::to_string(m_range.second);
}

int RangeSpecifier::is_match_i(const std::string& value) const
{
    QV_LOG_DEBUG("DEBUG: RangeSpecifier::is_match_i:str:%s\n", value.c_str());
    if (!isNumber(value)) {
        QV_STREAM_ERROR << "ERROR: range specifier MUST be a number!";
        return NONE;
    }
    const unsigned long number = extract_number_i(value);
    QV_LOG_DEBUG("DEBUG: Extracted value:%llu, m_range.first:%llu, m_range.second:%llu \n",
                 static_cast<unsigned long long>(number), static_cast<unsigned long long>(m_range.first),
                 static_cast<unsigned long long>(m_range.second));
    return m_range.first <= number && number <= m_range.second ? EXACT : NONE;
}

FMSSpecifier::FMSSpecifier(std::uint8_t family, std::uint8_t model, std::uint8_t stepping)
    : Specifier("FMS"), m_family(family), m_model(model), m_stepping(stepping)
{
}

std::string FMSSpecifier::toString() const
{
    const std::string stepping = m_stepping != 0 ? "." + std::to_string(m_stepping) : "";
    return m_name + "=" + std::to_string(m_family) + "." + std::to_string(m_model) + stepping;
}

int FMSSpecifier::is_match_i(const std::string& value) const
{
    QV_LOG_DEBUG("DEBUG: FMSSpecifier:: is_match_i:str:%s\n", value.c_str());
    QV_LOG_DEBUG("DEBUG: m_family:%d, m_model:%d, m_stepping:%d\n", m_family, m_model, m_stepping);
    std::uint8_t family = 0;
    std::uint8_t model = 0;
    std::uint8_t stepping = 0;
    if (extract_fms_i(family, model, stepping, value) != 0) return NONE;
    if (family != m_family || model != m_model) return NONE;
    if (stepping == m_stepping) return EXACT;
    return stepping == 0 || m_stepping == 0 ? PARTIAL : NONE;
}

int FMSSpecifier::extract_fms_i(std::uint8_t& family, std::uint8_t& model, std::uint8_t& stepping,
                                const std::string& text)
{
    const std::size_t firstDot = text.find('.');
    if (firstDot == std::string::npos) return -1;
    const std::string familyText = text.substr(0, firstDot);
    const std::size_t secondDot = text.find('.', firstDot + 1);
    const bool hasStepping = secondDot != std::string::npos;
    const std::string modelText = text.substr(firstDot + 1, hasStepping ? secondDot - firstDot - 1 : secondDot);
    const std::string steppingText = hasStepping ? text.substr(secondDot + 1) : "";
    QV_LOG_DEBUG("DEBUG: FMSSpecifier::extract_fms_i:family:%s, model:%s, stepping:%s\n", familyText.c_str(),
                 modelText.c_str(), steppingText.c_str());

    if (!takeByte(familyText, family) || !takeByte(modelText, model)) return -1;
    stepping = 0;
    return steppingText.empty() || takeByte(steppingText, stepping) ? 0 : -1;
}

PCISpecifier::PCISpecifier(std::uint32_t vendor, std::uint32_t device)
    : Specifier("PCI"), m_vendor(vendor), m_device(device)
{
}

std::string PCISpecifier::toString() const
{
    return m_name + "=" + std::to_string(m_vendor) + "," + std::to_string(m_device);
}

int PCISpecifier::is_match_i(const std::string& value) const
{
    std::uint32_t vendor = 0;
    std::uint32_t device = 0;
    return parse(value, vendor, device) && vendor == m_vendor && device == m_device ? EXACT : NONE;
}

bool PCISpecifier::parse(const std::string& text, std::uint32_t& vendor, std::uint32_t& device)
{
    std::string_view rest = text;
    return skipText(rest, "VENDOR=0x") && takeHex(rest, vendor) && skipText(rest, ",DEVICE=0x") &&
           takeHex(rest, device);
}

PMTSpecifier::PMTSpecifier(std::uint32_t guid) : Specifier("PMT"), m_guid(guid) {}

std::string PMTSpecifier::toString() const
{
    char guid[16];
    std::snprintf(guid, sizeof guid, "0x%x", static_cast<unsigned int>(m_guid));
    return m_name + "=" + guid;
}

int PMTSpecifier::is_match_i(const std::string& value) const
{
    std::uint32_t guid = 0;
    return parse(value, guid) && guid == m_guid ? EXACT : NONE;
}

bool PMTSpecifier::parse(const std::string& text, std::uint32_t& guid)
{
    std::string_view rest = text;
    return skipText(rest, "GUID=0x") && takeHex(rest, guid);
}

}    // namespace pwr
