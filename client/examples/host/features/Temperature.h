#pragma once

#include "features/FeaturePlugin.h"

#include <set>

namespace host {

// Degrees of each thermal zone or sensor. One that can't be read in some round has no sample there. Nothing accrues, so
// that a reset only means that the sample behind it stands for no time.
class Temperature : public FeaturePlugin {
public:
    Temperature();

protected:
    void takeBaseline_i(const Source& source, const Items& items, unsigned long long tsc) override;
    std::unique_ptr<pwr::Metric> makeMetric_i(const pwr::SystemMetadata& system) override;
    void takeRound_i(const Source& source, const Items& items, unsigned long long tsc) override;
    void forgetBaselines_i(unsigned long long tsc) override;

private:
    struct Zone {
        std::string name;    // different for each
        const pwr::EntityHandle* entity = nullptr;
    };
    using Place = std::pair<std::string, Indices>;    // the tag of the source, and the numbers

    std::string uniqueName_i(const Source& source, const RecordItem& item);
    static void openZone_i(Zone& zone);

    std::map<Place, Zone> m_zones;
    std::set<std::string> m_names;
    double m_perDegree = 1000;
    unsigned long long m_resetTsc = 0;
};

}    // namespace host
