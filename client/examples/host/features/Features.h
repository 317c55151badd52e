#pragma once

#include "features/FeaturePlugin.h"

namespace pwr {
class ConfigCap;
}

namespace host {

// One feature as the user sees it: what its plugin says, and above that what the configuration says of it for the
// platforms of this machine.
class Feature {
public:
    // `platforms` are those that the loaded configuration knows the system by.
    Feature(std::unique_ptr<FeaturePlugin> plugin, const std::string& platforms);

    FeaturePlugin& getPlugin() const { return *m_plugin; }
    const std::string& getName() const { return m_plugin->getName(); }
    const std::string& getDescription() const;
    bool isHidden() const;

    // The name, another name that the configuration gives it, or a group.
    bool answersTo(const std::string& name) const;

    bool isAvailable(const pwr::SystemMetadata& system, const Plugin::Params& params) const;
    // For one that isn't: "requires idle states: there is no ...".
    std::string explain(const pwr::SystemMetadata& system, const Plugin::Params& params) const;

private:
    std::unique_ptr<FeaturePlugin> m_plugin;
    const pwr::ConfigCap* m_config;    // the configuration's; null where it tells nothing of the feature
};

// All features that the host has plugins for, in the order of listings.
std::vector<Feature> makeFeatures(const std::string& platforms);

}    // namespace host
