#include "runtime/os/Clocks.h"

#include <ctime>

#if defined(__x86_64__) || defined(__i386__)
#include <x86intrin.h>
#endif

namespace pwr::os {

namespace {

class PosixClocks : public Clocks {
public:
    unsigned long long performanceCounter() override
    {
        const timespec now = read_i(CLOCK_MONOTONIC);
        return static_cast<unsigned long long>(now.tv_sec) * 1000000000ULL +
               static_cast<unsigned long long>(now.tv_nsec);
    }

    unsigned long long performanceFrequencyHz() override { return 1000000000ULL; }

    unsigned long long systemTime100ns() override
    {
        const timespec now = read_i(CLOCK_REALTIME);
        return static_cast<unsigned long long>(now.tv_sec) * 10000000ULL +
               static_cast<unsigned long long>(now.tv_nsec) / 100ULL + UNIX_EPOCH_100NS;
    }

    unsigned long long timeStampCounter() override
    {
#if defined(__x86_64__) || defined(__i386__)
        return __rdtsc();
#else
        return 0;
#endif
    }

private:
    static timespec read_i(clockid_t clock)
    {
        timespec now{};
        clock_gettime(clock, &now);
        return now;
    }
};

}    // namespace

Clocks& systemClocks()
{
    static PosixClocks s_clocks;
    return s_clocks;
}

}    // namespace pwr::os
