#include "runtime/MessageQueue.h"

#include "runtime/Log.h"
#include "runtime/os/Os.h"

#include <cstring>
#include <new>
#include <utility>

namespace pwr {

namespace {

os::Threads& threads()
{
    return *os::current().threads;
}

void closeHandle(void*& handle)
{
    if (handle != nullptr) threads().close(handle);
    handle = nullptr;
}

}    // namespace

MessageEntry::MessageEntry(const void* source, std::size_t sizeBytes)
    : bytes(new (std::nothrow) char[sizeBytes]), size(sizeBytes)
{
    if (!bytes) return;
    if (source != nullptr)
        std::memcpy(bytes.get(), source, size);
    else
        std::memset(bytes.get(), 0, size);
}

bool MessageQueue::create()
{
    m_isClosed = false;
    m_mutex = threads().createMutex();
    m_event = threads().createEvent();
    return m_mutex != nullptr && m_event != nullptr;
}

void MessageQueue::destroy()
{
    m_entries.clear();
    m_size = 0;
    closeHandle(m_mutex);
    closeHandle(m_event);
}

void MessageQueue::close()
{
    m_isClosed = true;
    threads().setEvent(m_event);
}

bool MessageQueue::write(const char* operation, MessageEntry entry, MessageEntry second)
{
    const bool areTwo = second.bytes != nullptr;
    if (!entry.bytes || threads().wait(m_mutex) != 0) return false;
    const std::size_t size = m_entries.size() + 1;
    if (!append_i(std::move(entry), std::move(second))) {
        threads().releaseMutex(m_mutex);
        return false;
    }
    QV_LOG_DEBUG("DEBUG: Inside %s, new socket pair size is %zu\n", operation, size);
    if (areTwo) QV_LOG_DEBUG("DEBUG: Inside %s, new socket pair size is %zu\n", operation, size + 1);
    return true;
}

// With the mutex held, which it releases on success. A failure leaves the queue as it was.
bool MessageQueue::append_i(MessageEntry&& entry, MessageEntry&& second)
{
    const std::size_t before = m_entries.size();
    try {
        m_entries.push_back(std::move(entry));
        if (second.bytes) m_entries.push_back(std::move(second));
        m_size = m_entries.size();
        if (threads().setEventAndRelease(m_event, m_mutex) == 0) return true;
    } catch (const std::bad_alloc&) {
    }
    m_entries.resize(before);
    m_size = before;
    return false;
}

bool MessageQueue::read(const char* operation, void* target, std::size_t size)
{
    QV_LOG_DEBUG("DEBUG: Inside %s, socket pair size is %zu\n", operation, m_size.load());
    MessageEntry entry;
    if (!take_i(entry) || entry.size != size) return false;
    std::memcpy(target, entry.bytes.get(), size);
    return true;
}

bool MessageQueue::take_i(MessageEntry& entry)
{
    bool isTaken = false;
    bool isClosed = false;
    while (!isTaken && !isClosed) {
        if (threads().wait(m_event) != 0) return false;
        if (threads().wait(m_mutex) != 0) {
            threads().setEvent(m_event);    // as found
            return false;
        }
        isTaken = !m_entries.empty();
        if (isTaken) {
            entry = std::move(m_entries.front());
            m_entries.pop_front();
            m_size = m_entries.size();
        }
        // The event lets one reader through and resets itself.
        isClosed = m_isClosed;
        if (isClosed || !m_entries.empty()) threads().setEvent(m_event);
        threads().releaseMutex(m_mutex);
    }
    return isTaken;
}

}    // namespace pwr
