#include "features/FeatureCapability.h"

namespace host {

FeatureCapability::FeatureCapability(const std::string& name, const std::string& description, const std::string& prefix,
                                     unsigned char metricId)
    : pwr::MetricPluginCapability(name, description, prefix, metricId)
{
}

void FeatureCapability::require(HostRequirement* requirement)
{
    addPluginRequirement(requirement);
    m_hostRequirements.push_back(requirement);
}

std::string FeatureCapability::explain(const pwr::SystemMetadata& system, const Params& params) const
{
    for (const HostRequirement* requirement : m_hostRequirements) {
        if (!requirement->isPluginRequirementSatisfied(system, params)) return requirement->explain(system, params);
    }
    return {};
}

}    // namespace host
