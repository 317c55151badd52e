#include "runtime/os/Files.h"

#include "runtime/os/Os.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

using pwr::os::Files;

class FilesTest : public testing::Test {
protected:
    void SetUp() override { clean(); }
    void TearDown() override { clean(); }

    int create(const std::string& path)
    {
        int lastError = -1;
        const bool created = m_files.createDirectory(path, lastError);
        EXPECT_EQ(created, lastError == 0) << path;
        return lastError;
    }

    Files& m_files = *pwr::os::current().files;
    const std::string m_folder = "FilesTestFolder";
    const std::string m_file = "FilesTestFile";

private:
    void clean()
    {
        std::filesystem::remove_all(m_folder);
        std::filesystem::remove_all(m_file);
    }
};

TEST_F(FilesTest, FailedDirectoriesGiveTheWindowsCode)
{
    const std::string separator(1, m_files.pathSeparator());
    std::ofstream{m_file};
    EXPECT_EQ(0, create(m_folder));
    EXPECT_EQ(183, create(m_folder));
    EXPECT_EQ(183, create(m_file));
    EXPECT_EQ(0, create(m_folder + separator + "inner"));
    EXPECT_EQ(3, create(m_folder + separator + "missing" + separator + "inner"));
    EXPECT_EQ(3, create(m_file + separator + "inner"));
    EXPECT_EQ(3, create(""));
}

TEST_F(FilesTest, QueryTellsDirectoriesFromFilesAndFromNothing)
{
    create(m_folder);
    std::ofstream{m_file};
    bool isDirectory = false;
    EXPECT_EQ(0, m_files.queryDirectory(m_folder, isDirectory));
    EXPECT_TRUE(isDirectory);
    isDirectory = false;
    EXPECT_EQ(0, m_files.queryDirectory(m_folder + m_files.pathSeparator(), isDirectory));
    EXPECT_TRUE(isDirectory);
    isDirectory = false;
    EXPECT_EQ(0, m_files.queryDirectory(std::string(1, m_files.pathSeparator()), isDirectory));
    EXPECT_TRUE(isDirectory);
    EXPECT_EQ(0, m_files.queryDirectory(m_file, isDirectory));
    EXPECT_FALSE(isDirectory);
    isDirectory = true;
    EXPECT_EQ(ENOENT, m_files.queryDirectory("no-such-file", isDirectory));
    EXPECT_FALSE(isDirectory);
}

TEST_F(FilesTest, TextModeKeepsTheBytes)
{
    FILE* stream = nullptr;
    ASSERT_EQ(0, m_files.openStream(&stream, m_file.c_str(), "w"));
    std::fputs("a\nb\x1a"
               "c\r\n",
               stream);
    std::fclose(stream);
    ASSERT_EQ(0, m_files.openStream(&stream, m_file.c_str(), "r+"));
    char bytes[16] = {};
    EXPECT_EQ(7U, std::fread(bytes, 1, sizeof bytes, stream));
    std::fclose(stream);
    EXPECT_STREQ("a\nb\x1a"
                 "c\r\n",
                 bytes);
}

TEST_F(FilesTest, StreamThatCannotBeOpenedIsNull)
{
    create(m_folder);
    FILE* stream = stdout;
    EXPECT_EQ(ENOENT, m_files.openStream(&stream, "no-such-file", "r"));
    EXPECT_EQ(nullptr, stream);
    stream = stdout;
    EXPECT_NE(0, m_files.openStream(&stream, m_folder.c_str(), "r"));
    EXPECT_EQ(nullptr, stream);
}

}    // namespace
