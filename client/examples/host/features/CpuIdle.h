#pragma once

#include "features/Feature.h"
#include "machine/SystemTree.h"

namespace host {

// The time that each logical processor spends in each idle state, and in the active state, which is what is left. Read
// from the counters below /sys/devices/system/cpu/cpu*/cpuidle.
//
// The system books idle time when a processor wakes up, so that a counter can grow by more than the interval. What does
// not fit waits for the next intervals: no sampling point ever claims more time than it has. The states take their time
// in their order.
class CpuIdle : public Feature {
public:
    explicit CpuIdle(const SystemTree& tree);

protected:
    bool find_i(std::string& reason) override;
    void readBaseline_i(unsigned long long timestamp) override;
    std::unique_ptr<pwr::Metric> makeMetric_i(const pwr::SystemMetadata& system) override;
    void readRound_i(unsigned long long timestamp) override;

private:
    struct State {
        std::string name;    // different for each of a processor
        std::string file;
        const pwr::DataDescriptor* descriptor = nullptr;
        std::uint64_t counter = 0;         // microseconds, as last read
        std::uint64_t pendingTicks = 0;    // booked, not yet handed in
    };
    struct Processor {
        int number = 0;
        std::vector<State> states;
        const pwr::EntityHandle* entity = nullptr;
        unsigned long long lastTimestamp = 0;    // of its last sampling point
    };

    void addProcessor_i(int number);
    void leaveOut_i(int number, const std::string& file);
    bool readCounters_i(const Processor& processor, std::vector<std::uint64_t>& counters,
                        std::string& unreadable) const;
    void announce_i(pwr::Metric& metric) const;
    void book_i(Processor& processor, const std::vector<std::uint64_t>& counters) const;
    void handInStates_i(Processor& processor, unsigned long long timestamp);

    SystemTree m_tree;
    std::vector<Processor> m_processors;
    const pwr::DataDescriptor* m_active = nullptr;
    std::uint64_t m_ticksPerMicrosecond = 0;
};

}    // namespace host
