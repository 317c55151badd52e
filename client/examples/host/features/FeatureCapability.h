#pragma once

#include "collector/HostRequirement.h"

#include "plugins/PluginCapability.h"

#include <string>
#include <vector>

namespace host {

// A feature that can say why it isn't available here. `prefix` is its name in the configuration files.
class FeatureCapability : public pwr::MetricPluginCapability {
public:
    FeatureCapability(const std::string& name, const std::string& description, const std::string& prefix,
                      unsigned char metricId);

    void require(HostRequirement* requirement);    // takes ownership; asked in this order

    // The first requirement that isn't met, in words; empty when all are.
    std::string explain(const pwr::SystemMetadata& system, const Params& params) const;

private:
    std::vector<const HostRequirement*> m_hostRequirements;    // the base class owns them
};

}    // namespace host
