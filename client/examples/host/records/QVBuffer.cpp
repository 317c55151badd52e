#include "records/QVBuffer.h"

#include <algorithm>
#include <limits>

namespace {

constexpr std::uint8_t NOT_READ = 0;
constexpr std::uint8_t READ = 1;
constexpr std::uint8_t READ_SIGNED = 2;

template <typename T>
T readLittleEndian(const std::uint8_t* at)
{
    T value = 0;
    for (std::size_t i = 0; i < sizeof(T); ++i)
        value = static_cast<T>(value | static_cast<T>(static_cast<T>(at[i]) << (8 * i)));
    return value;
}

}    // namespace

namespace host {

double RecordItem::toReal() const
{
    return isSigned ? static_cast<double>(static_cast<std::int64_t>(number)) : static_cast<double>(number);
}

}    // namespace host

void QVBuffer::clear()
{
    m_bytes.clear();
    m_recordStart = m_countAt = 0;
}

void QVBuffer::beginRecord(unsigned long long tsc, const id_config_t& id)
{
    m_recordStart = m_bytes.size();
    m_countAt = 0;
    put_i(std::uint32_t{0});    // the length, told at the end
    put_i(std::uint64_t{tsc});
    put_i(std::uint16_t{0});
    put_i(id.plugin_id);
    put_i(id.metric_id);
    put_i(id.msg_id);
}

void QVBuffer::beginBlock(host::BlockKind kind)
{
    m_kind = kind;
    m_count = 0;
    put_i(static_cast<std::uint8_t>(kind));
    m_countAt = m_bytes.size();
    put_i(m_count);
}

void QVBuffer::addItem(const host::RecordItem& item)
{
    put_i(static_cast<std::uint8_t>(item.indices.count));
    for (std::size_t i = 0; i < item.indices.count; ++i)
        put_i(item.indices.values.at(i));
    const std::uint8_t state = item.isRead ? READ : NOT_READ;
    switch (m_kind) {
    case host::BlockKind::NUMBERS:
        put_i(item.isRead && item.isSigned ? READ_SIGNED : state);
        put_i(item.isRead ? item.number : std::uint64_t{0});
        break;
    case host::BlockKind::TEXTS:
        put_i(state);
        putText_i(item.isRead ? item.text : std::string_view());
        break;
    case host::BlockKind::NAMED_ROWS:
        putText_i(item.text);
        putRow_i(item);
        break;
    case host::BlockKind::ROWS:
        putRow_i(item);
        break;
    case host::BlockKind::NOTHING:
        break;
    }
    replace_i(m_countAt, ++m_count);
}

void QVBuffer::putText_i(std::string_view text)
{
    text = text.substr(0, std::numeric_limits<std::uint16_t>::max());
    put_i(static_cast<std::uint16_t>(text.size()));
    m_bytes.insert(m_bytes.end(), text.begin(), text.end());
}

void QVBuffer::putRow_i(const host::RecordItem& item)
{
    put_i(static_cast<std::uint8_t>(item.numberCount));
    for (std::size_t i = 0; i < item.numberCount; ++i)
        put_i(item.numbers.at(i));
}

void QVBuffer::endRecord()
{
    replace_i(m_recordStart, static_cast<std::uint32_t>(m_bytes.size() - m_recordStart - sizeof(std::uint32_t)));
}

void QVBuffer::append(const QVBuffer& more)
{
    m_bytes.insert(m_bytes.end(), more.m_bytes.begin(), more.m_bytes.end());
}

const qv_driver_msg* QVBuffer::next(std::size_t& offset) const
{
    const std::size_t left = offset <= m_bytes.size() ? m_bytes.size() - offset : 0;
    if (left < sizeof(std::uint32_t)) return nullptr;
    const std::uint8_t* at = m_bytes.data() + offset;
    const auto length = readLittleEndian<std::uint32_t>(at);
    if (length < sizeof(qv_driver_msg) || length > left - sizeof(std::uint32_t)) return nullptr;
    offset += sizeof(std::uint32_t) + length;
    return reinterpret_cast<const qv_driver_msg*>(at + sizeof(std::uint32_t));
}

template <typename T>
void QVBuffer::put_i(T value)
{
    m_bytes.resize(m_bytes.size() + sizeof(T));
    replace_i(m_bytes.size() - sizeof(T), value);
}

template <typename T>
void QVBuffer::replace_i(std::size_t at, T value)
{
    for (std::size_t i = 0; i < sizeof(T); ++i)
        m_bytes[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
}

namespace host {

PayloadReader::PayloadReader(const qv_driver_msg* message)
{
    const auto* head = reinterpret_cast<const std::uint8_t*>(message);
    const auto length = readLittleEndian<std::uint32_t>(head - sizeof(std::uint32_t));
    m_at = head + sizeof(qv_driver_msg);
    m_end = head + std::max<std::size_t>(length, sizeof(qv_driver_msg));
}

bool PayloadReader::nextBlock()
{
    RecordItem passedOver;
    while (nextItem(passedOver))
        continue;
    if (m_isDamaged || m_at == m_end) return false;
    std::uint8_t kind = 0;
    if (!take_i(kind) || !take_i(m_left) || kind > static_cast<std::uint8_t>(BlockKind::NAMED_ROWS)) return fail_i();
    m_kind = static_cast<BlockKind>(kind);
    return true;
}

bool PayloadReader::nextItem(RecordItem& item)
{
    if (m_isDamaged || m_left == 0) return false;
    if (!takeItem_i(item)) return fail_i();
    --m_left;
    return true;
}

template <typename T>
bool PayloadReader::take_i(T& value)
{
    if (static_cast<std::size_t>(m_end - m_at) < sizeof(T)) return false;
    value = readLittleEndian<T>(m_at);
    m_at += sizeof(T);
    return true;
}

bool PayloadReader::takeItem_i(RecordItem& item)
{
    item = RecordItem();
    if (!takeIndices_i(item.indices)) return false;
    switch (m_kind) {
    case BlockKind::NUMBERS:
        return takeNumber_i(item);
    case BlockKind::TEXTS:
        return takeText_i(item);
    case BlockKind::ROWS:
        return takeRow_i(item);
    case BlockKind::NAMED_ROWS:
        return takeBytes_i(item.text) && takeRow_i(item);
    default:
        return false;    // of nothing there are no items
    }
}

bool PayloadReader::takeIndices_i(Indices& indices)
{
    std::uint8_t count = 0;
    if (!take_i(count) || count > Indices::MAX_COUNT) return false;
    indices.count = count;
    for (std::size_t i = 0; i < count; ++i) {
        if (!take_i(indices.values.at(i))) return false;
    }
    return true;
}

bool PayloadReader::takeNumber_i(RecordItem& item)
{
    std::uint8_t state = 0;
    if (!take_i(state) || state > READ_SIGNED || !take_i(item.number)) return false;
    item.isRead = state != NOT_READ;
    item.isSigned = state == READ_SIGNED;
    return true;
}

bool PayloadReader::takeText_i(RecordItem& item)
{
    std::uint8_t state = 0;
    if (!take_i(state) || state > READ) return false;
    item.isRead = state == READ;
    return takeBytes_i(item.text);
}

bool PayloadReader::takeBytes_i(std::string_view& text)
{
    std::uint16_t length = 0;
    if (!take_i(length) || static_cast<std::size_t>(m_end - m_at) < length) return false;
    text = std::string_view(reinterpret_cast<const char*>(m_at), length);
    m_at += length;
    return true;
}

bool PayloadReader::takeRow_i(RecordItem& item)
{
    std::uint8_t count = 0;
    if (!take_i(count) || count > RecordItem::MAX_NUMBERS) return false;
    item.numberCount = count;
    for (std::size_t i = 0; i < count; ++i) {
        if (!take_i(item.numbers.at(i))) return false;
    }
    return true;
}

bool PayloadReader::fail_i()
{
    m_isDamaged = true;
    return false;
}

}    // namespace host
