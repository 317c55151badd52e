#pragma once

#include <cstdint>
#include <string>

namespace pwr {
class SystemMetadata;
}

namespace host {

// Turns the ticks of a run into time, exact to the nanosecond. Without a record, and for one that doesn't name the
// clock, a tick is a nanosecond.
class RunTime {
public:
    void use(const pwr::SystemMetadata& record);    // not owned; outlives the last call

    const pwr::SystemMetadata* getRecord() const { return m_record; }    // null: none yet
    std::uint64_t toNs(std::uint64_t ticks) const;                // the greatest number for what is too long for one
    std::uint64_t sinceStartNs(std::uint64_t timestamp) const;    // 0 for what is older

    // "2026-11-23T01:54:32.123456789Z" of a moment since the start; nothing where the record doesn't tell its start.
    void appendUtc(std::string& out, std::uint64_t sinceStartNs);

private:
    const pwr::SystemMetadata* m_record = nullptr;
    std::uint64_t m_ticksPerSecond = 1'000'000'000;
    std::uint64_t m_second = 0;    // of the text
    std::string m_text;            // the last one up to its point: moments of one second follow each other
};

// The same for a moment in nanoseconds since the epoch, in whole seconds: "2026-11-23 01:54:32 UTC".
std::string utcText(std::uint64_t sinceEpochNs);

}    // namespace host
