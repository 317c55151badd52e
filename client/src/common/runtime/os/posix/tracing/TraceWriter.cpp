#include "runtime/os/posix/tracing/TraceWriter.h"

#include "runtime/os/posix/WindowsCodes.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <new>

#include <fcntl.h>
#include <unistd.h>

namespace pwr::os::trace {

namespace {

constexpr unsigned long PATH_NOT_FOUND = 3;
constexpr unsigned long NOT_ENOUGH_MEMORY = 8;
constexpr unsigned long RECORD_TOO_LARGE = 234;
constexpr std::size_t MAX_BUFFER_BYTES = std::size_t{1} << 30;    // more is taken as more than there is

unsigned long lastCode()
{
    return static_cast<unsigned long>(windowsCode(errno));
}

// Writes all bytes; `written` tells how many there are in the file after a failure.
unsigned long writeAll(int fd, const char* bytes, std::size_t size, std::size_t& written)
{
    written = 0;
    while (written < size) {
        const ssize_t count = write(fd, bytes + written, size - written);
        if (count > 0) written += static_cast<std::size_t>(count);
        if (count < 0 && errno != EINTR) return lastCode();
    }
    return 0;
}

}    // namespace

void addLost(FileHeader& header, std::uint64_t events)
{
    const std::uint64_t room = std::numeric_limits<std::uint32_t>::max() - header.eventsLost;
    header.eventsLost += static_cast<std::uint32_t>(std::min(room, events));
}

TraceWriter::~TraceWriter()
{
    if (m_fd >= 0) ::close(m_fd);
}

unsigned long TraceWriter::open(const std::string& path, const FileHeader& header, std::size_t bufferBytes)
{
    if (bufferBytes > MAX_BUFFER_BYTES) return NOT_ENOUGH_MEMORY;
    m_buffer.reset(new (std::nothrow) char[bufferBytes]);
    if (!m_buffer) return NOT_ENOUGH_MEMORY;
    m_capacity = bufferBytes;
    m_header = header;
    m_fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (m_fd < 0) return errno == ENOENT ? PATH_NOT_FOUND : lastCode();
    const std::string bytes = encodeHeader(m_header);
    std::size_t written = 0;
    const unsigned long status = writeAll(m_fd, bytes.data(), bytes.size(), written);
    if (status == 0) return 0;
    ::close(m_fd);
    m_fd = -1;
    return status;
}

char* TraceWriter::reserveSlowly_i(std::size_t bytes, unsigned long& status)
{
    status = bytes > m_capacity ? RECORD_TOO_LARGE : writeOut_i();
    return status == 0 ? m_buffer.get() + m_used : nullptr;
}

unsigned long TraceWriter::writeOut_i()
{
    if (m_used == 0) return 0;
    std::size_t written = 0;
    const unsigned long status = writeAll(m_fd, m_buffer.get(), m_used, written);
    if (status == 0) ++m_header.buffersWritten;
    dropFront_i(written);
    return status;
}

// Takes the written bytes out of the buffer, and finds where the next record begins.
void TraceWriter::dropFront_i(std::size_t bytes)
{
    std::size_t next = m_tail;
    while (bytes < m_used && next < bytes) {
        next += recordSize(m_buffer.get() + next);
    }
    m_tail = bytes < m_used ? next - bytes : 0;
    m_used -= bytes;
    std::memmove(m_buffer.get(), m_buffer.get() + bytes, m_used);
}

unsigned long TraceWriter::writeFigures_i()
{
    const std::string bytes = encodeClosing(m_header);
    const ssize_t count = pwrite(m_fd, bytes.data(), bytes.size(), CLOSING_OFFSET);
    return count == static_cast<ssize_t>(bytes.size()) ? 0 : lastCode();
}

unsigned long TraceWriter::flush()
{
    const unsigned long status = writeOut_i();
    const unsigned long figures = writeFigures_i();
    return status != 0 ? status : figures;
}

std::size_t TraceWriter::bufferedRecords_i() const
{
    std::size_t records = m_tail > 0 ? 1 : 0;
    for (std::size_t next = m_tail; next < m_used; next += recordSize(m_buffer.get() + next)) {
        ++records;
    }
    return records;
}

unsigned long TraceWriter::close(std::uint64_t endTime)
{
    if (m_fd < 0) return 0;
    const unsigned long status = writeOut_i();
    addLost(m_header, bufferedRecords_i());
    m_used = 0;
    m_tail = 0;
    m_header.endTime = endTime;
    const unsigned long figures = writeFigures_i();
    const unsigned long closed = ::close(m_fd) == 0 ? 0 : lastCode();
    m_fd = -1;
    if (status != 0) return status;
    return figures != 0 ? figures : closed;
}

}    // namespace pwr::os::trace
