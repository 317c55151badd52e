#pragma once

#include "runtime/os/Console.h"

#include <string>

namespace test {

// Keeps what goes to the standard error stream. Stands behind the operating system's door, see DoorGuard.
class RecordingConsole : public pwr::os::Console {
public:
    void writeError(const char* written) override { text += written; }
    unsigned int width() override { return columns; }

    std::string text;
    unsigned int columns = 0;
};

}    // namespace test
