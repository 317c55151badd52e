#include "values/Formatter.h"

#include "runtime/Log.h"
#include "values/Data.h"
#include "values/Handles.h"
#include "values/Process.h"

#include <charconv>
#include <cmath>
#include <ios>
#include <locale>
#include <sstream>
#include <type_traits>
#include <utility>

namespace pwr {

namespace {

// Numbers read as a fresh output stream with its default settings writes them. Such a stream takes the global locale;
// while that is the classic one, the digits are made without a stream.
bool isLocalePlain()
{
    return std::locale() == std::locale::classic();
}

template <typename Integer>
void appendNumber(std::string& out, Integer value, bool hex)
{
    if (!isLocalePlain()) {
        std::ostringstream stream;
        if (hex) stream << std::showbase << std::hex;
        stream << value;
        out += stream.str();
        return;
    }
    char digits[24];
    std::to_chars_result end;
    if (hex) {
        if (value != 0) out += "0x";
        end = std::to_chars(digits, digits + sizeof digits, static_cast<std::make_unsigned_t<Integer>>(value), 16);
    } else {
        end = std::to_chars(digits, digits + sizeof digits, value);
    }
    out.append(digits, end.ptr);
}

void appendReal(std::string& out, double value, int precision)
{
    constexpr int maxPlainPrecision = 64;
    if (precision < 0 || precision > maxPlainPrecision || !std::isfinite(value) || !isLocalePlain()) {
        std::ostringstream stream;
        stream.setf(std::ios_base::fixed, std::ios_base::floatfield);
        stream.precision(precision);
        stream << value;
        out += stream.str();
        return;
    }
    char digits[384];    // the longest double has 309 digits before the point
    const auto end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, precision);
    out.append(digits, end.ptr);
}

constexpr const char* rangeSeparator = " -- ";

std::string handleText(const DataHandle& handle)
{
    std::string text;
    switch (handle.getHandleType()) {
    case DataHandleType::PROCESS:
        appendNumber(text, static_cast<const Process&>(handle).getPid(), false);
        break;
    case DataHandleType::THREAD:
        appendNumber(text, static_cast<const Thread&>(handle).getTid(), false);
        break;
    case DataHandleType::NAME_VALUE_PAIR:
        appendNumber(text, static_cast<const NameValuePair&>(handle).getValue(), false);
        text += " - ";
        text += handle.getName();
        break;
    default:
        text = handle.getQualifiedName();
        break;
    }
    return text;
}

}    // namespace

Formatter::Formatter(int width) : m_width(width) {}

Formatter::~Formatter() = default;

int Formatter::widen(std::string& text, int width)
{
    if (width > 0 && text.size() < static_cast<std::size_t>(width)) {
        text.insert(0, static_cast<std::size_t>(width) - text.size(), ' ');
    }
    return 0;
}

int Formatter::finishNumber_i(std::string& out) const
{
    out += m_suffix;
    return widen(out, m_width);
}

int Formatter::formatInt(const Formatter& formatter, std::string& out, const Data& value)
{
    if (value.getType() == DataType::INT_RANGE) return formatIntRange(formatter, out, value);
    out.clear();
    long long number = 0;
    if (value.toInt(number) != 0) return 1;
    appendNumber(out, number, formatter.m_hex);
    return formatter.finishNumber_i(out);
}

int Formatter::formatUInt(const Formatter& formatter, std::string& out, const Data& value)
{
    if (value.getType() == DataType::UINT_RANGE) return formatUIntRange(formatter, out, value);
    out.clear();
    unsigned long long number = 0;
    if (value.toUInt(number) != 0) return 1;
    appendNumber(out, number, formatter.m_hex);
    return formatter.finishNumber_i(out);
}

int Formatter::formatReal(const Formatter& formatter, std::string& out, const Data& value)
{
    if (value.getType() == DataType::REAL_RANGE) return formatRealRange(formatter, out, value);
    out.clear();
    double number = 0;
    if (value.toReal(number) != 0) return 1;
    appendReal(out, number, formatter.m_precision);
    return formatter.finishNumber_i(out);
}

int Formatter::formatIntRange(const Formatter& formatter, std::string& out, const Data& value)
{
    out.clear();
    std::pair<long long, long long> range;
    if (value.toIntRange(range) != 0) return 1;
    appendNumber(out, range.first, formatter.m_hex);
    out += rangeSeparator;
    appendNumber(out, range.second, formatter.m_hex);
    return formatter.finishNumber_i(out);
}

int Formatter::formatUIntRange(const Formatter& formatter, std::string& out, const Data& value)
{
    out.clear();
    std::pair<unsigned long long, unsigned long long> range;
    if (value.toUIntRange(range) != 0) return 1;
    appendNumber(out, range.first, formatter.m_hex);
    out += rangeSeparator;
    appendNumber(out, range.second, formatter.m_hex);
    return formatter.finishNumber_i(out);
}

int Formatter::formatRealRange(const Formatter& formatter, std::string& out, const Data& value)
{
    out.clear();
    std::pair<double, double> range;
    if (value.toRealRange(range) != 0) return 1;
    appendReal(out, range.first, formatter.m_precision);
    out += rangeSeparator;
    appendReal(out, range.second, formatter.m_precision);
    return formatter.finishNumber_i(out);
}

int Formatter::formatHandle(const Formatter& formatter, std::string& out, const Data& value)
{
    const DataHandle* handle = nullptr;
    if (value.toHandle(handle) != 0 || handle == nullptr) return 1;
    out = handleText(*handle);
    return widen(out, formatter.m_width);
}

int Formatter::formatString(const Formatter& formatter, std::string& out, const Data& value)
{
    out.clear();
    if (value.toString(out) != 0) return 1;
    return widen(out, formatter.m_width);
}

VoidFormatter::VoidFormatter() : Formatter(0) {}

int VoidFormatter::format(std::string& out, const Data&) const
{
    QV_LOG_WARNING("WARNING: Data of type pwr::DataType::NONE can't be formatted\n");
    out = "INVALID";
    return 1;
}

Formatter* VoidFormatter::clone() const
{
    return new VoidFormatter(*this);
}

IntFormatter::IntFormatter(int width, bool hex) : Formatter(width)
{
    m_hex = hex;
}

IntFormatter::IntFormatter(const std::string& suffix, int width, bool hex) : IntFormatter(width, hex)
{
    m_suffix = suffix;
}

int IntFormatter::format(std::string& out, const Data& value) const
{
    return formatInt(*this, out, value);
}

Formatter* IntFormatter::clone() const
{
    return new IntFormatter(*this);
}

UIntFormatter::UIntFormatter(int width, bool hex) : Formatter(width)
{
    m_hex = hex;
}

UIntFormatter::UIntFormatter(const std::string& suffix, int width, bool hex) : UIntFormatter(width, hex)
{
    m_suffix = suffix;
}

int UIntFormatter::format(std::string& out, const Data& value) const
{
    return formatUInt(*this, out, value);
}

Formatter* UIntFormatter::clone() const
{
    return new UIntFormatter(*this);
}

RealFormatter::RealFormatter(int width, int precision) : Formatter(width)
{
    m_precision = precision;
}

RealFormatter::RealFormatter(const std::string& suffix, int width, int precision) : RealFormatter(width, precision)
{
    m_suffix = suffix;
}

int RealFormatter::format(std::string& out, const Data& value) const
{
    return formatReal(*this, out, value);
}

Formatter* RealFormatter::clone() const
{
    return new RealFormatter(*this);
}

StringFormatter::StringFormatter(int width) : Formatter(width) {}

int StringFormatter::format(std::string& out, const Data& value) const
{
    return formatString(*this, out, value);
}

Formatter* StringFormatter::clone() const
{
    return new StringFormatter(*this);
}

HandleFormatter::HandleFormatter(int width) : Formatter(width) {}

int HandleFormatter::format(std::string& out, const Data& value) const
{
    return formatHandle(*this, out, value);
}

Formatter* HandleFormatter::clone() const
{
    return new HandleFormatter(*this);
}

}    // namespace pwr
