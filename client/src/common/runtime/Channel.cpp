#include "runtime/Channel.h"

#include "runtime/Log.h"

#include <utility>

namespace pwr {

namespace {

constexpr char WRITE_REQUEST[] = "pwr::QVThread::Channel::writeRequest_i";

// Which side a failed reading belongs to.
struct ReadTexts {
    const char* headerFailed;
    const char* payloadFailed;
};

constexpr ReadTexts REQUEST_TEXTS{"WARNING: couldn't read request message header!\n",
                                  "WARNING: couldn't read request message payload!\n"};
constexpr ReadTexts RESPONSE_TEXTS{"WARNING: couldn't read response message header!\n",
                                   "WARNING: couldn't read response message payload!\n"};

// `readEntry(target, size)` takes the next entry of the queue.
template <typename ReadEntry>
bool readMessage(std::vector<char>& message, const ReadTexts& texts, ReadEntry readEntry)
{
    MessageHeader header;
    if (!readEntry(&header, sizeof header)) {
        QV_LOG_WARNING("%s", texts.headerFailed);
        return false;
    }
    QV_LOG_DEBUG("DEBUG: OK, read payload size = %u\n", header.payloadSize);
    if (header.payloadSize > MessageHeader::MAX_PAYLOAD_BYTES) {
        QV_LOG_WARNING("WARNING: invalid payload size %u received!\n", header.payloadSize);
        return false;
    }
    message.resize(sizeof header + header.payloadSize);
    std::memcpy(message.data(), &header, sizeof header);
    if (header.payloadSize != 0 && !readEntry(message.data() + sizeof header, header.payloadSize)) {
        QV_LOG_WARNING("%s", texts.payloadFailed);
        return false;
    }
    return true;
}

}    // namespace

Channel::~Channel()
{
    destroy();
}

bool Channel::create()
{
    if (m_requests.create() && m_responses.create()) return true;
    destroy();
    return false;
}

void Channel::destroy()
{
    m_requests.destroy();
    m_responses.destroy();
}

bool Channel::writeRequest_i(const void* bytes, std::size_t size)
{
    return m_requests.write(WRITE_REQUEST, MessageEntry(bytes, size), {});
}

bool Channel::writeResponse_i(const void* bytes, std::size_t size)
{
    return m_responses.write("pwr::QVThread::Channel::writeResponse_i", MessageEntry(bytes, size), {});
}

bool Channel::readRequest_i(void* target, std::size_t size)
{
    return m_requests.read("pwr::QVThread::Channel::readRequest_i", target, size);
}

bool Channel::readResponse_i(void* target, std::size_t size)
{
    return m_responses.read("pwr::QVThread::Channel::readResponse_i", target, size);
}

bool Channel::writeRequestMessage_i(const MessageHeader& header, const void* payload, std::size_t payloadSize)
{
    MessageEntry copy;
    if (payloadSize != 0) {
        copy = MessageEntry(payload, payloadSize);
        if (!copy.bytes) {
            QV_LOG_WARNING("WARNING: couldn't write request message payload!\n");
            return false;
        }
    }
    if (m_requests.write(WRITE_REQUEST, MessageEntry(&header, sizeof header), std::move(copy))) return true;
    QV_LOG_WARNING("WARNING: couldn't write request message header!\n");
    return false;
}

bool Channel::writeResponseMessage_i(const MessageHeader& header, const void* payload)
{
    if (!writeResponse_i(&header, sizeof header)) {
        QV_LOG_WARNING("WARNING: couldn't write response message header!\n");
        return false;
    }
    QV_LOG_DEBUG("DEBUG: OK, wrote response header\n");
    if (header.payloadSize != 0 && !writeResponse_i(payload, header.payloadSize)) {
        QV_LOG_WARNING("WARNING: couldn't write response message payload!\n");
        return false;
    }
    return true;
}

bool Channel::readRequestMessage_i(std::vector<char>& message)
{
    return readMessage(message, REQUEST_TEXTS,
                       [this](void* target, std::size_t size) { return readRequest_i(target, size); });
}

bool Channel::readResponseMessage_i(std::vector<char>& message)
{
    return readMessage(message, RESPONSE_TEXTS,
                       [this](void* target, std::size_t size) { return readResponse_i(target, size); });
}

}    // namespace pwr
