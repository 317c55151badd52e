#include "system/System.h"

#include <cerrno>
#include <csignal>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace host {

struct Program::State {
    pid_t id = -1;
};

Program::Program() : m_state(std::make_unique<State>()) {}

// One that has ended is taken note of; any other goes on.
Program::~Program()
{
    if (m_state->id > 0) waitpid(m_state->id, nullptr, WNOHANG);
}

// A broken pipe, which the host ignores, shall end it as usual.
std::string Program::start(const std::vector<std::string>& command)
{
    std::vector<char*> words;
    for (const std::string& word : command)
        words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    sigset_t defaults;
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGPIPE);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    const int code = posix_spawnp(&m_state->id, words[0], nullptr, &attributes, words.data(), environ);
    posix_spawnattr_destroy(&attributes);
    if (code == 0) return {};
    m_state->id = -1;
    return std::generic_category().message(code);
}

}    // namespace host
