#include "config/pw_utils.h"

#include "support/DoorGuard.h"
#include "support/FakeFiles.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <deque>
#include <filesystem>
#include <string>
#include <vector>

using namespace pwr;
using test::DoorGuard;
using test::FakeFiles;
using test::LogCapture;

namespace {

class NoErrorTexts : public os::ErrorTexts {
public:
    bool describeErrno(int, char* buffer, std::size_t) override
    {
        buffer[0] = '\0';
        return false;
    }
    std::string describeCode(std::uint32_t) override { return {}; }
};

class OneVariable : public os::Environment {
public:
    bool get(const char* name, std::string& value) override
    {
        value = text;
        return std::strcmp(name, "QV_SWITCH") == 0;
    }
    std::string text;
};

class FakeProcessor : public os::Processor {
public:
    os::CpuidRegisters cpuid(unsigned leaf, unsigned subLeaf) override { return {leaf, subLeaf, 3, 4}; }
};

class PathsTest : public testing::Test {
protected:
    ~PathsTest() override { std::filesystem::remove_all(m_folder); }

    const std::string m_folder = "PathsTestFolder";
    LogCapture m_log{2};
    DoorGuard m_door;
};

TEST_F(PathsTest, MkpathCreatesWhatStandsAboveTheFile)
{
    const struct {
        char separator;
        const char* path;
        std::vector<std::string> created;
    } cases[] = {
        {'\\', "file", {}},
        {'\\', "", {}},
        {'\\', "a/b\\file", {"a", "a\\b"}},
        {'\\', "C:\\file", {}},
        {'\\', "C:/a/b/file", {"C:\\a", "C:\\a\\b"}},
        {'\\', "C:a\\b\\file", {"C:a\\b"}},
        {'\\', "\\a\\file", {"\\a"}},
        {'\\', "a\\\\b\\file", {"a", "a\\\\b"}},
        {'\\', "\\\\server\\share\\file", {}},
        {'\\', "//server/share/a/file", {"\\\\server\\share\\a"}},
        {'\\', "\\\\server", {}},
        {'\\', "\\\\server\\file", {}},
        {'/', "/", {}},
        {'/', "/a/b/", {"/a", "/a/b"}},
        {'/', "//a//b/file", {"//a", "//a//b"}},
        {'/', "a\\b/file", {"a\\b"}},
    };
    for (const auto& c : cases) {
        FakeFiles files(c.separator);
        m_door->files = &files;
        EXPECT_EQ(0, mkpath(c.path)) << c.path;
        EXPECT_EQ(c.created, files.created) << c.path;
    }
    EXPECT_EQ("", m_log.debug());
}

TEST_F(PathsTest, ADirectoryThatExistsIsNoFailure)
{
    FakeFiles files('\\');
    files.failures = {{"a", 183}, {"a\\b", 5}};
    m_door->files = &files;
    EXPECT_EQ(-1, mkpath("a/b/c/file"));
    EXPECT_EQ(2U, files.created.size());
    EXPECT_EQ("WARNING: CreateDirectoryA returned error: 0, Last Error: 5\n", m_log.debug());
    m_log.clear();

    FILE* handle = stdin;
    EXPECT_FALSE(openFileHandle(&handle, "a/b/file", "ab"));
    EXPECT_EQ(nullptr, handle);
    EXPECT_EQ(0, files.opens);
    EXPECT_EQ("WARNING: CreateDirectoryA returned error: 0, Last Error: 5\nWARNING: Error creating file: a/b/file!\n",
              m_log.debug());
}

TEST_F(PathsTest, AFileThatCannotBeOpenedIsTold)
{
    FILE* handle = nullptr;
    EXPECT_FALSE(openFileHandle(&handle, "no-such-file", "r"));
    EXPECT_EQ("WARNING: Error opening file: no-such-file, errnum: 2, error: No such file or directory\n",
              m_log.debug());
    m_log.clear();

    FakeFiles files('/');
    NoErrorTexts noTexts;
    m_door->files = &files;
    m_door->errorTexts = &noTexts;
    EXPECT_FALSE(openFileHandle(&handle, "file", "w"));
    EXPECT_EQ("WARNING: strerror_s failed to get description of previous error\n"
              "WARNING: Error opening file: file, errnum: " +
                  std::to_string(EACCES) + ", error: \n",
              m_log.debug());
    m_log.clear();
    for (const char* mode : {"", "x", "+r", "W"}) {
        EXPECT_FALSE(openFileHandle(&handle, "a/file", mode)) << mode;
    }
    EXPECT_EQ(1, files.opens);
    EXPECT_TRUE(files.created.empty());
    EXPECT_EQ("", m_log.debug());
}

TEST_F(PathsTest, FilesAreOpenedInFoldersThatAreMade)
{
    const std::string path = m_folder + "/a//b/file";
    FILE* handle = nullptr;
    for (const char* mode : {"w", "a", "r"}) {
        ASSERT_TRUE(openFileHandle(&handle, path.c_str(), mode)) << mode;
        std::fclose(handle);
    }
    EXPECT_TRUE(isDir(m_folder + "/a/b"));
    EXPECT_FALSE(isDir(path));
    EXPECT_EQ("", m_log.debug());
    EXPECT_FALSE(isDir(m_folder + "/c"));
    EXPECT_EQ("WARNING: stat error in isDir for file PathsTestFolder/c: No such file or directory\n", m_log.debug());
    m_log.clear();
    EXPECT_EQ(-1, mkpath(path + "/below/file"));
    EXPECT_TRUE(m_log.contains("WARNING: CreateDirectoryA returned error: 0, Last Error: 3\n"));
}

TEST_F(PathsTest, GlobTakesNoWildcards)
{
    const struct {
        const char* path;
        bool result;
        std::deque<std::string> added;
    } cases[] = {
        {"a b", true, {"a b"}}, {"\"a\"/b", true, {"a/b"}}, {"", false, {}}, {"\"\"", false, {}},
        {"*.conf", true, {}},   {"a[", true, {}},           {"]", true, {}}, {"^", true, {}},
        {"a?", true, {"a?"}},
    };
    for (const auto& c : cases) {
        std::deque<std::string> paths;
        EXPECT_EQ(c.result, doGlob(c.path, paths)) << c.path;
        EXPECT_EQ(c.added, paths) << c.path;
    }
    EXPECT_EQ("", m_log.debug());
    m_log.environment().setVerbosity(4);
    std::deque<std::string> paths;
    doGlob("\"a*", paths);
    EXPECT_EQ("4INFO: Glob: original path = \"a*, trimmed path = a*\n"
              "4INFO: Glob is executing command: ls 2>/dev/null a*\n",
              m_log.debug());
}

TEST_F(PathsTest, OnlyASingleYSwitchesOn)
{
    OneVariable environment;
    m_door->environment = &environment;
    const struct {
        const char* text;
        bool result;
    } cases[] = {{"y", true}, {"Y", true}, {"", false}, {"yes", false}, {"n", false}, {"1", false}, {" y", false}};
    for (const auto& c : cases) {
        environment.text = c.text;
        EXPECT_EQ(c.result, check_env("QV_SWITCH")) << c.text;
        EXPECT_FALSE(check_env("QV_OTHER")) << c.text;
    }
    EXPECT_FALSE(check_env(nullptr));
    EXPECT_EQ("WARNING: NULL name passed to check_env!\n", m_log.debug());
}

TEST_F(PathsTest, CpuidAsksForSubLeafZero)
{
    FakeProcessor processor;
    m_door->processor = &processor;
    unsigned eax = 9;
    unsigned ebx = 9;
    unsigned ecx = 9;
    unsigned edx = 9;
    getCpuid(0x1A, &eax, &ebx, &ecx, &edx);
    EXPECT_EQ(std::vector<unsigned>({0x1A, 0, 3, 4}), std::vector<unsigned>({eax, ebx, ecx, edx}));
    getCpuid(1, nullptr, nullptr, nullptr, nullptr);
}

}    // namespace
