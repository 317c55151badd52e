#include "writers/Text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <iterator>

namespace host {

namespace {

constexpr const char* REPLACEMENT = "\xEF\xBF\xBD";    // U+FFFD
constexpr const char* FORMULA_STARTS = "=+-@\t\r";

bool isControl(unsigned char c)
{
    return c < 0x20 || c == 0x7F;
}

bool isTail(std::string_view text, std::size_t at, unsigned char low = 0x80, unsigned char high = 0xBF)
{
    if (at >= text.size()) return false;
    const auto c = static_cast<unsigned char>(text[at]);
    return c >= low && c <= high;
}

// The bytes of the character that begins at `at`, which is not ASCII; 0 for what is no UTF-8. Neither overlong forms
// nor surrogates nor numbers past U+10FFFF are; the control characters U+0080 to U+009F count as none.
std::size_t sequenceLength(std::string_view text, std::size_t at)
{
    const auto c = static_cast<unsigned char>(text[at]);
    if (c >= 0xC2 && c <= 0xDF) return isTail(text, at + 1, c == 0xC2 ? 0xA0 : 0x80) ? 2 : 0;
    if (c >= 0xE0 && c <= 0xEF) {
        const bool isGood = isTail(text, at + 1, c == 0xE0 ? 0xA0 : 0x80, c == 0xED ? 0x9F : 0xBF);
        return isGood && isTail(text, at + 2) ? 3 : 0;
    }
    if (c >= 0xF0 && c <= 0xF4) {
        const bool isGood = isTail(text, at + 1, c == 0xF0 ? 0x90 : 0x80, c == 0xF4 ? 0x8F : 0xBF);
        return isGood && isTail(text, at + 2) && isTail(text, at + 3) ? 4 : 0;
    }
    return 0;
}

// Appends the text with other words for some of its ASCII characters: `replace(c)` gives them, null for a character
// that stays.
template <typename Replace>
void appendReplacing(std::string& out, std::string_view text, Replace replace)
{
    std::size_t begin = 0;    // of what is not yet appended
    for (std::size_t at = 0; at < text.size();) {
        const auto c = static_cast<unsigned char>(text[at]);
        const std::size_t length = c < 0x80 ? 1 : sequenceLength(text, at);
        const char* other = length == 0 ? REPLACEMENT : c < 0x80 ? replace(c) : nullptr;
        const std::size_t end = at;
        at += std::max<std::size_t>(length, 1);
        if (other == nullptr) continue;
        out.append(text, begin, end - begin);
        out += other;
        begin = at;
    }
    out.append(text, begin);
}

const char* csvWord(unsigned char c)
{
    if (c == '"') return "\"\"";
    return isControl(c) && c != '\t' && c != '\n' && c != '\r' ? REPLACEMENT : nullptr;
}

const char* jsonWord(unsigned char c)
{
    static const char* const s_controls[] = {
        "\\u0000", "\\u0001", "\\u0002", "\\u0003", "\\u0004", "\\u0005", "\\u0006", "\\u0007",
        "\\b",     "\\t",     "\\n",     "\\u000b", "\\f",     "\\r",     "\\u000e", "\\u000f",
        "\\u0010", "\\u0011", "\\u0012", "\\u0013", "\\u0014", "\\u0015", "\\u0016", "\\u0017",
        "\\u0018", "\\u0019", "\\u001a", "\\u001b", "\\u001c", "\\u001d", "\\u001e", "\\u001f"};
    if (c < std::size(s_controls)) return s_controls[c];
    if (c == '"') return "\\\"";
    if (c == '\\') return "\\\\";
    return c == 0x7F ? "\\u007f" : nullptr;
}

const char* htmlWord(unsigned char c)
{
    switch (c) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\'':
        return "&#39;";
    case '\t':
    case '\n':
        return nullptr;
    case '\r':
        return "";
    default:
        return isControl(c) ? REPLACEMENT : nullptr;
    }
}

const char* prometheusWord(unsigned char c)
{
    if (c == '\\') return "\\\\";
    if (c == '\n') return "\\n";
    return isControl(c) ? REPLACEMENT : nullptr;
}

template <typename Number>
void appendDigits(std::string& out, Number value)
{
    char text[64];
    out.append(text, std::to_chars(text, std::end(text), value).ptr);
}

}    // namespace

void appendNumber(std::string& out, double value)
{
    if (std::isnan(value)) {
        out += "nan";    // whatever its sign
    } else {
        appendDigits(out, value);
    }
}

void appendNumber(std::string& out, std::uint64_t value)
{
    appendDigits(out, value);
}

void appendNumber(std::string& out, std::int64_t value)
{
    appendDigits(out, value);
}

void appendFixed(std::string& out, double value, int digits)
{
    char text[400];    // any double fits
    out.append(text, std::to_chars(text, std::end(text), value, std::chars_format::fixed, digits).ptr);
}

void appendGeneral(std::string& out, double value, int significantDigits)
{
    char text[64];
    out.append(text, std::to_chars(text, std::end(text), value, std::chars_format::general, significantDigits).ptr);
}

void appendDecimal(std::string& out, std::uint64_t value, int digits)
{
    char text[32];
    const char* end = std::to_chars(text, std::end(text), value).ptr;
    const auto length = static_cast<std::size_t>(end - text);
    const auto behind = static_cast<std::size_t>(digits);
    const std::size_t ahead = length > behind ? length - behind : 0;
    if (ahead == 0) out += '0';
    out.append(text, ahead);
    out += '.';
    out.append(behind - (length - ahead), '0');
    out.append(text + ahead, length - ahead);
}

void appendCsv(std::string& out, std::string_view text)
{
    const bool isRule = text.find_first_not_of('-') == std::string_view::npos;
    const bool isFormula =
        !isRule && std::string_view(FORMULA_STARTS).find(text[0]) != std::string_view::npos && !isPlainNumber(text);
    const bool isQuoted = text.find_first_of(",\"\r\n") != std::string_view::npos;
    if (isQuoted) out += '"';
    if (isFormula) out += '\'';
    appendReplacing(out, text, csvWord);
    if (isQuoted) out += '"';
}

void appendJson(std::string& out, std::string_view text)
{
    out += '"';
    appendReplacing(out, text, jsonWord);
    out += '"';
}

void appendHtml(std::string& out, std::string_view text)
{
    appendReplacing(out, text, htmlWord);
}

void appendPrometheusLabel(std::string& out, std::string_view text)
{
    appendReplacing(out, text, [](unsigned char c) { return c == '"' ? "\\\"" : prometheusWord(c); });
}

void appendPrometheusHelp(std::string& out, std::string_view text)
{
    appendReplacing(out, text, prometheusWord);
}

bool isPlainNumber(std::string_view text)
{
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return false;
    }
    double value = 0;
    const auto [stop, code] = std::from_chars(text.data(), text.data() + text.size(), value);
    return code != std::errc::invalid_argument && stop == text.data() + text.size();
}

std::string plainWord(std::string_view text, char filler, std::size_t maxLength)
{
    std::string word;
    for (const char c : text.substr(0, maxLength)) {
        if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) {
            word += c;
        } else if (c >= 'A' && c <= 'Z') {
            word += static_cast<char>(c - 'A' + 'a');
        } else {
            word += filler;
        }
    }
    return word.empty() ? "metric" : word;
}

}    // namespace host
