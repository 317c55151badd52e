#include "runtime/os/posix/PeVersion.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <vector>

namespace pwr::os {

namespace {

// Offsets are from the start of the structure that a comment names.
constexpr std::uint64_t DOS_HEADER_BYTES = 64;
constexpr std::size_t DOS_NEW_HEADER = 0x3C;    // place of the PE header
constexpr std::size_t PE_HEADER_BYTES = 24;     // mark and file header
constexpr std::size_t PE_SECTION_COUNT = 6;
constexpr std::size_t PE_OPTIONAL_SIZE = 20;
constexpr std::size_t SECTION_BYTES = 40;
constexpr std::size_t RESOURCE_DIRECTORY = 2;    // number among the data directories
constexpr std::size_t DIRECTORY_BYTES = 16;
constexpr std::size_t ENTRY_BYTES = 8;
constexpr std::uint32_t SUBDIRECTORY = 0x80000000U;
constexpr std::uint32_t VERSION_TYPE = 16;
constexpr std::uint32_t VERSION_ID = 1;
constexpr std::uint32_t NEUTRAL_LANGUAGE = 0;

std::uint16_t u16(const unsigned char* at)
{
    return static_cast<std::uint16_t>(at[0] | at[1] << 8);
}

std::uint32_t u32(const unsigned char* at)
{
    return u16(at) | static_cast<std::uint32_t>(u16(at + 2)) << 16;
}

// A PE file seen through its section table: addresses in the loaded image are turned into places in the file.
class PeFile {
public:
    explicit PeFile(ByteSource& file) : m_file(file) {}

    bool open()
    {
        unsigned char dos[DOS_HEADER_BYTES];
        if (!readFile_i(0, dos, sizeof dos) || std::memcmp(dos, "MZ", 2) != 0) return false;
        const std::uint64_t header = u32(dos + DOS_NEW_HEADER);
        unsigned char pe[PE_HEADER_BYTES];
        if (!readFile_i(header, pe, sizeof pe) || std::memcmp(pe, "PE\0\0", 4) != 0) return false;
        const std::size_t optionalSize = u16(pe + PE_OPTIONAL_SIZE);
        return readOptional_i(header + PE_HEADER_BYTES, optionalSize) &&
               readSections_i(header + PE_HEADER_BYTES + optionalSize, u16(pe + PE_SECTION_COUNT));
    }

    // The resource tree has three levels: type, name, language.
    bool findVersion(Extent& resource)
    {
        std::uint32_t names = 0;
        std::uint32_t languages = 0;
        std::uint32_t leaf = 0;
        if (!findEntry_i(0, VERSION_TYPE, false, names) || (names & SUBDIRECTORY) == 0) return false;
        if (!findEntry_i(names & ~SUBDIRECTORY, VERSION_ID, true, languages)) return false;
        if ((languages & SUBDIRECTORY) == 0) return false;
        if (!findEntry_i(languages & ~SUBDIRECTORY, NEUTRAL_LANGUAGE, true, leaf)) return false;
        return (leaf & SUBDIRECTORY) == 0 && readLeaf_i(leaf, resource);
    }

private:
    struct Section {
        std::uint32_t address;
        std::uint32_t sizeBytes;    // in the file
        std::uint32_t fileOffset;
    };

    bool isInFile_i(std::uint64_t offset, std::uint64_t count) const
    {
        return offset <= m_file.sizeBytes() && count <= m_file.sizeBytes() - offset;
    }

    bool readFile_i(std::uint64_t offset, void* to, std::size_t count)
    {
        return isInFile_i(offset, count) && m_file.read(offset, to, count);
    }

    // The number of data directories stands right before the first of them.
    bool readOptional_i(std::uint64_t offset, std::size_t sizeBytes)
    {
        std::vector<unsigned char> header(sizeBytes);
        if (sizeBytes < 2 || !readFile_i(offset, header.data(), sizeBytes)) return false;
        const std::uint16_t magic = u16(header.data());
        if (magic != 0x10B && magic != 0x20B) return false;
        const std::size_t directories = magic == 0x10B ? 96 : 112;
        const std::size_t entry = directories + RESOURCE_DIRECTORY * 8;
        if (sizeBytes < entry + 8 || u32(&header[directories - 4]) <= RESOURCE_DIRECTORY) return false;
        m_resources = u32(&header[entry]);
        return m_resources != 0;
    }

    bool readSections_i(std::uint64_t offset, std::size_t count)
    {
        if (!isInFile_i(offset, count * SECTION_BYTES)) return false;
        std::vector<unsigned char> table(count * SECTION_BYTES);
        if (!m_file.read(offset, table.data(), table.size())) return false;
        for (std::size_t at = 0; at < table.size(); at += SECTION_BYTES) {
            m_sections.push_back({u32(&table[at + 12]), u32(&table[at + 16]), u32(&table[at + 20])});
        }
        return true;
    }

    bool locate_i(std::uint64_t address, std::uint64_t count, std::uint64_t& offset) const
    {
        const auto found = std::find_if(m_sections.begin(), m_sections.end(), [address, count](const Section& section) {
            return address >= section.address && address - section.address <= section.sizeBytes &&
                   count <= section.sizeBytes - (address - section.address);
        });
        if (found == m_sections.end()) return false;
        offset = found->fileOffset + (address - found->address);
        return isInFile_i(offset, count);
    }

    // `place` counts from the start of the resources.
    bool readResource_i(std::uint64_t place, void* to, std::size_t count)
    {
        std::uint64_t offset = 0;
        return locate_i(m_resources + place, count, offset) && m_file.read(offset, to, count);
    }

    // The target of the entry `id` in a directory, or of the first one with `orFirst`.
    bool findEntry_i(std::uint32_t directory, std::uint32_t id, bool orFirst, std::uint32_t& target)
    {
        unsigned char head[DIRECTORY_BYTES];
        if (!readResource_i(directory, head, sizeof head)) return false;
        const std::size_t size = (std::size_t{u16(head + 12)} + u16(head + 14)) * ENTRY_BYTES;
        std::uint64_t offset = 0;
        if (size == 0 || !locate_i(m_resources + std::uint64_t{directory} + DIRECTORY_BYTES, size, offset))
            return false;
        std::vector<unsigned char> entries(size);
        if (!m_file.read(offset, entries.data(), size)) return false;

        if (orFirst) target = u32(&entries[4]);
        for (std::size_t at = 0; at < size; at += ENTRY_BYTES) {
            if (u32(&entries[at]) != id) continue;
            target = u32(&entries[at + 4]);
            return true;
        }
        return orFirst;
    }

    bool readLeaf_i(std::uint32_t leaf, Extent& resource)
    {
        unsigned char entry[16];
        if (!readResource_i(leaf, entry, sizeof entry)) return false;
        const std::uint32_t size = u32(entry + 4);
        std::uint64_t offset = 0;
        if (size == 0 || !locate_i(u32(entry), size, offset)) return false;
        resource = {offset, size};
        return true;
    }

    ByteSource& m_file;
    std::uint64_t m_resources = 0;    // address of the resource tree
    std::vector<Section> m_sections;
};

}    // namespace

bool findVersionResource(ByteSource& file, Extent& resource)
{
    PeFile pe(file);
    return pe.open() && pe.findVersion(resource);
}

// The resource: its length, the length of its value, its kind (16 bits each), the key with its end mark in 16-bit
// units, padding to 4 bytes, the value. The value: mark, layout version, and the file version in two words.
bool readFileVersion(const unsigned char* resource, std::size_t sizeBytes, std::uint32_t& high, std::uint32_t& low)
{
    constexpr char key[] = "VS_VERSION_INFO";
    constexpr std::size_t keyOffset = 6;
    constexpr std::size_t value = 40;
    constexpr std::size_t valueBytes = 52;
    constexpr std::uint32_t mark = 0xFEEF04BD;
    if (sizeBytes < value + valueBytes) return false;
    if (u16(resource) < value + valueBytes || u16(resource + 2) < valueBytes) return false;
    for (std::size_t i = 0; i < sizeof key; ++i) {
        if (u16(resource + keyOffset + 2 * i) != static_cast<unsigned char>(key[i])) return false;
    }
    if (u32(resource + value) != mark) return false;
    high = u32(resource + value + 8);
    low = u32(resource + value + 12);
    return true;
}

}    // namespace pwr::os
