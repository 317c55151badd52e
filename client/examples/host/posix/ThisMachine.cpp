#include "machine/TreeMachine.h"
#include "system/System.h"

#include <cstdlib>
#include <ctime>
#include <string_view>
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

bool isErrorStreamColoured()
{
    const char* noColour = std::getenv("NO_COLOR");
    const char* terminal = std::getenv("TERM");
    const bool isRefused = noColour != nullptr && *noColour != '\0';
    const bool isPlain = terminal == nullptr || std::string_view(terminal) == "dumb";
    return isErrorStreamTerminal() && !isRefused && !isPlain;
}

}    // namespace host
