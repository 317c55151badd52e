#pragma once

#include <cstddef>
#include <cstdint>

namespace pwr::os {

// Bytes at known places: a file, or memory.
class ByteSource {
public:
    virtual ~ByteSource() = default;
    virtual std::uint64_t sizeBytes() const = 0;

    // All of them or false.
    virtual bool read(std::uint64_t offset, void* to, std::size_t count) = 0;
};

struct Extent {
    std::uint64_t offset = 0;
    std::uint32_t sizeBytes = 0;    // not 0 where something is found
};

// Finds the version resource of a PE file, 32 or 64 bits, the language-neutral one if there are several. False for
// other files, for a file without one, and where the headers point outside the file.
bool findVersionResource(ByteSource& file, Extent& resource);

// Reads the file version of a version resource: four numbers of 16 bits. False, with nothing changed, for other bytes.
bool readFileVersion(const unsigned char* resource, std::size_t sizeBytes, std::uint32_t& high, std::uint32_t& low);

}    // namespace pwr::os
