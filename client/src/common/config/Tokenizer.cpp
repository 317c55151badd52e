#include "config/pw_utils.h"

#include <algorithm>
#include <cstdlib>

namespace pwr {

namespace {

// The next run of characters that are no delimiters, at or after `end`; false when there is none.
bool findToken(const std::string& text, const char* delims, std::size_t& start, std::size_t& end)
{
    start = text.find_first_not_of(delims, end);
    end = text.find_first_of(delims, start);
    return start != std::string::npos;
}

std::vector<std::string> splitText(const std::string& text, const char* delims)
{
    std::vector<std::string> tokens;
    if (delims == nullptr) return tokens;
    std::size_t start = 0;
    std::size_t end = 0;
    while (findToken(text, delims, start, end))
        tokens.push_back(text.substr(start, end - start));
    return tokens;
}

}    // namespace

Tokenizer::Tokenizer(const std::string& text, const char* delims)
    : m_text(text), m_delims(delims), m_tokens(splitText(text, delims))
{
}

Tokenizer::Tokenizer(const Tokenizer& other)
    : m_text(other.m_text), m_delims(other.m_delims), m_start(other.m_start), m_end(other.m_end),
      m_tokens(other.m_tokens)
{
}

Tokenizer& Tokenizer::operator=(const Tokenizer& other)
{
    if (this == &other) return *this;
    m_text = other.m_text;
    m_delims = other.m_delims;
    m_start = other.m_start;
    m_end = other.m_end;
    m_tokens = other.m_tokens;
    std::free(m_current);
    m_current = nullptr;
    return *this;
}

Tokenizer::~Tokenizer()
{
    std::free(m_current);
}

const char* Tokenizer::get_next_token()
{
    return get_next_token(m_delims);
}

const char* Tokenizer::get_next_token(const char* delims)
{
    std::free(m_current);
    m_current = nullptr;
    if (delims == nullptr || m_text.empty()) return nullptr;
    if (!findToken(m_text, delims, m_start, m_end)) return nullptr;
    const std::size_t length = std::min(m_end, m_text.size()) - m_start;
    m_current = qv_strndup(m_text.c_str() + m_start, length);
    return m_current;
}

const std::string Tokenizer::str_get_next_token()
{
    const char* token = get_next_token();
    return token != nullptr ? token : "";
}

const std::vector<std::string>& Tokenizer::get_all_tokens() const
{
    return m_tokens;
}

const std::vector<std::string> Tokenizer::get_all_tokens(const char* delims)
{
    if (delims == m_delims || m_text.empty()) return m_tokens;
    return splitText(m_text, delims);
}

}    // namespace pwr
