#pragma once

#include <cstdio>

namespace pwr::os {

// The standard streams of the process.
class Console {
public:
    virtual ~Console() = default;

    // Writes to the standard error stream at once, and nothing else.
    virtual void writeError(const char* text) = 0;

    // Characters in a line of the window that the standard output stream shows on; 0 when it shows on none.
    virtual unsigned int width() { return 0; }
};

Console& systemConsole();

}    // namespace pwr::os
