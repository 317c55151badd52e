#include "runtime/os/posix/tracing/TraceFormat.h"

#include <algorithm>
#include <cstring>

namespace pwr::os::trace {

namespace {

constexpr char MAGIC[] = {'Q', 'V', 'T', 'F'};

template <typename T>
char* put(char* out, T value)
{
    for (std::size_t i = 0; i < sizeof(T); ++i) {
        out[i] = static_cast<char>(static_cast<unsigned char>(value >> (8 * i)));
    }
    return out + sizeof(T);
}

template <typename T>
const char* get(const char* bytes, T& value)
{
    std::uint64_t result = 0;
    for (std::size_t i = 0; i < sizeof(T); ++i) {
        result |= static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[i])) << (8 * i);
    }
    value = static_cast<T>(result);
    return bytes + sizeof(T);
}

char* putGuid(char* out, const GUID& guid)
{
    out = put(out, guid.Data1);
    out = put(out, guid.Data2);
    out = put(out, guid.Data3);
    std::memcpy(out, guid.Data4, sizeof guid.Data4);
    return out + sizeof guid.Data4;
}

const char* getGuid(const char* bytes, GUID& guid)
{
    bytes = get(bytes, guid.Data1);
    bytes = get(bytes, guid.Data2);
    bytes = get(bytes, guid.Data3);
    std::memcpy(guid.Data4, bytes, sizeof guid.Data4);
    return bytes + sizeof guid.Data4;
}

char* putDescriptor(char* out, const EVENT_DESCRIPTOR& event)
{
    out = put(out, event.Id);
    out = put(out, event.Version);
    out = put(out, event.Channel);
    out = put(out, event.Level);
    out = put(out, event.Opcode);
    out = put(out, event.Task);
    return put(out, event.Keyword);
}

const char* getDescriptor(const char* bytes, EVENT_DESCRIPTOR& event)
{
    bytes = get(bytes, event.Id);
    bytes = get(bytes, event.Version);
    bytes = get(bytes, event.Channel);
    bytes = get(bytes, event.Level);
    bytes = get(bytes, event.Opcode);
    bytes = get(bytes, event.Task);
    return get(bytes, event.Keyword);
}

}    // namespace

std::string encodeHeader(const FileHeader& header)
{
    const std::size_t nameBytes = std::min(header.session.size(), MAX_NAME_BYTES);
    std::string bytes(FILE_HEADER_BYTES, '\0');
    char* out = bytes.data();
    std::memcpy(out, MAGIC, sizeof MAGIC);
    out = put(out + sizeof MAGIC, FILE_VERSION);
    out = put(out, static_cast<std::uint32_t>(FILE_HEADER_BYTES + nameBytes));
    out = put(out, header.pointerSize);
    out = put(out, header.clock);
    out = put(out, header.bufferKB);
    out = put(out, header.frequencyHz);
    out = put(out, header.startTicks);
    out = put(out, header.startTime);
    const std::string closing = encodeClosing(header);
    std::memcpy(out, closing.data(), closing.size());
    put(out + closing.size(), static_cast<std::uint32_t>(nameBytes));
    return bytes.append(header.session, 0, nameBytes);
}

std::string encodeClosing(const FileHeader& header)
{
    std::string bytes(16, '\0');
    char* out = put(bytes.data(), header.endTime);
    out = put(out, header.eventsLost);
    put(out, header.buffersWritten);
    return bytes;
}

std::size_t decodeHeader(const char* bytes, std::size_t size, FileHeader& header)
{
    if (size < FILE_HEADER_BYTES || std::memcmp(bytes, MAGIC, sizeof MAGIC) != 0) return 0;
    std::uint32_t version = 0;
    std::uint32_t headerBytes = 0;
    std::uint32_t nameBytes = 0;
    const char* in = get(bytes + sizeof MAGIC, version);
    in = get(in, headerBytes);
    in = get(in, header.pointerSize);
    in = get(in, header.clock);
    in = get(in, header.bufferKB);
    in = get(in, header.frequencyHz);
    in = get(in, header.startTicks);
    in = get(in, header.startTime);
    in = get(in, header.endTime);
    in = get(in, header.eventsLost);
    in = get(in, header.buffersWritten);
    in = get(in, nameBytes);
    if (version != FILE_VERSION || header.clock < PERFORMANCE_COUNTER || header.clock > TIME_STAMP_COUNTER) return 0;
    if (nameBytes > MAX_NAME_BYTES || headerBytes != FILE_HEADER_BYTES + nameBytes || headerBytes > size) return 0;
    header.session.assign(in, nameBytes);
    return headerBytes;
}

void encodeEvent(char* out, const EventHead& head, std::size_t payloadBytes)
{
    out = put(out, static_cast<std::uint32_t>(EVENT_HEADER_BYTES + payloadBytes));
    out = put(out, head.processId);
    out = put(out, head.ticks);
    out = putGuid(out, head.provider);
    out = putDescriptor(out, head.descriptor);
    put(out, head.threadId);
}

EventHead decodeEvent(const char* bytes)
{
    EventHead head;
    const char* in = get(bytes + sizeof(std::uint32_t), head.processId);
    in = get(in, head.ticks);
    in = getGuid(in, head.provider);
    in = getDescriptor(in, head.descriptor);
    get(in, head.threadId);
    return head;
}

std::size_t recordSize(const char* bytes)
{
    std::uint32_t size = 0;
    get(bytes, size);
    return size >= EVENT_HEADER_BYTES && size <= MAX_RECORD_BYTES ? size : 0;
}

}    // namespace pwr::os::trace
