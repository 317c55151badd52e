#pragma once

#include "features/Feature.h"

namespace host {

// Busy percent of the whole CPU, from the processor times that Windows keeps.
class CpuTotalLoad : public Feature {
public:
    CpuTotalLoad();

protected:
    bool find_i(std::string& reason) override;
    void readBaseline_i(unsigned long long timestamp) override;
    std::unique_ptr<pwr::Metric> makeMetric_i(const pwr::SystemMetadata& system) override;
    void readRound_i(unsigned long long timestamp) override;

private:
    struct Times {    // in 100 ns, of all processors together
        unsigned long long busy = 0;
        unsigned long long total = 0;
    };
    static bool readTimes_i(Times& times);

    Times m_last;
};

}    // namespace host
