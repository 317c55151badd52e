#include "system/System.h"

#include <algorithm>
#include <csignal>
#include <system_error>
#include <windows.h>

namespace host {

namespace {

HANDLE s_event = nullptr;

// The run-time library calls it on a thread of its own and puts the default back first, which a second signal meets.
void onSignal(int)
{
    SetEvent(s_event);
}

}    // namespace

struct StopSignal::State {
    HANDLE event = nullptr;
    void (*interrupt)(int) = SIG_DFL;    // what was there before
    void (*terminate)(int) = SIG_DFL;
};

StopSignal::StopSignal() : m_state(std::make_unique<State>())
{
    m_state->event = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    if (m_state->event == nullptr) {
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "CreateEventA");
    }
    s_event = m_state->event;
    m_state->interrupt = std::signal(SIGINT, onSignal);
    m_state->terminate = std::signal(SIGBREAK, onSignal);
}

StopSignal::~StopSignal()
{
    std::signal(SIGINT, m_state->interrupt);
    std::signal(SIGBREAK, m_state->terminate);
    s_event = nullptr;
    CloseHandle(m_state->event);
}

bool StopSignal::waitUntil(std::chrono::steady_clock::time_point time)
{
    using std::chrono::milliseconds;
    constexpr milliseconds LONGEST(60'000);
    for (;;) {
        const auto left = std::chrono::ceil<milliseconds>(time - std::chrono::steady_clock::now());
        const auto wait = static_cast<DWORD>(std::clamp(left, milliseconds(0), LONGEST).count());
        if (WaitForSingleObject(m_state->event, wait) == WAIT_OBJECT_0) return true;
        if (left <= LONGEST) return false;
    }
}

}    // namespace host
