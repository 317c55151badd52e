#include "runtime/os/Console.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace pwr::os {

namespace {

class PosixConsole : public Console {
public:
    void writeError(const char* text) override
    {
        std::fputs(text, stderr);
        std::fflush(stderr);
    }

    unsigned int width() override
    {
        winsize size{};
        return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
    }
};

}    // namespace

Console& systemConsole()
{
    static PosixConsole s_console;
    return s_console;
}

}    // namespace pwr::os
