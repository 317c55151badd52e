#include "runtime/os/posix/tracing/TraceReader.h"

#include "runtime/os/posix/WindowsCodes.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pwr::os::trace {

namespace {

constexpr std::size_t BUFFER_BYTES = 256 * 1024;
static_assert(BUFFER_BYTES >= MAX_RECORD_BYTES && BUFFER_BYTES >= FILE_HEADER_BYTES + MAX_NAME_BYTES);

}    // namespace

TraceReader::~TraceReader()
{
    if (m_fd >= 0) close(m_fd);
}

unsigned long TraceReader::open(const std::string& path)
{
    m_fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (m_fd < 0) return static_cast<unsigned long>(windowsCode(errno));
    m_buffer.resize(BUFFER_BYTES);
    hasBytes_i(FILE_HEADER_BYTES + MAX_NAME_BYTES);    // a shorter file may be whole
    if (m_status != 0) return m_status;
    m_next = decodeHeader(m_buffer.data(), m_end, m_header);
    return m_next != 0 ? 0 : INVALID_DATA;
}

bool TraceReader::next(Record& record)
{
    if (m_status != 0 || !hasBytes_i(sizeof(std::uint32_t))) return false;
    const std::size_t size = recordSize(m_buffer.data() + m_next);
    if (size == 0) return damaged_i();
    if (!hasBytes_i(size)) return false;
    record.bytes = m_buffer.data() + m_next;
    record.size = size;
    record.head = decodeEvent(record.bytes);
    if (record.head.ticks < m_lastTicks) return damaged_i();
    m_lastTicks = record.head.ticks;
    m_next += size;
    return true;
}

bool TraceReader::damaged_i()
{
    m_status = FILE_CORRUPT;
    return false;
}

// Reads on until that many bytes are there; false at the end of the file.
bool TraceReader::hasBytes_i(std::size_t bytes)
{
    while (m_end - m_next < bytes) {
        if (!fill_i()) return false;
    }
    return true;
}

bool TraceReader::fill_i()
{
    std::memmove(m_buffer.data(), m_buffer.data() + m_next, m_end - m_next);
    m_end -= m_next;
    m_next = 0;
    ssize_t count = 0;
    do {
        count = read(m_fd, m_buffer.data() + m_end, m_buffer.size() - m_end);
    } while (count < 0 && errno == EINTR);
    if (count < 0) m_status = static_cast<unsigned long>(windowsCode(errno));
    if (count <= 0) return false;
    m_end += static_cast<std::size_t>(count);
    ++m_buffersRead;
    return true;
}

bool TraceReader::isSameFile(const std::string& path) const
{
    struct stat mine {};
    struct stat other {};
    if (fstat(m_fd, &mine) != 0 || stat(path.c_str(), &other) != 0) return false;
    return mine.st_dev == other.st_dev && mine.st_ino == other.st_ino;
}

}    // namespace pwr::os::trace
