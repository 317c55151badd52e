#pragma once

#include "features/FeaturePlugin.h"
#include "features/Features.h"

#include <string>
#include <vector>

namespace pwr {
class MetricPluginCapability;
}

namespace host {

class Modules;

// One feature of a module's metric plugin among the host's own features: hands everything on to the plugin, under its
// own number. A plugin with several capabilities has one of these for each, and learns the number of the feature that
// it is set up for. The message records that it gives bear the feature's name.
class ModuleFeature : public FeaturePlugin {
public:
    // Both are the module's, which outlives the feature.
    ModuleFeature(MetricPlugin& plugin, const pwr::MetricPluginCapability& capability);

    void getVersion(std::vector<std::pair<std::string, std::string>>& versions) override;
    void handleBroadcastOption(const std::string& option) override;
    ResetReturnCode reset(ResetReason reason, unsigned long long tsc, const pwr::SystemMetadata& system) override;
    int initialize(const pwr::SystemMetadata& system) override;
    int finalize(const pwr::SystemMetadata& system) override;
    int processMessage_i(const pwr::SystemMetadata& system, const qv_driver_msg* message) override;
    int processMetadata(const pwr::Metadata* metadata) override;
    int initializeCollection(Messages& messages, MetadataList& metadata, const std::string& feature,
                             const Params& params, const pwr::SystemMetadata& system) override;
    // NO_MESSAGES, without asking the plugin: it may count on a stream, which stands only for a collection.
    QVDynamicHelpType getDynamicHelpDisplayType(const std::string& feature, const Params& params,
                                                const pwr::SystemMetadata& system) override;
    int finalizeCollection(const std::string& feature, const Params& params,
                           const pwr::SystemMetadata& system) override;
    void getOrgMsgTag(const qv_driver_msg* message, std::string& tag) const override;
    void getOrgMsgPayload(const qv_driver_msg* message, std::string& payload) const override;

protected:
    // The plugin deals with its records itself.
    void takeBaseline_i(const Source&, const Items&, unsigned long long) override {}
    std::unique_ptr<pwr::Metric> makeMetric_i(const pwr::SystemMetadata&) override { return nullptr; }
    void takeRound_i(const Source&, const Items&, unsigned long long) override {}
    void forgetBaselines_i(unsigned long long) override {}

private:
    MetricPlugin& m_plugin;
};

// Appends the features of the modules' metric plugins, with what the configuration says of them for the platforms.
void addModuleFeatures(std::vector<Feature>& features, const Modules& modules, const std::string& platforms);

}    // namespace host
