#include "sessions/SessionWriter.h"

#include "records/QVBuffer.h"

#include "record/Metadata.h"
#include "record/Serializer.h"
#include "record/SystemMetadata.h"
#include "runtime/pw_functions.h"

#include <cerrno>
#include <filesystem>
#include <memory>
#include <system_error>
#include <vector>

namespace host {

namespace {

constexpr std::size_t ENOUGH_PENDING_BYTES = std::size_t{1} << 16U;

std::string_view viewOf(const std::vector<char>& bytes)
{
    return {bytes.data(), bytes.size()};
}

template <typename T>
void append(std::string& bytes, T value)
{
    for (std::size_t i = 0; i < sizeof(T); ++i)
        bytes += static_cast<char>(static_cast<std::uint64_t>(value) >> (8 * i));
}

}    // namespace

bool SessionWriter::open(const std::string& path)
{
    m_path = path;
    std::error_code ignored;
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    if (!folder.empty()) std::filesystem::create_directories(folder, ignored);
    errno = 0;
    m_file.open(path, std::ios::binary | std::ios::trunc);
    if (!m_file) {
        fail_i("can't be written");
        return false;
    }
    m_pending.assign(SESSION_MAGIC.begin(), SESSION_MAGIC.end());
    append(m_pending, SESSION_VERSION);
    return true;
}

void SessionWriter::begin(const pwr::SystemMetadata& system)
{
    pwr::Serializer out;
    system.serialize(out);
    put_i(SessionEntry::SYSTEM, viewOf(out.get_buffer()));
}

void SessionWriter::addMetadata(const pwr::Metadata& record)
{
    pwr::Serializer out;
    record.serialize(out);
    pwr::Serializer in(out.get_buffer());
    const std::unique_ptr<pwr::Metadata> copy(pwr::Metadata::deserialize(in, 1));
    if (!copy) {
        fail_i("can't hold a metadata record with an empty text");
        return;
    }
    put_i(SessionEntry::METADATA, viewOf(out.get_buffer()));
}

void SessionWriter::addStates(const std::map<unsigned long long, unsigned int>& events)
{
    if (events == m_states) return;
    for (const auto& [tick, state] : events) {
        const auto [known, isNew] = m_states.try_emplace(tick, state);
        if (!isNew && known->second == state) continue;
        known->second = state;
        std::string payload;
        append(payload, std::uint64_t{tick});
        append(payload, std::uint32_t{state});
        put_i(SessionEntry::STATE, payload);
    }
}

void SessionWriter::addRecords(const QVBuffer& records)
{
    std::size_t begin = 0;
    std::size_t offset = 0;
    const char* bytes = reinterpret_cast<const char*>(records.getBytes().data());
    for (; records.next(offset) != nullptr; begin = offset) {
        const std::size_t head = sizeof(std::uint32_t);    // the length, which an entry tells itself
        put_i(SessionEntry::DRIVER, {bytes + begin + head, offset - begin - head});
        ++m_records;
    }
}

void SessionWriter::flush()
{
    if (!m_error.empty()) return;
    errno = 0;
    m_file.write(m_pending.data(), static_cast<std::streamsize>(m_pending.size()));
    m_file.flush();
    m_pending.clear();
    if (!m_file) fail_i("could not be written to its end");
}

void SessionWriter::end(const pwr::SystemMetadata& system)
{
    std::string payload;
    append(payload, system.stopTSC);
    append(payload, system.stopTimeval);
    append(payload, system.programStopTimeval);
    put_i(SessionEntry::CLOSING, payload);
}

bool SessionWriter::close()
{
    flush();
    errno = 0;
    m_file.close();
    if (!m_file) fail_i("could not be written to its end");
    return m_error.empty();
}

void SessionWriter::put_i(SessionEntry kind, std::string_view payload)
{
    if (!m_error.empty()) return;
    if (payload.size() > LONGEST_ENTRY_BYTES) {
        fail_i("can't hold a record of " + std::to_string(payload.size()) + " bytes");
        return;
    }
    m_pending += static_cast<char>(kind);
    append(m_pending, static_cast<std::uint32_t>(payload.size()));
    m_pending += payload;
    if (m_pending.size() >= ENOUGH_PENDING_BYTES) flush();
}

void SessionWriter::fail_i(const std::string& what)
{
    if (!m_error.empty()) return;
    char reason[256] = "";
    if (errno != 0) pwr::pw_strerror(errno, reason, sizeof(reason));
    m_error = m_path + " " + what + (*reason != '\0' ? std::string(": ") + reason : std::string());
}

}    // namespace host
