#pragma once

#include "features/FeaturePlugin.h"

namespace host {

// The time that each logical processor spends in each idle state, and in the active state, which is what is left. Its
// sources count the time of state by processor and state.
//
// The system books idle time when a processor wakes up, so that a counter can grow by more than the interval. What does
// not fit waits for the next intervals: no sampling point ever claims more time than it has. The states take their time
// in their order.
class CpuIdle : public FeaturePlugin {
public:
    CpuIdle();

protected:
    void takeBaseline_i(const Source& source, const Items& items, unsigned long long tsc) override;
    std::unique_ptr<pwr::Metric> makeMetric_i(const pwr::SystemMetadata& system) override;
    void takeRound_i(const Source& source, const Items& items, unsigned long long tsc) override;
    void forgetBaselines_i(unsigned long long tsc) override;

private:
    struct State {
        std::uint32_t number = 0;
        std::string name;    // different for each of a processor
        const pwr::DataDescriptor* descriptor = nullptr;
        std::uint64_t counter = 0;         // as last read
        std::uint64_t pendingTicks = 0;    // booked, not yet handed in
    };
    struct Processor {
        std::vector<State> states;
        const pwr::EntityHandle* entity = nullptr;
        unsigned long long lastTsc = 0;    // of its last sampling point
        bool hasBaseline = true;
    };

    State nameState_i(const Source& source, const RecordItem& item, const Processor& processor) const;
    void announce_i(pwr::Metric& metric) const;
    void takeProcessor_i(Processor& processor, const RecordItem* first, const RecordItem* end, unsigned long long tsc);
    void begin_i(Processor& processor, const std::vector<std::uint64_t>& counters, unsigned long long tsc);
    void book_i(Processor& processor, const std::vector<std::uint64_t>& counters) const;
    void handInStates_i(Processor& processor, unsigned long long tsc);

    std::map<std::uint32_t, Processor> m_processors;    // by number: the order of samples
    std::string m_activeName;
    const pwr::DataDescriptor* m_active = nullptr;
    std::uint64_t m_ticksPerCount = 0;
};

}    // namespace host
