#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace host {

// Numbers and texts of result files. All operations append to `out`; none looks at a locale. In every format bytes that
// are no UTF-8, and control characters that the format can't tell harmlessly, become U+FFFD.

// The shortest digits that read back as the same number; "nan", "inf" and "-inf".
void appendNumber(std::string& out, double value);
void appendNumber(std::string& out, std::uint64_t value);
void appendNumber(std::string& out, std::int64_t value);
void appendFixed(std::string& out, double value, int digits);
void appendGeneral(std::string& out, double value, int significantDigits);

// A whole number of units of 10^-digits, with the point where it belongs: (1500, 3) is "1.500".
void appendDecimal(std::string& out, std::uint64_t value, int digits);

// One field of comma-separated values. It stands in quotes where it must (RFC 4180). A text that a spreadsheet would
// take for a formula gets an apostrophe in front; numbers, signed ones too, and nothing but hyphens never do.
void appendCsv(std::string& out, std::string_view text);

// A JSON text in quotes. The control characters of ASCII are escaped.
void appendJson(std::string& out, std::string_view text);

// Text or attribute value of HTML and SVG.
void appendHtml(std::string& out, std::string_view text);

// What stands between the quotes of a label value of the Prometheus text format, and behind HELP.
void appendPrometheusLabel(std::string& out, std::string_view text);
void appendPrometheusHelp(std::string& out, std::string_view text);

// The whole text is one number, as a spreadsheet or a program reads it.
bool isPlainNumber(std::string_view text);

// Small letters and digits, `filler` for everything else; at most `maxLength` characters. Never empty.
std::string plainWord(std::string_view text, char filler, std::size_t maxLength);

// `text`, with `number` behind it from the second of its kind on; `isTaken(text)` tells the names that are used up.
template <typename IsTaken>
std::string uniqueText(const std::string& text, const char* separator, const IsTaken& isTaken)
{
    std::string unique = text;
    for (int number = 2; isTaken(unique); ++number)
        unique = text + separator + std::to_string(number);
    return unique;
}

}    // namespace host
