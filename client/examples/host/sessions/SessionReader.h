#pragma once

#include "sessions/SessionFormat.h"

#include "plugins/DriverTypes.h"

#include <cstdint>
#include <istream>
#include <memory>
#include <string>
#include <vector>

namespace pwr {
class Metadata;
class SystemMetadata;
}    // namespace pwr

namespace host {

// Reads a saved session entry by entry. It trusts nothing that it reads: a session that is cut or damaged ends there,
// with what was complete before. What it remembers is one entry.
//
//   SessionReader session(file);
//   if (!session.begin(record)) complain(session.getFault());
//   while (session.next()) use(session.getKind());
//   if (!session.isWhole()) warn(session.getFault());
class SessionReader {
public:
    explicit SessionReader(std::istream& in) : m_in(in) {}    // the stream outlives the reader

    // Reads the head and the system record. The library's state takes over the record's topology and clock. False, with
    // nothing to be read, for what is no session.
    bool begin(pwr::SystemMetadata& system);

    // Goes to the next entry; what the one before held is gone. False behind the last one.
    bool next();
    SessionEntry getKind() const { return m_kind; }

    std::unique_ptr<pwr::Metadata> takeMetadata() { return std::move(m_metadata); }    // METADATA: not null, once
    // DRIVER: a PayloadReader may read its payload.
    const qv_driver_msg* getRecord() const;
    unsigned long long getTick() const { return m_numbers[0]; }                          // STATE
    unsigned int getState() const { return static_cast<unsigned int>(m_numbers[1]); }    // STATE
    void takeStopTimes(pwr::SystemMetadata& system) const;                               // CLOSING

    // Ends the session here, for a reason that lies in the row of its entries: "tells of too many resets".
    void refuse(const std::string& fault) { m_fault = fault; }

    bool isWhole() const { return m_isWhole; }                 // the closing record was reached
    const std::string& getFault() const { return m_fault; }    // why next() or begin() went no further
    std::uint64_t getRecords() const { return m_records; }     // driver records so far

private:
    bool takeHead_i();
    bool takeEntry_i();
    bool takeBytes_i(std::uint32_t length);
    bool decode_i();
    bool decodeMetadata_i();
    bool fail_i(const std::string& fault);
    std::uint64_t number_i(std::size_t at, std::size_t width) const;
    std::size_t payloadBytes_i() const { return m_bytes.size() - sizeof(std::uint32_t); }

    std::istream& m_in;
    SessionEntry m_kind{};
    std::vector<std::uint8_t> m_bytes;    // of the entry: its length and payload
    std::uint64_t m_numbers[3] = {};
    std::unique_ptr<pwr::Metadata> m_metadata;
    bool m_isWhole = false;
    std::uint64_t m_records = 0;
    std::size_t m_metadataRecords = 0;
    std::size_t m_states = 0;
    std::string m_fault;
};

}    // namespace host
