#include "config/pw_utils.h"

#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <deque>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

using namespace pwr;
using test::LogCapture;

namespace {

using Lines = std::vector<std::string>;

struct Closer {
    void operator()(FILE* fp) const { std::fclose(fp); }
};

class LineReaderTest : public testing::Test {
protected:
    ~LineReaderTest() override { std::filesystem::remove(m_path); }

    std::unique_ptr<FILE, Closer> open(const std::string& content)
    {
        std::ofstream(m_path, std::ios::binary) << content;
        return std::unique_ptr<FILE, Closer>(std::fopen(m_path.c_str(), "rb"));
    }

    // The lines that getline() gives until the stream ends; the last one is what stands behind the last line feed.
    Lines linesOf(const std::string& content, bool trimmed)
    {
        const auto stream = open(content);
        Lines lines;
        while (std::feof(stream.get()) == 0) {
            lines.emplace_back();
            const int length = LineReader::getline(stream.get(), lines.back(), trimmed);
            EXPECT_EQ(lines.back().size(), static_cast<std::size_t>(length));
        }
        return lines;
    }

    const std::string m_path = "LineReaderTest.txt";
    LogCapture m_log{2};
};

// Pieces of 1023 bytes are the reader's own matter, and a zero is a byte like others.
TEST_F(LineReaderTest, LinesOfEveryLengthAndContentAreWhole)
{
    const std::string zero(1, '\0');
    for (const std::size_t length : {1U, 1021U, 1022U, 1023U, 1024U, 2045U, 2046U, 2047U, 5000U, 100000U}) {
        const std::string text(length, 'x');
        const std::string zeros(length, '\0');
        for (const std::string& line : {text, zeros, text + zero, zero + text, zero + text + zero, zeros + "x"}) {
            EXPECT_EQ(Lines({line}), linesOf(line, false)) << length;
            EXPECT_EQ(Lines({line + "\n", ""}), linesOf(line + "\n", false)) << length;
            EXPECT_EQ(Lines({line + "\n", "\n", line}), linesOf(line + "\n\n" + line, false)) << length;
        }
    }
}

TEST_F(LineReaderTest, TrimmedLinesKeepOnlyTextAndBlankOnes)
{
    EXPECT_EQ(Lines({"a b", "c", "\n", " \t\r\n", "d"}), linesOf(" a b\t\r\nc\n\n \t\r\nd ", true));
    EXPECT_EQ(Lines({""}), linesOf("", true));
}

TEST_F(LineReaderTest, StreamsThatCannotBeReadGiveMinusOne)
{
    std::string line = "x";
    EXPECT_EQ(-1, LineReader::getline(nullptr, line, true));
    EXPECT_EQ("WARNING: NULL fp in pwr::LineReader::getline:200!\n", m_log.debug());
    EXPECT_EQ("x", line);

    const std::unique_ptr<FILE, Closer> writing(std::fopen(m_path.c_str(), "wb"));
    EXPECT_EQ(-1, LineReader::getline(writing.get(), line, true));
    EXPECT_EQ("", line);
    Lines lines;
    LineReader::get_all_lines(writing.get(), lines);
    EXPECT_TRUE(lines.empty());
}

TEST_F(LineReaderTest, AllLinesOfAStreamCountTheEmptyOneAtTheEnd)
{
    std::deque<std::string> lines = {"before"};
    LineReader::get_all_lines(open("a\r\n b\n").get(), lines);
    EXPECT_EQ(std::deque<std::string>({"before", "a", "b", ""}), lines);

    LineReader::get_all_lines(static_cast<FILE*>(nullptr), lines);
    EXPECT_EQ(4U, lines.size());
}

TEST_F(LineReaderTest, AllLinesOfAFileLeaveOutTheEmptyOnes)
{
    open("\n a \r\n\n\r\nlast");
    Lines lines = {"before"};
    LineReader::get_all_lines(m_path.c_str(), lines, true);
    EXPECT_EQ(Lines({"before", " a \r", "\r", "last"}), lines);

    LineReader::get_all_lines(static_cast<const char*>(nullptr), lines, true);
    LineReader::get_all_lines("no-such-file", lines, false);
    EXPECT_EQ("", m_log.errors());
    LineReader::get_all_lines("no-such-file", lines, true);
    LineReader::get_all_lines(".", lines, true);
    EXPECT_EQ("1ERROR: could NOT open file no-such-file!\n1ERROR: could NOT open file .!\n", m_log.errors());
    EXPECT_EQ(4U, lines.size());
}

TEST_F(LineReaderTest, TrimInPlaceLeavesATextOfBlanks)
{
    const struct {
        std::string text;
        std::string inPlace;
        std::string copy;
    } cases[] = {
        {"", "", ""},
        {"   ", "   ", ""},
        {" \r\t\n", " \r\t\n", ""},
        {"a", "a", "a"},
        {"\t a b\r\n", "a b", "a b"},
        {"\v a", "\v a", "\v a"},
        {"a\xC3", "a\xC3", "a\xC3"},
    };
    for (const auto& c : cases) {
        std::string text = c.text;
        LineReader::trim(text);
        EXPECT_EQ(c.inPlace, text);
        EXPECT_EQ(c.copy, LineReader::trim(std::as_const(c.text)));
    }
    std::string text = "-a--b-";
    LineReader::strip(text, '-');
    EXPECT_EQ("ab", text);
}

}    // namespace
