#include "runtime/os/ErrorTexts.h"

#include <cstring>

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
};

}    // namespace

ErrorTexts& systemErrorTexts()
{
    static PosixErrorTexts s_errorTexts;
    return s_errorTexts;
}

}    // namespace pwr::os
