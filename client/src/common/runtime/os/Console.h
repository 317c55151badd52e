#pragma once

#include <cstdio>

namespace pwr::os {

// The standard streams of the process.
class Console {
public:
    virtual ~Console() = default;

    // Writes to the standard error stream at once, and nothing else.
    virtual void writeError(const char* text) = 0;
};

Console& systemConsole();

}    // namespace pwr::os
