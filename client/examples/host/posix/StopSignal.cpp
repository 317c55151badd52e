#include "system/System.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <system_error>
#include <unistd.h>

namespace host {

namespace {

volatile std::sig_atomic_t s_pipeEnd = -1;    // the handler may touch no more than this

void onSignal(int)
{
    const int keptErrno = errno;
    const char byte = 0;
    // A full pipe says the same already.
    [[maybe_unused]] const ssize_t ignored = write(static_cast<int>(s_pipeEnd), &byte, 1);
    errno = keptErrno;
}

}    // namespace

// The handler writes a byte that nobody takes out: the pipe stays readable.
struct StopSignal::State {
    int ends[2] = {-1, -1};
    struct sigaction interrupt = {};    // what was there before
    struct sigaction terminate = {};
    struct sigaction brokenPipe = {};
};

StopSignal::StopSignal() : m_state(std::make_unique<State>())
{
    if (pipe2(m_state->ends, O_CLOEXEC | O_NONBLOCK) != 0)
        throw std::system_error(errno, std::generic_category(), "pipe");
    s_pipeEnd = m_state->ends[1];
    struct sigaction action = {};
    action.sa_handler = onSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND);    // the second signal meets the default
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, &m_state->interrupt);
    sigaction(SIGTERM, &action, &m_state->terminate);
    action.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &action, &m_state->brokenPipe);
}

StopSignal::~StopSignal()
{
    sigaction(SIGINT, &m_state->interrupt, nullptr);
    sigaction(SIGTERM, &m_state->terminate, nullptr);
    sigaction(SIGPIPE, &m_state->brokenPipe, nullptr);
    s_pipeEnd = -1;
    for (const int end : m_state->ends)
        close(end);
}

bool StopSignal::waitUntil(std::chrono::steady_clock::time_point time)
{
    using std::chrono::milliseconds;
    constexpr milliseconds LONGEST(60'000);
    for (;;) {
        const auto left = std::chrono::ceil<milliseconds>(time - std::chrono::steady_clock::now());
        pollfd end = {m_state->ends[0], POLLIN, 0};
        const int ready = poll(&end, 1, static_cast<int>(std::clamp(left, milliseconds(0), LONGEST).count()));
        if (ready > 0) return true;
        if (ready == 0 && left <= LONGEST) return false;
    }
}

}    // namespace host
