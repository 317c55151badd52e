#pragma once

#include "runtime/EtwProvider.h"
#include "runtime/EtwSession.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace host {

// The host's own events. Both kinds come from one provider; a keyword tells them apart, so that a session can ask for
// one kind.
extern const GUID TRACE_PROVIDER;
constexpr unsigned long long PHASE_KEYWORD = 1;
constexpr unsigned long long ROUND_KEYWORD = 2;

// The parts of a run, in their order; the number stands in the event.
enum class Phase : std::uint32_t { START, BASELINE, COLLECT, STOP, FINALIZE };

// The payload of a round's event, as it stands in memory.
struct RoundCounts {
    std::uint32_t round = 0;      // from 1
    std::uint32_t records = 0;    // of this round
    std::uint64_t total = 0;      // records so far, those of the baseline too
};
static_assert(sizeof(RoundCounts) == 16, "the payload has no gaps");

// Writes the events into the sessions that want them; where there is none, into nowhere. What can't be written is
// counted.
class TraceMarks {
public:
    TraceMarks() : m_provider(&TRACE_PROVIDER) {}

    void markPhase(Phase phase, const std::string& text);    // ASCII
    void markRound(const RoundCounts& counts);
    std::size_t getFailures() const { return m_failures; }

private:
    EtwProvider m_provider;
    std::size_t m_failures = 0;
};

// An event of the host's as it was read back.
struct TraceMark {
    bool isRound = false;
    std::string name;    // of the phase, or "round"
    std::string text;
};

// False for events of others, and for a payload that makes no sense.
bool readMark(EVENT_RECORD& record, TraceMark& mark);

}    // namespace host
