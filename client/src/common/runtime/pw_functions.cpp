#include "runtime/pw_functions.h"

#include "runtime/Log.h"
#include "runtime/os/Os.h"

#include <cerrno>
#include <cstring>

int pw_vsnprintf(char* buffer, size_t size, const char* format, va_list args)
{
    const bool hasRoom = buffer != nullptr && size != 0;
    if (hasRoom) buffer[0] = '\0';
    va_list again;
    va_copy(again, args);
    int length = std::vsnprintf(hasRoom ? buffer : nullptr, hasRoom ? size : 0, format, args);
    if (hasRoom) buffer[size - 1] = '\0';
    if (length < 0) length = std::vsnprintf(nullptr, 0, format, again);
    va_end(again);
    return length < 0 ? -1 : length;
}

int pw_snprintf(char* buffer, size_t size, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    const int length = pw_vsnprintf(buffer, size, format, args);
    va_end(args);
    return length;
}

char* pw_strncpy(char* destination, const char* source, size_t size)
{
    if (destination == nullptr || size == 0) return destination;
    const size_t length = source != nullptr ? strnlen(source, size - 1) : 0;
    if (length > 0) std::memmove(destination, source, length);
    destination[length] = '\0';
    destination[size - 1] = '\0';
    return destination;
}

namespace pwr {

int pw_open(int& fd, const char* path, int flags)
{
    fd = -1;
    const int errnum = path != nullptr ? os::current().files->openDescriptor(fd, path, flags) : EINVAL;
    if (errnum == 0) return 0;

    fd = -1;
    char text[256] = "";
    pw_strerror(errnum, text, sizeof text);
    QV_LOG_WARNING("WARNING: Error opening file: %s, errnum: %d, error: %s\n", path != nullptr ? path : "", errnum,
                   text);
    return 1;
}

void pw_strerror(int code, char* buffer, size_t size)
{
    if (os::current().errorTexts->describeErrno(code, buffer, size)) return;
    if (buffer != nullptr && size != 0) buffer[0] = '\0';
    QV_LOG_WARNING("WARNING: strerror_s failed to get description of previous error\n");
}

bool pw_fileExists(const char* path)
{
    if (path == nullptr) return false;
    FILE* stream = nullptr;
    if (os::current().files->openStream(&stream, path, "rb") != 0 || stream == nullptr) return false;
    std::fclose(stream);
    return true;
}

void pw_getenv(unsigned long long* required, char* buffer, unsigned long long size, const char* name)
{
    if (required != nullptr) *required = 0;
    const bool hasRoom = buffer != nullptr && size != 0;
    if (hasRoom) buffer[0] = '\0';
    std::string value;
    if (name == nullptr || !os::current().environment->get(name, value)) return;

    if (required != nullptr) *required = value.size() + 1;
    if (hasRoom && value.size() < size) std::memcpy(buffer, value.c_str(), value.size() + 1);
}

int pw_freopen(FILE** result, const char* path, const char* mode, FILE* stream)
{
    if (result == nullptr) return EINVAL;
    *result = nullptr;
    if (path == nullptr || mode == nullptr || stream == nullptr) return EINVAL;
    return os::current().files->reopenStream(result, path, mode, stream);
}

int pw_dup2(FILE* from, FILE* to)
{
    if (from == nullptr || to == nullptr) return -1;
    return os::current().files->duplicateDescriptor(from, to);
}

}    // namespace pwr
