#include "runtime/os/Console.h"

namespace pwr::os {

namespace {

class WindowsConsole : public Console {
public:
    void writeError(const char* text) override
    {
        std::fputs(text, stderr);
        std::fflush(stderr);
    }
};

}    // namespace

Console& systemConsole()
{
    static WindowsConsole s_console;
    return s_console;
}

}    // namespace pwr::os
