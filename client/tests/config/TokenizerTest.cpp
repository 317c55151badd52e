#include "config/pw_utils.h"

#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace pwr;

namespace {

using Tokens = std::vector<std::string>;

Tokens walk(Tokenizer& tokenizer)
{
    Tokens tokens;
    while (const char* token = tokenizer.get_next_token())
        tokens.emplace_back(token);
    return tokens;
}

TEST(TokenizerTest, RunsOfDelimitersGiveNoEmptyTokens)
{
    const struct {
        const char* text;
        const char* delims;
        Tokens tokens;
    } cases[] = {
        {"a,,b", ",", {"a", "b"}},
        {",,,", ",", {}},
        {"", ",", {}},
        {"CORE", ",", {"CORE"}},
        {",a b, c,", ", ", {"a", "b", "c"}},
        {"a,b", "", {"a,b"}},
        {"a,b", nullptr, {}},
        {"\"a,b\"", ",", {"\"a", "b\""}},
    };
    for (const auto& c : cases) {
        Tokenizer tokenizer(c.text, c.delims);
        EXPECT_EQ(c.tokens, tokenizer.get_all_tokens()) << c.text;
        EXPECT_EQ(c.tokens, walk(tokenizer)) << c.text;
        EXPECT_EQ(nullptr, tokenizer.get_next_token()) << c.text;
        EXPECT_EQ("", tokenizer.str_get_next_token()) << c.text;
    }
}

TEST(TokenizerTest, TheDelimitersOfAWalkMayChange)
{
    Tokenizer tokenizer("key=a,b=c", ",");
    EXPECT_STREQ("key", tokenizer.get_next_token("="));
    EXPECT_STREQ("=a", tokenizer.get_next_token());
    EXPECT_EQ(nullptr, tokenizer.get_next_token(nullptr));
    EXPECT_STREQ("b", tokenizer.get_next_token("=,"));
    EXPECT_EQ("=c", tokenizer.str_get_next_token());
    EXPECT_EQ(nullptr, tokenizer.get_next_token("b"));
}

TEST(TokenizerTest, OtherDelimitersLeaveAWalkUndisturbed)
{
    const char* comma = ",";
    Tokenizer tokenizer("a=1,b=2", comma);
    EXPECT_STREQ("a=1", tokenizer.get_next_token());
    EXPECT_EQ(Tokens({"a", "1,b", "2"}), tokenizer.get_all_tokens("="));
    EXPECT_EQ(Tokens(), tokenizer.get_all_tokens(nullptr));
    EXPECT_EQ(Tokens({"a=1", "b=2"}), tokenizer.get_all_tokens(comma));
    EXPECT_EQ(Tokens({"a=1", "b=2"}), tokenizer.get_all_tokens());
    EXPECT_STREQ("b=2", tokenizer.get_next_token());
}

TEST(TokenizerTest, CopiesWalkOnTheirOwn)
{
    Tokenizer first("a,b,c", ",");
    const char* token = first.get_next_token();
    Tokenizer copy(first);
    Tokenizer assigned("x", ",");
    EXPECT_STREQ("x", assigned.get_next_token());
    assigned = first;
    EXPECT_STREQ("b", copy.get_next_token());
    EXPECT_STREQ("b", assigned.get_next_token());
    EXPECT_STREQ("a", token);
    first = *&first;
    EXPECT_STREQ("b", first.get_next_token());
}

TEST(TokenizerTest, ARequiredTokenNeedsTheExactNumberOfTokens)
{
    const struct {
        const char* line;
        int number;
        int count;
        const char* delims;
        const char* token;
        const char* log;
    } cases[] = {
        {"a b c", 1, 3, nullptr, "a", ""},
        {"a:b::c", 3, 3, ":", "c", ""},
        {"a b c", 4, 3, nullptr, "", "WARNING: tok_num = 4, max_num_toks = 3\n"},
        {"a b", 1, 3, " ", "", "WARNING: invalid # toks = 2 (expected 3)\n"},
        {"a b c d", 1, 3, " ", "", "WARNING: invalid # toks = 4 (expected 3)\n"},
        {"a", 0, 1, " ", "", ""},
        {"a", -1, 1, " ", "", ""},
        {"", 0, 0, " ", "", ""},
    };
    for (const auto& c : cases) {
        const test::LogCapture log(2);
        EXPECT_EQ(c.token, get_required_token(c.line, c.number, c.count, c.delims)) << c.line;
        EXPECT_EQ(c.log, log.debug()) << c.line;
    }
}

}    // namespace
