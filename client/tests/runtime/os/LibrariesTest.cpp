#include "runtime/os/Libraries.h"

#include "runtime/os/Os.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

using pwr::os::Libraries;

TEST(LibrariesTest, ProgramKnowsItsPath)
{
    std::string path = "before";
    unsigned long lastError = 1;
    ASSERT_TRUE(pwr::os::current().libraries->executablePath(path, lastError));
    EXPECT_EQ(0U, lastError);
    EXPECT_TRUE(std::filesystem::is_regular_file(path)) << path;
    EXPECT_NE(std::string::npos, path.find("runtime_internal_test")) << path;
}

TEST(LibrariesTest, FailedLoadGivesTheWindowsCode)
{
    Libraries& libraries = *pwr::os::current().libraries;
    const std::string text = "LibrariesTestFile.txt";
    std::ofstream(text) << "no library";
    const struct {
        std::string path;
        unsigned long code;
    } cases[] = {
        {"no-such-library.dll", 126},
        {(std::filesystem::current_path() / "no-such-library.dll").string(), 126},
        {(std::filesystem::current_path() / text).string(), 193},
    };
    for (const auto& c : cases) {
        unsigned long lastError = 0;
        EXPECT_EQ(nullptr, libraries.load(c.path, lastError)) << c.path;
        EXPECT_EQ(c.code, lastError) << c.path;
    }
    unsigned long lastError = 0;
    EXPECT_EQ(nullptr, libraries.load("", lastError));    // not the program itself
    EXPECT_NE(0U, lastError);
    EXPECT_EQ(nullptr, libraries.symbol(nullptr, "main"));
    libraries.unload(nullptr);
    std::filesystem::remove(text);
}

}    // namespace
