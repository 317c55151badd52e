#include "machine/TreeMachine.h"
#include "system/System.h"

#include <ctime>
#include <unistd.h>

namespace host {

namespace {

unsigned long long readNs(clockid_t clock)
{
    timespec time = {};
    clock_gettime(clock, &time);
    return static_cast<unsigned long long>(time.tv_sec) * 1'000'000'000 + static_cast<unsigned long long>(time.tv_nsec);
}

}    // namespace

std::unique_ptr<Machine> openThisMachine()
{
    return std::make_unique<TreeMachine>("/");
}

SleepClocks readSleepClocks()
{
    return {readNs(CLOCK_BOOTTIME), readNs(CLOCK_MONOTONIC)};
}

bool isErrorStreamTerminal()
{
    return isatty(STDERR_FILENO) == 1;
}

}    // namespace host
