#include "runtime/os/Clocks.h"

#include <windows.h>
#include <intrin.h>

namespace pwr::os {

namespace {

class WindowsClocks : public Clocks {
public:
    unsigned long long performanceCounter() override
    {
        LARGE_INTEGER count{};
        QueryPerformanceCounter(&count);
        return static_cast<unsigned long long>(count.QuadPart);
    }

    unsigned long long performanceFrequencyHz() override
    {
        LARGE_INTEGER frequency{};
        QueryPerformanceFrequency(&frequency);
        return static_cast<unsigned long long>(frequency.QuadPart);
    }

    unsigned long long systemTime100ns() override
    {
        FILETIME now{};
        GetSystemTimePreciseAsFileTime(&now);
        return (static_cast<unsigned long long>(now.dwHighDateTime) << 32) | now.dwLowDateTime;
    }

    unsigned long long timeStampCounter() override { return __rdtsc(); }
};

}    // namespace

Clocks& systemClocks()
{
    static WindowsClocks s_clocks;
    return s_clocks;
}

}    // namespace pwr::os
