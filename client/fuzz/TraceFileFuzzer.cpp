// Input: up to four trace files, each but the last behind its length in two bytes. Invariant: no read past the end, no
// leak, and what is merged of them is a trace file with all the events that each gives when it is replayed by itself,
// in time order.

#include "runtime/os/posix/tracing/TraceMerger.h"
#include "runtime/os/posix/tracing/TraceReader.h"
#include "runtime/os/posix/tracing/TraceReplay.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

namespace {

using namespace pwr::os::trace;

constexpr std::size_t MAX_FILES = 4;
constexpr unsigned long CORRUPT = 1392;

// A file in memory, which has a path all the same.
class MemoryFile {
public:
    MemoryFile(const std::uint8_t* data, std::size_t size) : m_fd(memfd_create("trace", MFD_CLOEXEC))
    {
        if (m_fd < 0 || (size > 0 && write(m_fd, data, size) != static_cast<ssize_t>(size))) std::abort();
    }
    ~MemoryFile() { close(m_fd); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(m_fd); }

private:
    int m_fd;
};

// Touches all that a callback is given.
void onEvent(EVENT_RECORD* record)
{
    const auto* payload = static_cast<const std::uint8_t*>(record->UserData);
    std::size_t sum = record->EventHeader.Size;
    for (USHORT i = 0; i < record->UserDataLength; ++i) {
        sum += payload[i];
    }
    *static_cast<std::size_t*>(record->UserContext) += sum > 0 ? 1 : 0;
}

// The number of events; whether the file can be opened at all.
bool replay(const std::string& path, std::size_t& events, unsigned long& status)
{
    std::string name = path;
    EVENT_TRACE_LOGFILEA logfile{};
    logfile.LogFileName = name.data();
    logfile.ProcessTraceMode = PROCESS_TRACE_MODE_EVENT_RECORD;
    logfile.EventRecordCallback = &onEvent;
    logfile.Context = &events;
    TraceReplay replay;
    if (replay.open(logfile) != 0) return false;
    status = replay.process();
    return true;
}

std::vector<std::unique_ptr<MemoryFile>> filesOf(const std::uint8_t* data, std::size_t size)
{
    std::vector<std::unique_ptr<MemoryFile>> files;
    while (files.size() + 1 < MAX_FILES && size >= 2) {
        const std::size_t length = data[0] + std::size_t{data[1]} * 256;
        if (length > size - 2) break;
        files.push_back(std::make_unique<MemoryFile>(data + 2, length));
        data += 2 + length;
        size -= 2 + length;
    }
    files.push_back(std::make_unique<MemoryFile>(data, size));
    return files;
}

}    // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::vector<std::unique_ptr<MemoryFile>> files = filesOf(data, size);
    std::vector<std::string> readable;
    std::size_t events = 0;
    unsigned long damage = 0;
    for (const auto& file : files) {
        unsigned long status = 0;
        if (!replay(file->path(), events, status)) continue;
        if (status != 0) damage = status;
        readable.push_back(file->path());
    }
    const MemoryFile output(nullptr, 0);
    const unsigned long status = mergeTraceFiles(output.path(), readable);
    if (status != 0 && status != CORRUPT) return 0;    // nothing to merge, or clocks that differ
    std::size_t merged = 0;
    unsigned long mergedStatus = 0;
    if (status != damage || !replay(output.path(), merged, mergedStatus)) std::abort();
    if (mergedStatus != 0 || merged != events) std::abort();
    return 0;
}
