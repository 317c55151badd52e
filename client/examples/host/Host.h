#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace host {

// Where the host talks to its user.
struct Console {
    std::ostream& out;
    std::ostream& errors;
    bool showsProgress = false;    // on `errors`
    bool usesColour = false;       // there
};

constexpr int EXIT_GOOD = 0;
constexpr int EXIT_RUN = 1;
constexpr int EXIT_USAGE = 2;

// The program: does what the arguments (without the program's name) ask for. Returns the exit status; any other than
// EXIT_GOOD comes with a line on `errors`. Takes over the library's process-wide state while it runs.
int runHost(const std::vector<std::string>& arguments, const Console& console);

}    // namespace host
