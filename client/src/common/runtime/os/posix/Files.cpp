#include "runtime/os/Files.h"
#include "runtime/os/posix/WindowsCodes.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pwr::os {

namespace {

// A directory that can't be created for a missing parent is told apart from a missing file.
int directoryError(int errnum)
{
    return errnum == ENOENT ? 3 : windowsCode(errnum);
}

int failure()
{
    return errno != 0 ? errno : EINVAL;
}

bool isDirectoryStream(FILE* stream)
{
    struct stat status {};
    return fstat(fileno(stream), &status) == 0 && S_ISDIR(status.st_mode);
}

class PosixFiles : public Files {
public:
    char pathSeparator() const override { return '/'; }

    bool createDirectory(const std::string& path, int& lastError) override
    {
        lastError = 0;
        if (mkdir(path.c_str(), S_IRWXU | S_IRGRP | S_IXGRP | S_IROTH | S_IXOTH) == 0) return true;
        lastError = directoryError(errno);
        return false;
    }

    int queryDirectory(const std::string& path, bool& isDirectory) override
    {
        isDirectory = false;
        struct stat status {};
        errno = 0;
        if (stat(path.c_str(), &status) != 0) return failure();
        isDirectory = S_ISDIR(status.st_mode);
        return 0;
    }

    int openStream(FILE** stream, const char* path, const char* mode) override
    {
        *stream = nullptr;
        errno = 0;
        FILE* opened = std::fopen(path, mode);
        if (opened == nullptr) return failure();
        // A directory opens for reading here, and only reading it would fail.
        if (isDirectoryStream(opened)) {
            std::fclose(opened);
            return EISDIR;
        }
        *stream = opened;
        return 0;
    }

    int reopenStream(FILE** result, const char* path, const char* mode, FILE* stream) override
    {
        errno = 0;
        *result = std::freopen(path, mode, stream);
        return *result != nullptr ? 0 : failure();
    }

    int openDescriptor(int& fd, const char* path, int flags) override
    {
        errno = 0;
        fd = open(path, flags, S_IRUSR | S_IWUSR);
        return fd >= 0 ? 0 : failure();
    }

    int duplicateDescriptor(FILE* from, FILE* to) override { return dup2(fileno(from), fileno(to)) >= 0 ? 0 : -1; }
};

}    // namespace

Files& systemFiles()
{
    static PosixFiles s_files;
    return s_files;
}

}    // namespace pwr::os
