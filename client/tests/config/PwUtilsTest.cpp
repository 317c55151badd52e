#include "config/pw_utils.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <memory>
#include <string>
#include <vector>

using namespace pwr;

namespace {

using Texts = std::vector<std::string>;

TEST(PwUtilsTest, NumbersAreDigitsAndPointsOrHexadecimal)
{
    using namespace std::string_literals;
    for (const std::string& text :
         Texts({"0", "10", "-5", "12.5", "...", "-.", "1.2.3", "0x1F", "0Xaf", "0x.", "00"})) {
        EXPECT_TRUE(isNumber(text)) << text;
    }
    for (const std::string& text :
         Texts({"", "-", "-\0"s, "0x", "-0x10", "0x1G", "1F", "+1", " 1", "1 ", "--1", "1-", "x1", "1\0"s, "\xB2"})) {
        EXPECT_FALSE(isNumber(text)) << text;
    }
}

TEST(PwUtilsTest, ALeadingZeroMeansHexadecimal)
{
    const struct {
        const char* text;
        unsigned long number;
    } cases[] = {
        {"10", 10},
        {"010", 16},
        {"0xFF", 255},
        {"0XFF", 255},
        {"0", 0},
        {"", 0},
        {"x1F", 0},
        {"12a", 12},
        {"0x", 0},
        {"a", 0},
        {" 010", 10},
        {"-1", 0xFFFFFFFFU},
        {"4294967295", 0xFFFFFFFFU},
        {"4294967296", 0xFFFFFFFFU},
        {"0xFFFFFFFFFF", 0xFFFFFFFFU},
        {"99999999999999999999999999", 0xFFFFFFFFU},
        {"08", 8},
        {"0g", 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.number, extract_number_i(c.text)) << c.text;
    }
}

TEST(PwUtilsTest, FieldsOfAListComeOnceEach)
{
    const struct {
        const char* list;
        bool fromEnd;
        Texts fields;
    } cases[] = {
        {"a,b,", false, {"a", "b"}}, {"a,,b", false, {"a", "", "b"}}, {",", false, {""}},      {"", false, {}},
        {"a", false, {"a"}},         {"a,b,c", true, {"a,b", "c"}},   {",a", true, {"", "a"}}, {"a,", true, {"a"}},
    };
    for (const auto& c : cases) {
        std::string rest = c.list;
        std::string field = "untouched";
        Texts fields;
        while (getNextToken(field, rest, ',', c.fromEnd) == 0)
            fields.push_back(field);
        EXPECT_EQ(c.fields, fields) << c.list;
        EXPECT_EQ(c.fields.empty() ? "untouched" : c.fields.back(), field) << c.list;
    }
    std::string head;
    std::string tail = "A-B-C";
    EXPECT_EQ(0, getNextToken(head, tail, '-', true));
    EXPECT_EQ("A-B", head);
    EXPECT_EQ("C", tail);
}

TEST(PwUtilsTest, UniqueNamesCountForEachName)
{
    EXPECT_EQ("unique-0", getUniqueName("unique"));
    EXPECT_EQ("unique-1", getUniqueName("unique"));
    EXPECT_EQ(2, getUniqueIDFor("unique"));
    EXPECT_EQ(0, getUniqueIDFor("unique-"));
}

TEST(PwUtilsTest, TextsAreConverted)
{
    EXPECT_EQ("ABC-1\xE4", getUpperCaseString("aBc-1\xE4"));
    EXPECT_EQ("CORE--C-STATE\tX", getMetricTag("Core  C-State\tx"));
    EXPECT_EQ("C:\\a\\b", getDosPath("C:/a\\b"));

    std::string text = "a.b-c";
    EXPECT_EQ(&text, &StringOps::replaceChars(text, {'.', '-'}, '_'));
    EXPECT_EQ("a_b_c", text);
    StringOps::replaceChars(text, {'_', 'c'}, text[0]);
    EXPECT_EQ("aabaa", text);
    EXPECT_EQ("baa", StringOps::getSubString(text, "b"));
    EXPECT_EQ("aabaa", StringOps::getSubString(text, "x"));
    EXPECT_TRUE(StringOps::containsAny(text, {"x", "ab"}));
    EXPECT_TRUE(StringOps::containsAny("", {""}));
    EXPECT_FALSE(StringOps::containsAny(text, {"x", "bb"}));
    EXPECT_FALSE(StringOps::containsAny(text, {}));
}

TEST(PwUtilsTest, PathsAreTakenApart)
{
    const std::string separator = PathOps::getPathSeparator();
    EXPECT_EQ("a" + separator + "b" + separator, PathOps::normalizePathSeparator("a/b/"));
    EXPECT_EQ("c", PathOps::getFilenameFromPath("a/b/c"));
    EXPECT_EQ("", PathOps::getFilenameFromPath("a/"));
    EXPECT_EQ("a", PathOps::getFilenameFromPath("a"));

    const struct {
        const char* path;
        const char* dir;
        const char* file;
    } cases[] = {
        {"file", "./", "file"}, {"a/b/file", "a/b/", "file"}, {"a/", "a/", ""}, {"/file", "/", "file"},
        {"", "./", ""},         {"a\\file", "./", "a\\file"},
    };
    for (const auto& c : cases) {
        std::string dir;
        std::string file;
        extract_dir_and_file_from_path(c.path, dir, file);
        EXPECT_EQ(c.dir, dir) << c.path;
        EXPECT_EQ(c.file, file) << c.path;
    }
}

TEST(PwUtilsTest, CopiesOfTextsAreBoundedAndTerminated)
{
    const struct {
        const char* text;
        std::size_t most;
        const char* copy;
    } cases[] = {{"abc", 2, "ab"}, {"abc", 3, "abc"}, {"abc", 99, "abc"}, {"abc", 0, ""}, {"", 5, ""}};
    for (const auto& c : cases) {
        const std::unique_ptr<char, void (*)(void*)> copy(qv_strndup(c.text, c.most), std::free);
        EXPECT_STREQ(c.copy, copy.get());
    }
    EXPECT_EQ(nullptr, qv_strndup(nullptr, 3));
}

TEST(PwUtilsTest, PciAddressesKeepTheLowBytes)
{
    EXPECT_EQ(0x100000f0U, getPCIAddress(0, 0));
    EXPECT_EQ(0x10120000U | 0x34f0U, getPCIAddress(0xF12, 0xF34));
    EXPECT_EQ(0x10fffff0U, getPCIAddress(~0UL, ~0UL));
}

}    // namespace
