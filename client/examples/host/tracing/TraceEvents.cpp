#include "tracing/TraceEvents.h"

#include <cstring>
#include <iterator>

namespace host {

const GUID TRACE_PROVIDER = {0x2f6ce0d4, 0x8b1d, 0x4c57, {0xa6, 0x0e, 0x93, 0x41, 0x7d, 0x5b, 0xc8, 0x12}};

namespace {

// Id, version, channel, level, opcode, task, keyword. Sessions ask for level 4.
constexpr EVENT_DESCRIPTOR PHASE_EVENT = {1, 0, 0, 4, 0, 0, PHASE_KEYWORD};
constexpr EVENT_DESCRIPTOR ROUND_EVENT = {2, 0, 0, 4, 0, 0, ROUND_KEYWORD};

const char* const PHASE_NAMES[] = {"start", "baseline", "collect", "stop", "finalize"};

// The ASCII characters of a UTF-16 text, up to its terminator; others become question marks.
std::string asciiText(const char* bytes, std::size_t size)
{
    std::string text;
    for (std::size_t i = 0; i + 1 < size; i += 2) {
        const auto low = static_cast<unsigned char>(bytes[i]);
        const auto high = static_cast<unsigned char>(bytes[i + 1]);
        if (low == 0 && high == 0) break;
        text += high == 0 && low >= 0x20 && low < 0x7F ? static_cast<char>(low) : '?';
    }
    return text;
}

bool readPhase(const EVENT_RECORD& record, TraceMark& mark)
{
    std::uint32_t number = 0;
    if (record.UserData == nullptr || record.UserDataLength < sizeof number) return false;
    const char* payload = static_cast<const char*>(record.UserData);
    std::memcpy(&number, payload, sizeof number);
    if (number >= std::size(PHASE_NAMES)) return false;
    mark = {false, PHASE_NAMES[number], asciiText(payload + sizeof number, record.UserDataLength - sizeof number)};
    return true;
}

bool readRound(EVENT_RECORD& record, TraceMark& mark)
{
    const char* data = EtwProvider::ReadStructEvent(&record);
    RoundCounts counts;
    if (data == nullptr || record.UserDataLength < sizeof(std::uint32_t) + sizeof counts) return false;
    std::memcpy(&counts, data, sizeof counts);
    mark = {true, "round",
            std::to_string(counts.round) + ", records: " + std::to_string(counts.records) +
                ", so far: " + std::to_string(counts.total)};
    return true;
}

}    // namespace

void TraceMarks::markPhase(Phase phase, const std::string& text)
{
    if (!m_provider.WriteIntStringPairEvent(&PHASE_EVENT, static_cast<unsigned int>(phase), text)) ++m_failures;
}

void TraceMarks::markRound(const RoundCounts& counts)
{
    const char* bytes = reinterpret_cast<const char*>(&counts);
    if (!m_provider.WriteStructEvent(&ROUND_EVENT, bytes, static_cast<int>(sizeof counts))) ++m_failures;
}

bool readMark(EVENT_RECORD& record, TraceMark& mark)
{
    const EVENT_HEADER& header = record.EventHeader;
    if (std::memcmp(&header.ProviderId, &TRACE_PROVIDER, sizeof TRACE_PROVIDER) != 0) return false;
    if (header.EventDescriptor.Id == PHASE_EVENT.Id) return readPhase(record, mark);
    return header.EventDescriptor.Id == ROUND_EVENT.Id && readRound(record, mark);
}

}    // namespace host
