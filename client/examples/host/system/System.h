#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

// What the host needs of the operating system; sources in posix/ and windows/.

namespace host {

class Machine;

std::unique_ptr<Machine> openThisMachine();

// The clock that goes on while the system sleeps, and the one that does not. Each counts from a moment of its own.
struct SleepClocks {
    unsigned long long bootNs = 0;
    unsigned long long monotonicNs = 0;
};
SleepClocks readSleepClocks();

// Whether a person watches the standard error stream.
bool isErrorStreamTerminal();

// Whether it is a terminal that shows colours, and nobody asked for none: NO_COLOR is not set, or empty.
bool isErrorStreamColoured();

// Catches Ctrl-C and a request to terminate while it lives; one at a time in the process. The first signal asks to
// stop, a second one ends the program as if there were no StopSignal.
//
//   StopSignal stop;
//   while (!stop.waitUntil(next)) takeRound();
class StopSignal {
public:
    StopSignal();
    ~StopSignal();
    StopSignal(const StopSignal&) = delete;
    StopSignal& operator=(const StopSignal&) = delete;

    // Sleeps until the time. True at once, and from then on, when a signal came.
    bool waitUntil(std::chrono::steady_clock::time_point time);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

// A program that runs beside the collection and may outlive it. Started once.
class Program {
public:
    Program();
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    // The program, looked for as a shell does, and its arguments. Empty, or why it could not be started.
    std::string start(const std::vector<std::string>& command);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}    // namespace host
