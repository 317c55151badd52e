#include "runtime/OsInfo.h"

#include "support/PeFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

constexpr std::uint32_t HIGH = 10U << 16 | 2;
constexpr std::uint32_t LOW = 1234U << 16 | 5;

// Version files as this system reads them.
class FileVersionsTest : public testing::Test {
protected:
    void TearDown() override { std::filesystem::remove(m_path); }

    bool read(const std::string& bytes)
    {
        std::ofstream(m_path, std::ios::binary) << bytes;
        return getFileVersion(m_path.wstring().c_str(), m_version);
    }

    std::string text() const
    {
        return std::to_string(m_version.first) + "." + std::to_string(m_version.second) + "." +
               std::to_string(m_version.third);
    }

    const std::filesystem::path m_path = "FileVersionsTest.sys";
    qv_driver_version_info m_version{7, 8, 9};
};

TEST_F(FileVersionsTest, DriversOfBothWidthsTellTheirFirstThreeNumbers)
{
    for (const bool is64 : {true, false}) {
        m_version = {};
        EXPECT_TRUE(read(test::PeFile{{{0, HIGH, LOW}}, is64}.bytes())) << is64;
        EXPECT_EQ("10.2.1234", text());
    }
}

TEST_F(FileVersionsTest, AnyLanguageServesWhereTheNeutralOneIsMissing)
{
    EXPECT_TRUE(read(test::PeFile{{{0x409, HIGH, LOW}}}.bytes()));
    EXPECT_EQ("10.2.1234", text());
}

TEST_F(FileVersionsTest, OtherFilesLeaveTheVersionAlone)
{
    const std::string good = test::PeFile{{{0, HIGH, LOW}}}.bytes();
    std::string noMark = good;
    noMark.replace(noMark.find("MZ"), 2, "ZM");
    std::string noProgram = good;
    noProgram.replace(noProgram.find("PE"), 2, "EP");
    std::string otherMark = good;
    otherMark[otherMark.find('\xBD', test::PeFile::SECTION_OFFSET)] = 'x';
    for (const std::string& bytes : {std::string(), std::string("text"), noMark, noProgram, otherMark}) {
        EXPECT_FALSE(read(bytes));
    }
    EXPECT_FALSE(getFileVersion(L"no-such-file.sys", m_version));
    EXPECT_FALSE(getFileVersion(L".", m_version));
    EXPECT_FALSE(getFileVersion(L"", m_version));
    EXPECT_FALSE(getFileVersion(nullptr, m_version));
    EXPECT_EQ("7.8.9", text());
}

}    // namespace
