#pragma once

#include "runtime/QVThread.h"

#include <string>
#include <vector>

namespace test {

// An actor that keeps what it served; to be looked at when its worker has answered or ended. Each command's result is
// ten times its number, but KEEP leaves the result of the command before, and END also ends the thread.
class CommandActor : public pwr::QVThreadActor {
public:
    enum : int { KEEP = 100, END = 101 };

    int handleCommand(int command, unsigned payloadSize, const void* payload, int* result) override
    {
        commands.push_back(command);
        payloads.emplace_back(static_cast<const char*>(payload), payloadSize);
        if (command != KEEP) *result = 10 * command;
        return command == END ? 1 : 0;
    }
    int handleKill() override { return ++kills + 76; }
    int initActor() override { return initResult; }

    std::vector<int> commands;
    std::vector<std::string> payloads;
    int kills = 0;
    int initResult = 0;
};

}    // namespace test
