#include "runtime/os/Files.h"

#include <windows.h>
#include <errno.h>
#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <stdio.h>
#include <sys/stat.h>

namespace pwr::os {

namespace {

// The mode with which a stream's bytes are the file's bytes. One that names an encoding behind a comma is text for
// good.
std::string binaryMode(const std::string& mode)
{
    if (mode.find(',') != std::string::npos) return mode;
    std::string binary = mode;
    std::erase(binary, 't');
    return binary.find('b') == std::string::npos ? binary + 'b' : binary;
}

int failure()
{
    return errno != 0 ? errno : EINVAL;
}

class WindowsFiles : public Files {
public:
    char pathSeparator() const override { return '\\'; }

    bool createDirectory(const std::string& path, int& lastError) override
    {
        lastError = 0;
        if (CreateDirectoryA(path.c_str(), nullptr) != 0) return true;
        lastError = static_cast<int>(GetLastError());
        return false;
    }

    int queryDirectory(const std::string& path, bool& isDirectory) override
    {
        isDirectory = false;
        struct _stat64 status {};
        errno = 0;
        if (_stat64(withoutLastSeparator_i(path).c_str(), &status) != 0) return failure();
        isDirectory = (status.st_mode & _S_IFDIR) != 0;
        return 0;
    }

    int openStream(FILE** stream, const char* path, const char* mode) override
    {
        errno = 0;
        *stream = _fsopen(path, binaryMode(mode).c_str(), _SH_DENYNO);
        return *stream != nullptr ? 0 : failure();
    }

    int reopenStream(FILE** result, const char* path, const char* mode, FILE* stream) override
    {
        *result = nullptr;
        errno = 0;
        const int errnum = freopen_s(result, path, binaryMode(mode).c_str(), stream);
        if (errnum == 0 && *result != nullptr) return 0;
        *result = nullptr;
        return errnum != 0 ? errnum : failure();
    }

    int openDescriptor(int& fd, const char* path, int flags) override
    {
        constexpr int textFlags = _O_TEXT | _O_WTEXT | _O_U8TEXT | _O_U16TEXT;
        if ((flags & textFlags) == 0) flags |= _O_BINARY;
        const int errnum = _sopen_s(&fd, path, flags, _SH_DENYNO, _S_IREAD | _S_IWRITE);
        if (errnum != 0) fd = -1;
        return errnum;
    }

    int duplicateDescriptor(FILE* from, FILE* to) override
    {
        const int source = _fileno(from);
        const int target = _fileno(to);
        if (source < 0 || target < 0) return -1;
        return _dup2(source, target);
    }

private:
    // The status query knows a directory by its plain name only. A root keeps its separator.
    static std::string withoutLastSeparator_i(const std::string& path)
    {
        const std::size_t last = path.find_last_not_of("\\/");
        if (last == std::string::npos || path[last] == ':') return path;
        return path.substr(0, last + 1);
    }
};

}    // namespace

Files& systemFiles()
{
    static WindowsFiles s_files;
    return s_files;
}

}    // namespace pwr::os
