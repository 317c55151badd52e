#pragma once

#include "runtime/os/WindowsTypes.h"

#include <cstddef>
#include <cstdint>
#include <string>

// The bytes of a trace file: one file header, then one record after another, in time order. docs/trace-files.md has the
// byte table. All numbers are little-endian, whatever the machine.
namespace pwr::os::trace {

// The clocks that a file's times may be read from, by the numbers of WNODE_HEADER::ClientContext.
enum Clock : std::uint32_t { PERFORMANCE_COUNTER = 1, SYSTEM_TIME = 2, TIME_STAMP_COUNTER = 3 };

inline constexpr std::uint32_t FILE_VERSION = 1;
inline constexpr std::size_t FILE_HEADER_BYTES = 68;    // without the session's name
inline constexpr std::size_t MAX_NAME_BYTES = 1024;
inline constexpr std::size_t EVENT_HEADER_BYTES = 52;
inline constexpr std::size_t MAX_PAYLOAD_BYTES = 65535 - sizeof(EVENT_HEADER);    // its size in memory fits 16 bits
inline constexpr std::size_t MAX_RECORD_BYTES = EVENT_HEADER_BYTES + MAX_PAYLOAD_BYTES;

// Windows codes that tell of a file's bytes.
inline constexpr unsigned long INVALID_DATA = 13;    // not a trace file
inline constexpr unsigned long INVALID_PARAMETER = 87;
inline constexpr unsigned long FILE_CORRUPT = 1392;    // a trace file that stops making sense

struct FileHeader {
    std::uint32_t pointerSize = sizeof(void*);    // of the writer, in bytes
    std::uint32_t clock = PERFORMANCE_COUNTER;
    std::uint32_t bufferKB = 0;
    std::uint64_t frequencyHz = 0;    // of the clock; 0: not known
    std::uint64_t startTicks = 0;     // the clock at the start
    std::uint64_t startTime = 0;      // the wall clock then, in units of 100 ns since 1601
    std::uint64_t endTime = 0;        // 0: the session was never stopped
    std::uint32_t eventsLost = 0;
    std::uint32_t buffersWritten = 0;
    std::string session;
};

struct EventHead {
    std::uint32_t processId = 0;
    std::uint32_t threadId = 0;
    std::uint64_t ticks = 0;
    GUID provider{};
    EVENT_DESCRIPTOR descriptor{};
};

// A session's name longer than MAX_NAME_BYTES is cut.
std::string encodeHeader(const FileHeader& header);

// Reads the header at the start of `bytes`. Its size in bytes; 0 when these are no trace file's first bytes.
std::size_t decodeHeader(const char* bytes, std::size_t size, FileHeader& header);

// Writes EVENT_HEADER_BYTES to `out`; the payload follows them.
void encodeEvent(char* out, const EventHead& head, std::size_t payloadBytes);

// Reads EVENT_HEADER_BYTES.
EventHead decodeEvent(const char* bytes);

// The size of the record that starts at `bytes`, of which 4 are there; 0 when no record is as small or as large.
std::size_t recordSize(const char* bytes);

// Where the figures stand that are only known later: end time, events lost, buffers written, 16 bytes in all.
inline constexpr std::size_t CLOSING_OFFSET = 48;
std::string encodeClosing(const FileHeader& header);

}    // namespace pwr::os::trace
