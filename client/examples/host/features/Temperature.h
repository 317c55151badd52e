#pragma once

#include "features/FeaturePlugin.h"

#include <set>

namespace pwr {
class ThermalSampleHandler;
}

namespace host {

// Whole degrees of each thermal zone or sensor, handed in to the temperature metric that all plugins share. That one
// knows no degrees below 0: such a reading, like one that fails, is no sample. Nothing accrues, so that a reset only
// means that the sample behind it stands for no time.
class Temperature : public FeaturePlugin {
public:
    Temperature();
    ~Temperature() override;

    std::string getSwitchTag() const override;    // of the shared metric

protected:
    void takeBaseline_i(const Source& source, const Items& items, unsigned long long tsc) override;
    std::unique_ptr<pwr::Metric> makeMetric_i(const pwr::SystemMetadata& system) override;
    void takeRound_i(const Source& source, const Items& items, unsigned long long tsc) override;
    void forgetBaselines_i(unsigned long long tsc) override;
    bool sendTables_i() override;

private:
    struct Zone {
        std::string name;    // different for each
        const pwr::EntityHandle* entity = nullptr;
    };
    using Place = std::pair<std::string, Indices>;    // the tag of the source, and the numbers

    void join_i(Zone& zone) const;
    std::string uniqueName_i(const Source& source, const RecordItem& item);
    void handInDegrees_i(const pwr::EntityHandle* entity, unsigned short degrees, unsigned long long tsc);
    void beginSweep_i(unsigned long long tsc);

    std::map<Place, Zone> m_zones;
    std::set<std::string> m_names;
    double m_perDegree = 1000;
    unsigned long long m_resetTsc = 0;
    pwr::ThermalSampleHandler* m_handler = nullptr;    // the process's; null before the first round
    unsigned long long m_sweepTsc = 0;
    std::size_t m_sweepReadings = 0;    // in the sweep of that time
};

}    // namespace host
