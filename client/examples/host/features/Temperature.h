#pragma once

#include "features/Feature.h"
#include "machine/SystemTree.h"

namespace host {

// Degrees of each thermal zone below /sys/class/thermal. A zone that can't be read in some round has no sample there.
class Temperature : public Feature {
public:
    explicit Temperature(const SystemTree& tree);

protected:
    bool find_i(std::string& reason) override;
    void readBaseline_i(unsigned long long timestamp) override;
    std::unique_ptr<pwr::Metric> makeMetric_i(const pwr::SystemMetadata& system) override;
    void readRound_i(unsigned long long timestamp) override;

private:
    struct Zone {
        std::string name;    // different for each
        std::string file;
        const pwr::EntityHandle* entity = nullptr;
    };
    void addZone_i(int number);

    SystemTree m_tree;
    std::vector<Zone> m_zones;
};

}    // namespace host
