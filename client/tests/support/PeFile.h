#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace test {

// The smallest program file of Windows that has version information, at most four languages of it, in the layout of 32
// or of 64 bits.
//
//   const std::string bytes = PeFile{{{0, 0x0001'0002, 0x0003'0004}}}.bytes();    // neutral, version 1.2.3.4
struct PeFile {
    struct Version {
        std::uint32_t language;
        std::uint32_t high;
        std::uint32_t low;
    };
    std::vector<Version> versions;
    bool is64 = true;

    static constexpr std::uint32_t SECTION_OFFSET = 0x200;
    static constexpr std::uint32_t SECTION_ADDRESS = 0x1000;
    static constexpr std::uint32_t BLOCK_BYTES = 92;    // of a version's information

    std::string bytes() const
    {
        std::string file(2 * SECTION_OFFSET, '\0');
        const std::uint32_t optional = 64 + 24;
        const std::uint32_t directories = optional + (is64 ? 112 : 96);
        set(file, 0, {'M' | 'Z' << 8});
        set(file, 0x3C, {64, 'P' | 'E' << 8, 1U << 16 | (is64 ? 0x8664 : 0x14C)});    // one section
        set(file, 64 + 20, {0x2022U << 16 | (directories + 128 - optional), is64 ? 0x20BU : 0x10BU});
        set(file, optional + 32, {0x1000, SECTION_OFFSET});          // alignments
        set(file, optional + 56, {0x2000, SECTION_OFFSET, 0, 2});    // sizes of image and headers, subsystem
        set(file, directories - 4, {16});
        set(file, directories + 16, {SECTION_ADDRESS, SECTION_OFFSET});
        set(file, directories + 128,
            {'.' | 'r' << 8 | 's' << 16 | 'r' << 24, 'c', SECTION_OFFSET, SECTION_ADDRESS, SECTION_OFFSET,
             SECTION_OFFSET, 0, 0, 0, 0x40000040});
        setResources(file);
        return file;
    }

private:
    static void set(std::string& file, std::size_t at, const std::vector<std::uint32_t>& words)
    {
        for (std::size_t i = 0; i < 4 * words.size(); ++i)
            file[at + i] = static_cast<char>(words[i / 4] >> (8 * (i % 4)) & 0xFF);
    }

    // The directories of types, of names and of languages; the leaves; the blocks.
    void setResources(std::string& file) const
    {
        constexpr std::uint32_t subdirectory = 0x80000000U;
        const auto count = static_cast<std::uint32_t>(versions.size());
        std::uint32_t entry = 48 + 16;
        std::uint32_t leaf = entry + 8 * count;
        std::uint32_t block = leaf + 16 * count;
        set(file, SECTION_OFFSET + 12, {1U << 16, 16, subdirectory | 24});
        set(file, SECTION_OFFSET + 24 + 12, {1U << 16, 1, subdirectory | 48});
        set(file, SECTION_OFFSET + 48 + 12, {count << 16});
        for (const Version& version : versions) {
            set(file, SECTION_OFFSET + entry, {version.language, leaf});
            set(file, SECTION_OFFSET + leaf, {SECTION_ADDRESS + block, BLOCK_BYTES});
            setBlock(file, SECTION_OFFSET + block, version);
            entry += 8;
            leaf += 16;
            block += BLOCK_BYTES;
        }
    }

    static void setBlock(std::string& file, std::size_t at, const Version& version)
    {
        set(file, at, {52U << 16 | BLOCK_BYTES});
        for (std::size_t i = 0; i < 15; ++i)
            file[at + 6 + 2 * i] = "VS_VERSION_INFO"[i];
        set(file, at + 40, {0xFEEF04BD, 0x10000, version.high, version.low});
    }
};

}    // namespace test
