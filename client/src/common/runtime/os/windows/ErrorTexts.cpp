#include "runtime/os/ErrorTexts.h"

#include <windows.h>
#include <string.h>

namespace pwr::os {

namespace {

class WindowsErrorTexts : public ErrorTexts {
public:
    bool describeErrno(int errnum, char* buffer, std::size_t size) override
    {
        if (buffer == nullptr || size == 0) return false;
        buffer[0] = '\0';
        if (strerror_s(buffer, size, errnum) == 0) return true;
        buffer[0] = '\0';
        return false;
    }

    std::string describeCode(std::uint32_t code) override
    {
        constexpr DWORD flags =
            FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_FROM_SYSTEM;
        constexpr DWORD userLanguage = 0x400;
        char* text = nullptr;
        FormatMessageA(flags, nullptr, code, userLanguage, reinterpret_cast<char*>(&text), 0, nullptr);
        const std::string result = text != nullptr ? text : "";
        LocalFree(text);
        return result;
    }
};

}    // namespace

ErrorTexts& systemErrorTexts()
{
    static WindowsErrorTexts s_errorTexts;
    return s_errorTexts;
}

}    // namespace pwr::os
