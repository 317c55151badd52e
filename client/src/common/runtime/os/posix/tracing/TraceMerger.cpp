#include "runtime/os/posix/tracing/TraceMerger.h"

#include "runtime/os/posix/tracing/TraceReader.h"
#include "runtime/os/posix/tracing/TraceWriter.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <queue>

#include <sys/stat.h>
#include <unistd.h>

namespace pwr::os::trace {

namespace {

constexpr std::size_t OUTPUT_BUFFER_BYTES = 1024 * 1024;

// Which input's record comes next: the oldest, and of several the first input's.
struct Turn {
    std::uint64_t ticks;
    std::size_t input;
    bool operator>(const Turn& other) const { return ticks != other.ticks ? ticks > other.ticks : input > other.input; }
};

class Merger {
public:
    unsigned long run(const std::string& output, const std::vector<std::string>& inputs)
    {
        unsigned long status = openInputs_i(inputs, output);
        if (status == 0) status = m_writer.open(output, mergedHeader_i(), OUTPUT_BUFFER_BYTES);
        if (status != 0) return status;
        status = copyAll_i();
        const unsigned long closed = m_writer.close(m_writer.header().endTime);
        if (status == 0) status = closed;
        if (status != 0) removeFile_i(output);
        return status != 0 ? status : inputStatus_i();
    }

private:
    unsigned long openInputs_i(const std::vector<std::string>& inputs, const std::string& output)
    {
        if (inputs.empty()) return INVALID_PARAMETER;
        for (const std::string& path : inputs) {
            auto reader = std::make_unique<TraceReader>();
            const unsigned long status = reader->open(path);
            if (status != 0) return status;
            if (reader->isSameFile(output)) return INVALID_PARAMETER;
            m_readers.push_back(std::move(reader));
            if (!sameClock_i(m_readers.back()->header())) return INVALID_DATA;
        }
        return 0;
    }

    bool sameClock_i(const FileHeader& header) const
    {
        const FileHeader& first = m_readers.front()->header();
        return header.clock == first.clock && header.frequencyHz == first.frequencyHz;
    }

    FileHeader mergedHeader_i() const
    {
        FileHeader merged = m_readers.front()->header();
        merged.eventsLost = 0;
        merged.buffersWritten = 0;
        for (const auto& reader : m_readers) {
            const FileHeader& header = reader->header();
            merged.pointerSize = std::min(merged.pointerSize, header.pointerSize);
            merged.bufferKB = std::max(merged.bufferKB, header.bufferKB);
            merged.endTime = std::max(merged.endTime, header.endTime);
            addLost(merged, header.eventsLost);
            if (header.startTicks >= merged.startTicks) continue;
            merged.startTicks = header.startTicks;
            merged.startTime = header.startTime;
        }
        return merged;
    }

    unsigned long copyAll_i()
    {
        m_records.resize(m_readers.size());
        for (std::size_t i = 0; i < m_readers.size(); ++i) {
            advance_i(i);
        }
        while (!m_turns.empty()) {
            const std::size_t input = m_turns.top().input;
            m_turns.pop();
            const unsigned long status = copy_i(m_records[input]);
            if (status != 0) return status;
            advance_i(input);
        }
        return 0;
    }

    void advance_i(std::size_t input)
    {
        if (m_readers[input]->next(m_records[input])) m_turns.push({m_records[input].head.ticks, input});
    }

    unsigned long copy_i(const Record& record)
    {
        unsigned long status = 0;
        char* room = m_writer.reserve(record.size, status);
        if (room == nullptr) return status;
        std::memcpy(room, record.bytes, record.size);
        m_writer.commit(record.size);
        return 0;
    }

    unsigned long inputStatus_i() const
    {
        for (const auto& reader : m_readers) {
            if (reader->status() != 0) return reader->status();
        }
        return 0;
    }

    // A device or a pipe that was given as the output stays.
    static void removeFile_i(const std::string& path)
    {
        struct stat status {};
        if (lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode)) unlink(path.c_str());
    }

    std::vector<std::unique_ptr<TraceReader>> m_readers;
    std::vector<Record> m_records;    // the next one of each reader
    std::priority_queue<Turn, std::vector<Turn>, std::greater<>> m_turns;
    TraceWriter m_writer;
};

}    // namespace

unsigned long mergeTraceFiles(const std::string& output, const std::vector<std::string>& inputs)
{
    return Merger().run(output, inputs);
}

}    // namespace pwr::os::trace
