#include "runtime/pw_functions.h"

#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <fcntl.h>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

namespace {

using test::LogCapture;

void setVariable(const char* name, const char* value)
{
#if defined(_WIN32)
    _putenv_s(name, value);
#else
    setenv(name, value, 1);
#endif
}

void closeDescriptor(int fd)
{
#if defined(_WIN32)
    _close(fd);
#else
    close(fd);
#endif
}

std::string content(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

TEST(PwSnprintfTest, GivesTheWholeLengthAndTerminatesWhatFits)
{
    EXPECT_EQ(4, pw_snprintf(nullptr, 0, "%d", 1234));
    EXPECT_EQ(4, pw_snprintf(nullptr, 10, "%d", 1234));

    const struct {
        size_t size;
        const char* text;
    } cases[] = {{1, ""}, {3, "12"}, {4, "123"}, {5, "1234"}, {6, "1234"}};
    for (const auto& c : cases) {
        char buffer[8];
        std::memset(buffer, '#', sizeof buffer);
        EXPECT_EQ(4, pw_snprintf(buffer, c.size, "%d", 1234)) << c.size;
        EXPECT_STREQ(c.text, buffer) << c.size;
        EXPECT_EQ('#', buffer[c.size]) << "beyond the buffer of " << c.size;
        EXPECT_EQ('\0', buffer[c.size - 1]) << c.size;
    }
    char untouched = '#';
    EXPECT_EQ(4, pw_snprintf(&untouched, 0, "%d", 1234));
    EXPECT_EQ('#', untouched);
}

TEST(PwSnprintfTest, KnowsTheStandardsFormatsOnEverySystem)
{
    char buffer[128];
    pw_snprintf(buffer, sizeof buffer, "%zu %llu %lld %#llx %.2f %s", size_t{7}, 18446744073709551615ULL, -1LL,
                0xABCDEF0123456789ULL, 2.5, "text");
    EXPECT_STREQ("7 18446744073709551615 -1 0xabcdef0123456789 2.50 text", buffer);
    pw_snprintf(buffer, sizeof buffer, "%e %g %5.1f|%-4d|", 1e10, 1e-5, 9.96, 3);
    EXPECT_STREQ("1.000000e+10 1e-05  10.0|3   |", buffer);
}

TEST(PwStrncpyTest, CutsAndTerminates)
{
    const struct {
        const char* source;
        size_t size;
        const char* text;
    } cases[] = {{"abc", 8, "abc"}, {"abc", 4, "abc"}, {"abc", 3, "ab"}, {"abc", 1, ""}, {"", 4, ""}, {nullptr, 4, ""}};
    for (const auto& c : cases) {
        char buffer[9];
        std::memset(buffer, '#', sizeof buffer);
        EXPECT_EQ(buffer, pw_strncpy(buffer, c.source, c.size));
        EXPECT_STREQ(c.text, buffer);
        EXPECT_EQ('\0', buffer[c.size - 1]);
        EXPECT_EQ('#', buffer[c.size]);
    }
    char untouched = '#';
    EXPECT_EQ(&untouched, pw_strncpy(&untouched, "abc", 0));
    EXPECT_EQ('#', untouched);
    EXPECT_EQ(nullptr, pw_strncpy(nullptr, "abc", 4));
}

TEST(PwOpenTest, MissingFileGivesTheWarning)
{
    LogCapture log(2);
    int fd = 7;
    EXPECT_EQ(1, pwr::pw_open(fd, "no-such-file", O_RDONLY));
    EXPECT_EQ(-1, fd);
    char words[256];
    pwr::pw_strerror(ENOENT, words, sizeof words);
    ASSERT_STRNE("", words);
    EXPECT_EQ("WARNING: Error opening file: no-such-file, errnum: " + std::to_string(ENOENT) + ", error: " + words +
                  "\n",
              log.debug());
    log.clear();
    EXPECT_EQ(1, pwr::pw_open(fd, nullptr, O_RDONLY));
    EXPECT_EQ(1U, log.count("WARNING: Error opening file: "));
}

TEST(PwOpenTest, CreatedFileIsSharedWithOtherOpeners)
{
    const std::string path = "pw_open.txt";
    std::filesystem::remove(path);
    LogCapture log(2);
    int first = -1;
    int second = -1;
    ASSERT_EQ(0, pwr::pw_open(first, path.c_str(), O_CREAT | O_RDWR));
    ASSERT_EQ(0, pwr::pw_open(second, path.c_str(), O_RDWR));
    EXPECT_EQ(3, write(first, "a\r\n", 3));
    EXPECT_EQ("", log.debug());
    char bytes[8] = {};
    EXPECT_EQ(3, read(second, bytes, sizeof bytes));
    closeDescriptor(first);
    closeDescriptor(second);
    EXPECT_STREQ("a\r\n", bytes);
    std::ofstream(path, std::ios::app) << "writable";    // the file mode lets the owner write
    EXPECT_EQ("a\r\nwritable", content(path));
    std::filesystem::remove(path);
}

TEST(PwStrerrorTest, CutsToTheBufferAndWarnsWithoutOne)
{
    LogCapture log(2);
    char words[256];
    char start[5];
    std::memset(start, '#', sizeof start);
    pwr::pw_strerror(EACCES, words, sizeof words);
    pwr::pw_strerror(EACCES, start, sizeof start);
    ASSERT_LT(4U, std::strlen(words));
    EXPECT_EQ(std::string(words, 4), start);
    EXPECT_EQ("", log.debug());
    pwr::pw_strerror(EACCES, start, 0);
    pwr::pw_strerror(EACCES, nullptr, 8);
    EXPECT_EQ(words[0], start[0]);
    EXPECT_EQ(2U, log.count("WARNING: strerror_s failed to get description of previous error\n"));
}

TEST(PwFileExistsTest, TellsReadableFiles)
{
    const std::string path = "pw_fileExists.txt";
    std::ofstream{path};
    EXPECT_TRUE(pwr::pw_fileExists(path.c_str()));
    std::filesystem::remove(path);
    EXPECT_FALSE(pwr::pw_fileExists(path.c_str()));
    EXPECT_FALSE(pwr::pw_fileExists("."));
    EXPECT_FALSE(pwr::pw_fileExists(""));
    EXPECT_FALSE(pwr::pw_fileExists(nullptr));
}

TEST(PwGetenvTest, GivesValueAndNeed)
{
    setVariable("QUORVANE_TEST_VALUE", "12345");
    const struct {
        unsigned long long size;
        const char* text;
    } cases[] = {{16, "12345"}, {6, "12345"}, {5, ""}, {1, ""}};
    for (const auto& c : cases) {
        unsigned long long required = 99;
        char buffer[16] = "before";
        pwr::pw_getenv(&required, buffer, c.size, "QUORVANE_TEST_VALUE");
        EXPECT_EQ(6U, required) << c.size;
        EXPECT_STREQ(c.text, buffer) << c.size;
        std::strcpy(buffer, "before");
        pwr::pw_getenv(nullptr, buffer, c.size, "QUORVANE_TEST_VALUE");
        EXPECT_STREQ(c.text, buffer) << c.size;
    }
    unsigned long long required = 99;
    pwr::pw_getenv(&required, nullptr, 0, "QUORVANE_TEST_VALUE");
    EXPECT_EQ(6U, required);
}

TEST(PwGetenvTest, MissingVariableNeedsNothing)
{
    for (const char* name : {"QUORVANE_TEST_NOT_SET", static_cast<const char*>(nullptr)}) {
        unsigned long long required = 99;
        char buffer[16] = "before";
        pwr::pw_getenv(&required, buffer, sizeof buffer, name);
        EXPECT_EQ(0U, required);
        EXPECT_STREQ("", buffer);
    }
}

TEST(PwFreopenTest, PointsAStreamAtAnotherFile)
{
    FILE* stream = std::fopen("pw_freopen_1.txt", "wb");
    ASSERT_NE(nullptr, stream);
    std::fputs("one", stream);
    FILE* result = nullptr;
    ASSERT_EQ(0, pwr::pw_freopen(&result, "pw_freopen_2.txt", "w", stream));
    ASSERT_EQ(stream, result);
    std::fputs("two\n", result);
    std::fclose(result);
    EXPECT_EQ("one", content("pw_freopen_1.txt"));
    EXPECT_EQ("two\n", content("pw_freopen_2.txt"));
    std::filesystem::remove("pw_freopen_1.txt");
    std::filesystem::remove("pw_freopen_2.txt");
}

TEST(PwFreopenTest, FailureGivesTheErrorNumberAndNull)
{
    FILE* result = stdin;
    EXPECT_EQ(EINVAL, pwr::pw_freopen(&result, nullptr, "r", stdin));
    EXPECT_EQ(nullptr, result);
    EXPECT_EQ(EINVAL, pwr::pw_freopen(nullptr, "x", "r", stdin));
    result = stdin;
    EXPECT_EQ(ENOENT, pwr::pw_freopen(&result, "no-such-file", "r", stdin));    // closes the stream
    EXPECT_EQ(nullptr, result);
}

TEST(PwDup2Test, TwoStreamsWriteToOneFile)
{
    FILE* from = std::fopen("pw_dup2_from.txt", "wb");
    FILE* to = std::fopen("pw_dup2_to.txt", "wb");
    ASSERT_NE(nullptr, from);
    ASSERT_NE(nullptr, to);
    EXPECT_EQ(0, pwr::pw_dup2(from, to));
    std::fputs("a", from);
    std::fflush(from);
    std::fputs("b", to);
    std::fclose(to);
    std::fclose(from);
    EXPECT_EQ("ab", content("pw_dup2_from.txt"));
    EXPECT_EQ("", content("pw_dup2_to.txt"));
    std::filesystem::remove("pw_dup2_from.txt");
    std::filesystem::remove("pw_dup2_to.txt");
    EXPECT_EQ(-1, pwr::pw_dup2(nullptr, stdout));
    EXPECT_EQ(-1, pwr::pw_dup2(stdout, nullptr));
}

}    // namespace
