#pragma once

#include <atomic>
#include <cstddef>
#include <deque>
#include <memory>

namespace pwr {

// Copied bytes in a queue. None when absent, or when there was no memory for the copy.
struct MessageEntry {
    MessageEntry() = default;
    MessageEntry(const void* source, std::size_t sizeBytes);    // a null source gives zeros

    std::unique_ptr<char[]> bytes;
    std::size_t size = 0;
};

// Entries from writers to one reader, under a mutex, with an event that wakes the reader. What a closed queue holds is
// still read; reading an empty one fails.
class MessageQueue {
public:
    MessageQueue() = default;
    MessageQueue(const MessageQueue&) = delete;
    MessageQueue& operator=(const MessageQueue&) = delete;

    // Makes mutex and event of an open queue; false when the system refuses one.
    bool create();

    // Frees what the queue holds, gives mutex and event back; nobody may be waiting.
    void destroy();

    // From now on nothing is written. Wakes the reader.
    void close();

    // Adds one entry, or two that arrive together (`second` may be absent), and wakes the reader once. False, with
    // nothing written: no memory, or the system fails. `operation` names the caller in the log.
    bool write(const char* operation, MessageEntry entry, MessageEntry second);

    // Waits for one entry of exactly `size` bytes. False: the queue is closed, the entry, which is lost, has another
    // size, or the system fails.
    bool read(const char* operation, void* target, std::size_t size);

private:
    bool append_i(MessageEntry&& entry, MessageEntry&& second);
    bool take_i(MessageEntry& entry);

    void* m_mutex = nullptr;
    void* m_event = nullptr;    // signalled while there is something to read, and for ever once closed
    std::deque<MessageEntry> m_entries;
    std::atomic<std::size_t> m_size{0};    // of m_entries, for log lines outside the mutex
    std::atomic<bool> m_isClosed{false};
};

}    // namespace pwr
