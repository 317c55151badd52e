#include "runtime/os/Console.h"

#include <windows.h>

namespace pwr::os {

namespace {

class WindowsConsole : public Console {
public:
    void writeError(const char* text) override
    {
        std::fputs(text, stderr);
        std::fflush(stderr);
    }

    unsigned int width() override
    {
        CONSOLE_SCREEN_BUFFER_INFO info{};
        if (GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info) == 0) return 0;
        return static_cast<unsigned int>(info.srWindow.Right - info.srWindow.Left + 1);
    }
};

}    // namespace

Console& systemConsole()
{
    static WindowsConsole s_console;
    return s_console;
}

}    // namespace pwr::os
