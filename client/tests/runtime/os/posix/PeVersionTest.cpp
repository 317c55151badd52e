#include "runtime/os/posix/PeVersion.h"

#include "runtime/OsInfo.h"
#include "support/PeFile.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

using namespace pwr::os;

class Bytes : public ByteSource {
public:
    explicit Bytes(std::string bytes) : m_bytes(std::move(bytes)) {}
    std::uint64_t sizeBytes() const override { return m_bytes.size(); }
    bool read(std::uint64_t offset, void* to, std::size_t count) override
    {
        EXPECT_LE(offset + count, m_bytes.size());
        std::memcpy(to, m_bytes.data() + offset, count);
        return true;
    }

private:
    std::string m_bytes;
};

constexpr std::size_t SECTION = test::PeFile::SECTION_OFFSET;

std::string goodFile()
{
    return test::PeFile{{{0x409, 1, 1}, {0, 0x0001'0002, 0x0003'0004}}}.bytes();
}

std::string changed(std::size_t at, const std::string& bytes)
{
    std::string file = goodFile();
    return file.replace(at, bytes.size(), bytes);
}

TEST(PeVersionTest, NeutralLanguageComesFirst)
{
    const std::string file = goodFile();
    Bytes source(file);
    Extent found;
    ASSERT_TRUE(findVersionResource(source, found));
    EXPECT_EQ(test::PeFile::BLOCK_BYTES, found.sizeBytes);
    std::uint32_t high = 0;
    std::uint32_t low = 0;
    const auto* block = reinterpret_cast<const unsigned char*>(file.data() + found.offset);
    ASSERT_TRUE(readFileVersion(block, found.sizeBytes, high, low));
    EXPECT_EQ(0x0001'0002U, high);
    EXPECT_EQ(0x0003'0004U, low);
}

TEST(PeVersionTest, NothingThatIsCutOrNamedOtherwiseIsAVersion)
{
    const std::string file = goodFile();
    Bytes source(file);
    Extent found;
    ASSERT_TRUE(findVersionResource(source, found));
    const std::vector<unsigned char> block(file.begin() + static_cast<std::ptrdiff_t>(found.offset),
                                           file.begin() + static_cast<std::ptrdiff_t>(found.offset + found.sizeBytes));
    std::uint32_t high = 7;
    std::uint32_t low = 8;
    for (std::size_t size = 0; size < block.size(); ++size) {
        const std::vector<unsigned char> part(block.begin(), block.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_FALSE(readFileVersion(part.data(), part.size(), high, low)) << size;
    }
    for (const std::size_t at : {0U, 2U, 6U, 34U, 36U, 40U, 43U}) {    // lengths, key with its end, mark
        std::vector<unsigned char> other = block;
        --other[at];
        EXPECT_FALSE(readFileVersion(other.data(), other.size(), high, low)) << at;
    }
    EXPECT_TRUE(high == 7 && low == 8);
    for (std::size_t size = 0; size < found.offset + found.sizeBytes; ++size) {
        Bytes part(file.substr(0, size));
        EXPECT_FALSE(findVersionResource(part, found)) << size;
    }
}

TEST(PeVersionTest, NumbersThatPointAstrayFindNothing)
{
    const struct {
        const char* what;
        std::size_t at;
        std::string bytes;
    } cases[] = {
        {"PE header behind the file", 0x3C, "\xFF\xFF\xFF\xFF"},
        {"no optional header", 64 + 20, std::string("\0\0", 2)},
        {"unknown layout", 88, "\x07\x01"},
        {"two directories", 88 + 108, std::string("\2\0\0\0", 4)},
        {"no resources", 88 + 128, std::string("\0\0\0\0", 4)},
        {"resources outside the sections", 88 + 128, std::string("\0\x30\0\0", 4)},
        {"more sections than bytes", 64 + 6, "\xFF\xFF"},
        {"section behind the file", 88 + 240 + 20, "\xFF\xFF\xFF\x7F"},
        {"more entries than bytes", SECTION + 14, "\xFF\xFF"},
        {"no entries", SECTION + 14, std::string("\0\0", 2)},
        {"other type of resource", SECTION + 16, "\x03"},
        {"type without a subdirectory", SECTION + 20, std::string("\x18\0\0\0", 4)},
        {"name without a subdirectory", SECTION + 44, std::string("\x30\0\0\0", 4)},
        {"language with a subdirectory", SECTION + 76, std::string("\0\0\0\x80", 4)},
        {"leaf behind the section", SECTION + 76, "\xFF\xFF\xFF\x7F"},
        {"block behind the section", SECTION + 96, "\xFF\xFF\xFF\xFF"},
        {"block of too many bytes", SECTION + 100, "\xFF\xFF\xFF\xFF"},
        {"block of no bytes", SECTION + 100, std::string("\0\0\0\0", 4)},
    };
    for (const auto& c : cases) {
        Bytes source(changed(c.at, c.bytes));
        Extent found;
        EXPECT_FALSE(findVersionResource(source, found)) << c.what;
    }
    Bytes untouched(changed(SECTION, std::string(1, '\0')));
    Extent found;
    EXPECT_TRUE(findVersionResource(untouched, found));
}

TEST(PeVersionTest, WidePathsNameFilesBeyondAsciiInBothForms)
{
    const std::string path = "caf\xC3\xA9.sys";
    std::ofstream(path, std::ios::binary) << goodFile();
    qv_driver_version_info version{};
    EXPECT_TRUE(getFileVersion(stringToWstring(path).c_str(), version)) << "widened byte by byte";
    EXPECT_TRUE(getFileVersion(L"caf\u00E9.sys", version)) << "decoded";
    std::filesystem::remove(path);
    EXPECT_FALSE(getFileVersion(L"caf\u00E9.sys", version));
}

}    // namespace
