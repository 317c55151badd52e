#include "system/System.h"

#include <system_error>
#include <windows.h>

namespace host {

namespace {

// As the run-time library of the program takes it apart again.
std::string quoted(const std::string& word)
{
    if (!word.empty() && word.find_first_of(" \t\"") == std::string::npos) return word;
    std::string text = "\"";
    std::size_t backslashes = 0;
    for (const char c : word) {
        if (c == '"') text.append(backslashes + 1, '\\');
        backslashes = c == '\\' ? backslashes + 1 : 0;
        text += c;
    }
    return text.append(backslashes, '\\') + '"';
}

}    // namespace

struct Program::State {
    PROCESS_INFORMATION process = {};
};

Program::Program() : m_state(std::make_unique<State>()) {}

// It goes on by itself.
Program::~Program()
{
    if (m_state->process.hProcess == nullptr) return;
    CloseHandle(m_state->process.hThread);
    CloseHandle(m_state->process.hProcess);
}

std::string Program::start(const std::vector<std::string>& command)
{
    std::string line;
    for (const std::string& word : command)
        line += (line.empty() ? "" : " ") + quoted(word);
    STARTUPINFOA startup = {};
    startup.cb = sizeof(startup);
    const BOOL isStarted =
        CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &m_state->process);
    if (isStarted) return {};
    return std::system_category().message(static_cast<int>(GetLastError()));
}

}    // namespace host
