#pragma once

#include "runtime/MessageQueue.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace pwr {

// The first 16 bytes of every message, in the machine's byte order.
struct MessageHeader {
    static constexpr std::uint32_t ID_BITS = 0x7FFFFFFF;
    static constexpr std::uint32_t RESPONSE_FLAG = 0x80000000;
    static constexpr std::int32_t COMMAND = 0;
    static constexpr std::int32_t DIE = -1;
    static constexpr std::uint32_t MAX_PAYLOAD_BYTES = 0x100000;

    std::uint32_t idAndFlag = 0;    // the id, and whether a response is required
    std::int32_t control = COMMAND;
    std::int32_t command = 0;         // in a response, the result
    std::uint32_t payloadSize = 0;    // in bytes

    // Of a message that begins with a header.
    static MessageHeader of(const std::vector<char>& message)
    {
        MessageHeader header;
        std::memcpy(&header, message.data(), sizeof header);
        return header;
    }

    bool needsResponse() const { return (idAndFlag & RESPONSE_FLAG) != 0; }

    // The low 31 bits, sign-extended: the flag makes room for the sign.
    int id() const { return static_cast<std::int32_t>(idAndFlag << 1) >> 1; }
};
static_assert(sizeof(MessageHeader) == 16);

// Where a caller and its worker meet: a queue of requests and a queue of responses. A message is one entry for its
// header and one for its payload, if any. An entry is read in one piece, by a reader that knows its size.
class Channel {
public:
    Channel() = default;
    ~Channel();
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;

    bool create();     // the mutexes and events; false, with none of them left, when the system refuses one
    void destroy();    // frees what the queues hold, gives mutexes and events back; nobody may be waiting

    // One entry, with a copy of the bytes; null sends zeros. False, with nothing written: no memory, or the system
    // fails.
    bool writeRequest_i(const void* bytes, std::size_t size);
    bool writeResponse_i(const void* bytes, std::size_t size);

    // Waits for one entry, see MessageQueue::read.
    bool readRequest_i(void* target, std::size_t size);
    bool readResponse_i(void* target, std::size_t size);

    // Whole messages. What fails is logged. A request is written wholly or not at all, and wakes its reader once; a
    // reader gets header and payload in one piece.
    bool writeRequestMessage_i(const MessageHeader& header, const void* payload, std::size_t payloadSize);
    bool writeResponseMessage_i(const MessageHeader& header, const void* payload);
    bool readRequestMessage_i(std::vector<char>& message);
    bool readResponseMessage_i(std::vector<char>& message);

    void closeRequests_i() { m_requests.close(); }
    void closeResponses_i() { m_responses.close(); }

private:
    MessageQueue m_requests;
    MessageQueue m_responses;
};

}    // namespace pwr
