#pragma once

#include <cstdint>

namespace pwr::os {

// The language-neutral version information that Windows' programs, libraries and drivers carry.
class FileVersions {
public:
    virtual ~FileVersions() = default;

    // The size of the file's version information in bytes; 0 when it has none or can't be read.
    virtual std::uint32_t informationSize(const wchar_t* path) = 0;

    // Fills a block of that size. False when the file can't be read any more.
    virtual bool readInformation(const wchar_t* path, std::uint32_t sizeBytes, void* block) = 0;

    // The file's version in such a block: four numbers of 16 bits, the first in the high half of `high`, the last in
    // the low half of `low`. False, with nothing changed, when the block has none.
    virtual bool fileVersion(const void* block, std::uint32_t sizeBytes, std::uint32_t& high, std::uint32_t& low) = 0;
};

FileVersions& systemFileVersions();

}    // namespace pwr::os
