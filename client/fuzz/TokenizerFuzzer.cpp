// Input: delimiters up to a zero, or four, then a byte and a text. Invariant: tokens are not empty, hold no delimiter,
// and come alike in the walk and in the list; the fields of a list put together are the list; trimming takes blanks
// off both ends and nothing else; what is a number is read as one of 32 bits.

#include "config/pw_utils.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

void check(bool holds)
{
    if (!holds) std::abort();
}

void checkTokens(const std::string& text, const std::string& delims)
{
    pwr::Tokenizer tokenizer(text, delims.c_str());
    const std::vector<std::string> tokens = tokenizer.get_all_tokens();
    for (const std::string& token : tokens) {
        check(!token.empty() && token.find_first_of(delims.c_str()) == std::string::npos);
        const char* next = tokenizer.get_next_token();
        check(next != nullptr && std::strcmp(next, token.c_str()) == 0);
    }
    check(tokenizer.get_next_token() == nullptr);
    check(tokens == pwr::Tokenizer(text, ",").get_all_tokens(delims.c_str()));
}

// From the front all fields are taken, from the end one.
void checkFields(const std::string& list, char separator, bool fromEnd)
{
    std::string rest = list;
    std::string field;
    std::string joined;
    while (pwr::getNextToken(field, rest, separator, fromEnd) == 0) {
        joined += field + separator;
        if (fromEnd) break;
        check(field.find(separator) == std::string::npos);
    }
    joined += rest;
    if (joined.size() > list.size()) joined.pop_back();    // the last field had no separator
    check(joined == list);
}

void checkTrim(const std::string& text)
{
    const char* blanks = " \r\t\n";
    const std::string copy = pwr::LineReader::trim(text);
    std::string inPlace = text;
    pwr::LineReader::trim(inPlace);
    check(inPlace == (copy.empty() ? text : copy));
    if (copy.empty()) return check(text.find_first_not_of(blanks) == std::string::npos);

    const std::size_t begin = text.find_first_not_of(blanks);
    check(text.compare(begin, copy.size(), copy) == 0);
    check(text.find_first_not_of(blanks, begin + copy.size()) == std::string::npos);
    check(copy.find_last_not_of(blanks) == copy.size() - 1);
}

}    // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::uint8_t* const end = data + size;
    const std::uint8_t* const behindDelims = std::find(data, data + std::min<std::size_t>(size, 4), 0);
    const std::string delims(data, behindDelims);
    const std::string text(behindDelims == end ? end : behindDelims + 1, end);

    checkTokens(text, delims);
    const char separator = delims.empty() ? ',' : delims.front();
    checkFields(text, separator, false);
    checkFields(text, separator, true);
    checkTrim(text);
    check(pwr::extract_number_i(text) <= 0xFFFFFFFFU);
    check(!pwr::isNumber(text) || text.find_first_not_of("-.0123456789abcdefABCDEFxX") == std::string::npos);
    return 0;
}
