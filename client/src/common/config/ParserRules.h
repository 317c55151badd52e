#pragma once

#include "config/Parser.h"

#include <string_view>

// What the sources of the Parser's rules share.

namespace pwr {

// What tags and names are: a letter and anything behind it.
inline bool startsWithLetter(std::string_view text)
{
    return !text.empty() && ((text[0] >= 'A' && text[0] <= 'Z') || (text[0] >= 'a' && text[0] <= 'z'));
}

template <std::size_t N>
bool Parser::keywordRule_i(const KeywordRule (&rules)[N], std::string_view keyword, const ConfigStatement& statement)
{
    for (const KeywordRule& entry : rules) {
        if (entry.keyword == keyword) return rule_i((this->*entry.rule)(statement), entry.name);
    }
    return false;
}

}    // namespace pwr
