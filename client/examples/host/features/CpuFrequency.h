#pragma once

#include "features/FeaturePlugin.h"

namespace host {

// The frequencies at which each logical processor ran, in steps of some MHz, and how long at each: a transition when a
// round finds another than the one before, told with the one that was left. What is held when the collection ends is
// told at its stop, and what is held when a processor goes out of sight, at the last time that it was seen: what
// happened while nobody looked belongs to no frequency.
//
// The constants UNITS_PER-MHZ and UNITS_STEP-MHZ tell what the sources count and how large a step is.
class CpuFrequency : public FeaturePlugin {
public:
    CpuFrequency();

protected:
    void takeBaseline_i(const Source& source, const Items& items, unsigned long long tsc) override;
    std::unique_ptr<pwr::Metric> makeMetric_i(const pwr::SystemMetadata& system) override;
    void takeRound_i(const Source& source, const Items& items, unsigned long long tsc) override;
    void forgetBaselines_i(unsigned long long tsc) override;
    void closeSamples_i(unsigned long long tsc) override;

private:
    struct Processor {
        std::uint64_t heldMHz = 0;
        unsigned long long heldSince = 0;
        unsigned long long seenTsc = 0;
        bool isInSight = false;
    };

    void see_i(std::uint32_t number, std::uint64_t mhz, unsigned long long tsc);
    void tell_i(std::uint32_t number, const Processor& processor, unsigned long long until);
    void loseSight_i(std::uint32_t number, Processor& processor);
    std::uint64_t stepOf_i(const RecordItem& item) const;

    std::map<std::uint32_t, Processor> m_processors;    // by number
    std::uint64_t m_perMHz = 1000;
    std::uint64_t m_stepMHz = 100;
};

}    // namespace host
