#pragma once

#include "runtime/os/posix/tracing/TraceFormat.h"

#include <cstddef>
#include <memory>
#include <string>

namespace pwr::os::trace {

// One trace file being written, through one buffer that is written out when it is full. The caller puts whole records
// in, in time order, and is the only one to do so. Results are Windows codes.
//
//   char* room = writer.reserve(bytes, status);
//   if (room != nullptr) encodeEvent(room, head, payloadBytes);    // and the payload
//   writer.commit(bytes);
class TraceWriter {
public:
    TraceWriter() = default;
    ~TraceWriter();
    TraceWriter(const TraceWriter&) = delete;
    TraceWriter& operator=(const TraceWriter&) = delete;

    // Creates the file, which replaces an older one, and writes its header. A failure leaves nothing open: 8 without
    // memory for the buffer, 112 for a full disk, 3 for a missing directory, 5 where writing is not allowed.
    unsigned long open(const std::string& path, const FileHeader& header, std::size_t bufferBytes);

    // Room for a record at the end of the buffer, which is written out first if it must be. Null, with `status`, when
    // that fails or the buffer is smaller than the record: what the buffer holds stays, for the next time.
    char* reserve(std::size_t bytes, unsigned long& status)
    {
        if (bytes <= m_capacity - m_used) return m_buffer.get() + m_used;
        return reserveSlowly_i(bytes, status);
    }
    void commit(std::size_t bytes) { m_used += bytes; }

    // Writes out what the buffer holds, and the figures of `header()` that are known by now.
    unsigned long flush();

    // The same for the last time; records that can't be written are added to the lost events. The file is closed in
    // any case.
    unsigned long close(std::uint64_t endTime);

    // Its figures are written when the file is flushed or closed.
    FileHeader& header() { return m_header; }
    const FileHeader& header() const { return m_header; }

private:
    char* reserveSlowly_i(std::size_t bytes, unsigned long& status);
    unsigned long writeOut_i();
    void dropFront_i(std::size_t bytes);
    unsigned long writeFigures_i();
    std::size_t bufferedRecords_i() const;

    FileHeader m_header;
    int m_fd = -1;
    std::unique_ptr<char[]> m_buffer;
    std::size_t m_capacity = 0;
    std::size_t m_used = 0;
    std::size_t m_tail = 0;    // bytes at the buffer's front that end a record whose start is in the file
};

void addLost(FileHeader& header, std::uint64_t events);    // the count stops at its greatest value

}    // namespace pwr::os::trace
