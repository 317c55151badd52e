#include "runtime/os/ErrorTexts.h"
#include "runtime/os/posix/WindowsCodes.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace pwr::os {

namespace {

// strerror_r comes in two forms: one fills the buffer and returns an error number, the other returns the text, which
// may stand elsewhere.
[[maybe_unused]] const char* describedText(int result, const char* buffer)
{
    return result == 0 ? buffer : nullptr;
}

[[maybe_unused]] const char* describedText(const char* result, const char*)
{
    return result;
}

struct CodeText {
    std::uint32_t code;
    const char* text;
};

// The codes that the library hands out or gives a meaning of its own.
constexpr CodeText CODE_TEXTS[] = {
    {0, "The operation completed successfully."},
    {2, "The system cannot find the file specified."},
    {3, "The system cannot find the path specified."},
    {5, "Access is denied."},
    {6, "The handle is invalid."},
    {8, "Not enough memory is available to process this command."},
    {13, "The data is invalid."},
    {24, "The length given with the command is wrong."},
    {31, "The system reports a general failure."},
    {87, "The parameter is incorrect."},
    {112, "There is not enough space on the disk."},
    {122, "The data area passed to a system call is too small."},
    {126, "The specified module could not be found."},
    {127, "The specified procedure could not be found."},
    {161, "The specified path is invalid."},
    {183, "Cannot create a file when that file already exists."},
    {193, "The file is not a valid library."},
    {206, "The file name or extension is too long."},
    {234, "More data is available."},
    {534, "An arithmetic result exceeded 32 bits."},
    {1223, "The operation was canceled."},
    {1392, "The file is damaged and can't be read."},
    {1450, "Insufficient system resources exist to complete the requested service."},
    {4201, "The instance name passed was not recognized as valid."},
};

class PosixErrorTexts : public ErrorTexts {
public:
    bool describeErrno(int errnum, char* buffer, std::size_t size) override
    {
        if (buffer == nullptr || size == 0) return false;
        buffer[0] = '\0';
        char scratch[256] = "";
        const char* text = describedText(strerror_r(errnum, scratch, sizeof scratch), scratch);
        if (text == nullptr) return false;
        const std::size_t length = strnlen(text, size - 1);
        std::memcpy(buffer, text, length);
        buffer[length] = '\0';
        return true;
    }

    std::string describeCode(std::uint32_t code) override
    {
        const auto* found = std::find_if(std::begin(CODE_TEXTS), std::end(CODE_TEXTS),
                                         [code](const CodeText& row) { return row.code == code; });
        if (found != std::end(CODE_TEXTS)) return found->text;
        char text[256] = "";
        const int errnum = errnoOf(code);
        if (errnum != 0) describeErrno(errnum, text, sizeof text);
        return text;
    }
};

}    // namespace

ErrorTexts& systemErrorTexts()
{
    static PosixErrorTexts s_errorTexts;
    return s_errorTexts;
}

}    // namespace pwr::os
