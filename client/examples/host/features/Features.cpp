#include "features/Features.h"

#include "features/Counters.h"
#include "features/CpuFrequency.h"
#include "features/CpuIdle.h"
#include "features/CpuLoad.h"
#include "features/Processes.h"
#include "features/Temperature.h"

#include "config/ConfigCap.h"
#include "config/qv_configfile_parser.h"

#include <algorithm>
#include <utility>

namespace host {

namespace {

template <typename... Plugins>
std::vector<std::unique_ptr<FeaturePlugin>> makePlugins()
{
    std::vector<std::unique_ptr<FeaturePlugin>> plugins;
    (plugins.push_back(std::make_unique<Plugins>()), ...);
    return plugins;
}

// What the nearest platform tells, which stands in front.
const pwr::ConfigCap* findConfig(const std::string& prefix, const std::string& platforms)
{
    std::vector<const pwr::ConfigCap*> told;
    pwr::QVConfigFileParser::instance()->getCapabilitiesFor(told, platforms);
    const auto found = std::find_if(told.begin(), told.end(), [&prefix](const pwr::ConfigCap* capability) {
        return capability->getConfigfilePrefix() == prefix;
    });
    return found != told.end() ? *found : nullptr;
}

}    // namespace

Feature::Feature(std::unique_ptr<FeaturePlugin> plugin, const std::string& platforms)
    : m_plugin(std::move(plugin)), m_config(findConfig(m_plugin->getCapability().getConfigFilePrefix(), platforms))
{
}

const std::string& Feature::getDescription() const
{
    const bool isTold = m_config != nullptr && !m_config->getDescription().empty();
    return isTold ? m_config->getDescription() : m_plugin->getCapability().getDescription();
}

bool Feature::isHidden() const
{
    return m_plugin->getCapability().isHidden() || (m_config != nullptr && m_config->isHidden());
}

bool Feature::answersTo(const std::string& name) const
{
    if (m_plugin->getCapability().equals(name)) return true;
    return m_config != nullptr && (m_config->getName() == name || m_config->getGroups().count(name) != 0);
}

bool Feature::isAvailable(const pwr::SystemMetadata& system, const Plugin::Params& params) const
{
    Plugin::Capabilities suitable;
    m_plugin->getCapabilitiesFor(suitable, getName(), system, params);
    return !suitable.empty();
}

std::string Feature::explain(const pwr::SystemMetadata& system, const Plugin::Params& params) const
{
    return m_plugin->getCapability().explain(system, params);
}

std::vector<Feature> makeFeatures(const std::string& platforms)
{
    std::vector<std::unique_ptr<FeaturePlugin>> plugins =
        makePlugins<CpuIdle, CpuLoad, CpuFrequency, ContextSwitches, Interrupts, Processes, DiskIo, NetworkIo,
                    Temperature>();
    std::vector<Feature> features;
    for (std::unique_ptr<FeaturePlugin>& plugin : plugins)
        features.emplace_back(std::move(plugin), platforms);
    return features;
}

}    // namespace host
