#pragma once

#include "features/Feature.h"
#include "machine/SystemTree.h"

#include <array>
#include <map>

namespace host {

// Busy percent of each logical processor, from the times that /proc/stat counts in ticks of a hundredth of a second. A
// processor whose counters stand still gets no sample: its next one speaks of the whole time since the last.
class CpuLoad : public Feature {
public:
    explicit CpuLoad(const SystemTree& tree);

protected:
    bool find_i(std::string& reason) override;
    void readBaseline_i(unsigned long long timestamp) override;
    std::unique_ptr<pwr::Metric> makeMetric_i(const pwr::SystemMetadata& system) override;
    void readRound_i(unsigned long long timestamp) override;

private:
    // User, nice, system, idle, waiting for devices, interrupts, soft interrupts, stolen. The times of guests, which
    // follow, are contained in the first two.
    using Times = std::array<std::uint64_t, 8>;

    bool readTimes_i(std::map<int, Times>& times) const;
    static bool parseLine_i(const char*& at, const char* end, int& processor, Times& times);
    void sample_i(unsigned long long timestamp, int processor, const Times& last, const Times& now);

    SystemTree m_tree;
    std::map<int, Times> m_last;    // by logical processor
};

}    // namespace host
