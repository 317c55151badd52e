#include "runtime/os/FileVersions.h"
#include "runtime/Utf8.h"
#include "runtime/os/posix/PeVersion.h"

#include <algorithm>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pwr::os {

namespace {

// Units that widening by sign extension made (0xFF80 to 0xFFFF) are bytes again, all others are characters.
std::string narrowPath(const wchar_t* path)
{
    std::string narrow;
    for (; *path != L'\0'; ++path) {
        const auto unit = static_cast<std::uint32_t>(*path);
        if (unit >= 0xFF80 && unit <= 0xFFFF) {
            narrow += static_cast<char>(unit & 0xFF);
        } else {
            pwr::appendUtf8(narrow, unit);
        }
    }
    return narrow;
}

// A regular file; anything else has no bytes.
class FileSource : public ByteSource {
public:
    explicit FileSource(const wchar_t* path) : m_fd(::open(narrowPath(path).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC))
    {
        struct stat status {};
        if (m_fd < 0 || fstat(m_fd, &status) != 0 || !S_ISREG(status.st_mode)) return;
        m_sizeBytes = static_cast<std::uint64_t>(status.st_size);
    }
    ~FileSource() override
    {
        if (m_fd >= 0) close(m_fd);
    }
    FileSource(const FileSource&) = delete;
    FileSource& operator=(const FileSource&) = delete;

    std::uint64_t sizeBytes() const override { return m_sizeBytes; }

    bool read(std::uint64_t offset, void* to, std::size_t count) override
    {
        char* next = static_cast<char*>(to);
        while (count > 0) {
            const ssize_t got = pread(m_fd, next, count, static_cast<off_t>(offset));
            if (got <= 0) return false;
            next += got;
            offset += static_cast<std::uint64_t>(got);
            count -= static_cast<std::size_t>(got);
        }
        return true;
    }

private:
    int m_fd;
    std::uint64_t m_sizeBytes = 0;
};

class PosixFileVersions : public FileVersions {
public:
    std::uint32_t informationSize(const wchar_t* path) override
    {
        FileSource file(path);
        Extent resource;
        return findVersionResource(file, resource) ? resource.sizeBytes : 0;
    }

    // The file may have changed since it was asked for the size.
    bool readInformation(const wchar_t* path, std::uint32_t sizeBytes, void* block) override
    {
        FileSource file(path);
        Extent resource;
        if (!findVersionResource(file, resource)) return false;
        std::memset(block, 0, sizeBytes);
        return file.read(resource.offset, block, std::min(sizeBytes, resource.sizeBytes));
    }

    bool fileVersion(const void* block, std::uint32_t sizeBytes, std::uint32_t& high, std::uint32_t& low) override
    {
        return readFileVersion(static_cast<const unsigned char*>(block), sizeBytes, high, low);
    }
};

}    // namespace

FileVersions& systemFileVersions()
{
    static PosixFileVersions s_fileVersions;
    return s_fileVersions;
}

}    // namespace pwr::os
