#include "sessions/SessionReader.h"

#include "record/Metadata.h"
#include "record/Serializer.h"
#include "record/SystemMetadata.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

namespace host {

namespace {

using Tag = pwr::Metadata::__metadata_data_type;

constexpr std::size_t LENGTH_BYTES = sizeof(std::uint32_t);

std::uint64_t readLittleEndian(const std::uint8_t* at, std::size_t width)
{
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < width; ++i)
        value |= std::uint64_t{at[i]} << (8 * i);
    return value;
}

pwr::Serializer serializerOver(const std::vector<std::uint8_t>& bytes)
{
    return pwr::Serializer(std::vector<char>(bytes.begin() + static_cast<std::ptrdiff_t>(LENGTH_BYTES), bytes.end()));
}

}    // namespace

bool SessionReader::begin(pwr::SystemMetadata& system)
{
    if (!takeHead_i()) return false;
    if (!takeEntry_i()) return fail_i("its system record is cut or damaged");
    pwr::Serializer in = serializerOver(m_bytes);
    Tag tag{};
    const bool isSystem = m_kind == SessionEntry::SYSTEM && in.read_value(tag) != 0 && tag == Tag::SYSTEM;
    if (!isSystem || system.deserialize_i(in, 1) != 0) return fail_i("its system record is cut or damaged");
    if (!std::isfinite(system.qvaClockFreqMHz) || system.qvaClockFreqMHz <= 0)
        return fail_i("its system record tells no clock");
    return true;
}

bool SessionReader::takeHead_i()
{
    std::uint8_t head[SESSION_MAGIC.size() + sizeof(SESSION_VERSION)] = {};
    m_in.read(reinterpret_cast<char*>(head), sizeof(head));
    if (!m_in || !std::equal(SESSION_MAGIC.begin(), SESSION_MAGIC.end(), head)) return fail_i("it begins otherwise");
    const std::uint64_t version = readLittleEndian(head + SESSION_MAGIC.size(), sizeof(SESSION_VERSION));
    if (version == SESSION_VERSION) return true;
    return fail_i("its version is " + std::to_string(version) + ", and only version " +
                  std::to_string(SESSION_VERSION) + " is known");
}

bool SessionReader::next()
{
    if (m_isWhole || !m_fault.empty()) return false;
    if (!takeEntry_i()) return false;
    if (!decode_i()) return fail_i("is damaged");
    return true;
}

bool SessionReader::takeEntry_i()
{
    std::uint8_t head[ENTRY_HEAD_BYTES] = {};
    m_in.read(reinterpret_cast<char*>(head), sizeof(head));
    if (m_in.gcount() == 0) return fail_i("has no end");
    if (!m_in) return fail_i("is cut");
    m_kind = static_cast<SessionEntry>(head[0]);
    const auto length = static_cast<std::uint32_t>(readLittleEndian(head + 1, LENGTH_BYTES));
    if (length > LONGEST_ENTRY_BYTES) return fail_i("is damaged");
    m_bytes.assign(head + 1, head + ENTRY_HEAD_BYTES);
    return takeBytes_i(length) || fail_i("is cut");
}

// Memory follows what is really there, not what the length claims.
bool SessionReader::takeBytes_i(std::uint32_t length)
{
    constexpr std::size_t STEP = std::size_t{1} << 16U;
    for (std::size_t left = length; left > 0;) {
        const std::size_t step = std::min(left, STEP);
        const std::size_t before = m_bytes.size();
        m_bytes.resize(before + step);
        m_in.read(reinterpret_cast<char*>(m_bytes.data() + before), static_cast<std::streamsize>(step));
        if (!m_in) return false;
        left -= step;
    }
    return true;
}

bool SessionReader::decode_i()
{
    switch (m_kind) {
    case SessionEntry::METADATA:
        return decodeMetadata_i();
    case SessionEntry::DRIVER:
        if (payloadBytes_i() < sizeof(qv_driver_msg)) return false;
        ++m_records;
        return true;
    case SessionEntry::STATE:
        if (payloadBytes_i() != STATE_BYTES || ++m_states > MOST_STATES) return false;
        m_numbers[0] = number_i(0, 8);
        m_numbers[1] = number_i(8, 4);
        return true;
    case SessionEntry::CLOSING:
        if (payloadBytes_i() != CLOSING_BYTES) return false;
        for (std::size_t i = 0; i < 3; ++i)
            m_numbers[i] = number_i(8 * i, 8);
        m_isWhole = true;
        return true;
    default:
        return false;    // a second system record too
    }
}

// A system record among them would replace the topology.
bool SessionReader::decodeMetadata_i()
{
    if (payloadBytes_i() < sizeof(Tag) || ++m_metadataRecords > MOST_METADATA) return false;
    const auto tag = static_cast<Tag>(number_i(0, sizeof(Tag)));
    if (tag != Tag::MSG && tag != Tag::METRIC && tag != Tag::COLLECTOR) return false;
    pwr::Serializer in = serializerOver(m_bytes);
    m_metadata.reset(pwr::Metadata::deserialize(in, 1));
    return m_metadata != nullptr && in.remaining() == 0;
}

const qv_driver_msg* SessionReader::getRecord() const
{
    return reinterpret_cast<const qv_driver_msg*>(m_bytes.data() + LENGTH_BYTES);
}

void SessionReader::takeStopTimes(pwr::SystemMetadata& system) const
{
    system.stopTSC = m_numbers[0];
    system.stopTimeval = m_numbers[1];
    system.programStopTimeval = m_numbers[2];
}

std::uint64_t SessionReader::number_i(std::size_t at, std::size_t width) const
{
    return readLittleEndian(m_bytes.data() + LENGTH_BYTES + at, width);
}

bool SessionReader::fail_i(const std::string& fault)
{
    m_fault = fault;
    return false;
}

}    // namespace host
