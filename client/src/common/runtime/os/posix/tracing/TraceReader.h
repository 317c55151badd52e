#pragma once

#include "runtime/os/posix/tracing/TraceFormat.h"

#include <cstddef>
#include <string>
#include <vector>

namespace pwr::os::trace {

// One event as it stands in a file.
struct Record {
    EventHead head;
    const char* bytes = nullptr;    // the whole record; valid until the next one is read
    std::size_t size = 0;
    const char* payload() const { return bytes + EVENT_HEADER_BYTES; }
    std::size_t payloadBytes() const { return size - EVENT_HEADER_BYTES; }
};

// Reads a trace file from front to end through a buffer of fixed size. A file may be cut anywhere: the records before
// the cut are read. Whatever else is no record, or is older than the one before it, ends the reading.
//
//   if (reader.open(path) != 0) return;
//   for (Record record; reader.next(record);) use(record);
class TraceReader {
public:
    TraceReader() = default;
    ~TraceReader();
    TraceReader(const TraceReader&) = delete;
    TraceReader& operator=(const TraceReader&) = delete;

    // 0, or a Windows code: 2 or 3 for a missing file, 13 for one that is no trace file or is cut in its header.
    unsigned long open(const std::string& path);

    const FileHeader& header() const { return m_header; }

    // False at the end: `status` tells whether it was the file's (0, also for a cut one), damage (1392), or a read that
    // failed.
    bool next(Record& record);
    unsigned long status() const { return m_status; }

    // How often the buffer was filled.
    std::uint32_t buffersRead() const { return m_buffersRead; }

    // Whether `path` is the file that is open here.
    bool isSameFile(const std::string& path) const;

private:
    bool hasBytes_i(std::size_t bytes);
    bool fill_i();
    bool damaged_i();

    int m_fd = -1;
    FileHeader m_header;
    std::vector<char> m_buffer;
    std::size_t m_next = 0;    // first byte not given yet
    std::size_t m_end = 0;     // end of what was read
    std::uint64_t m_lastTicks = 0;
    std::uint32_t m_buffersRead = 0;
    unsigned long m_status = 0;
};

}    // namespace pwr::os::trace
