#include "runtime/os/ErrorTexts.h"

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
};

}    // namespace

ErrorTexts& systemErrorTexts()
{
    static WindowsErrorTexts s_errorTexts;
    return s_errorTexts;
}

}    // namespace pwr::os
