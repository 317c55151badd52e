#include "modules/ModuleFeature.h"

#include "modules/Modules.h"

#include "config/InputMsg.h"
#include "config/qv_configfile_parser.h"
#include "record/Metadata.h"

#include <cstddef>
#include <utility>

namespace host {

namespace {

// The module's own conditions, and that the configuration has messages for the feature.
class ModuleRequirement : public HostRequirement {
public:
    explicit ModuleRequirement(const pwr::MetricPluginCapability& capability)
        : HostRequirement("MODULE"), m_capability(capability)
    {
    }

    std::string explain(const pwr::SystemMetadata& system, const Params& params) const override
    {
        if (!isSuitable_i(system, params)) return "requires another system: its module says so";
        return "requires messages: there is none of " + m_capability.getConfigFilePrefix() + " for " +
               parameter(params, SourceRequirement::PLATFORMS);
    }

protected:
    bool isPluginRequirementSatisfied_i(const pwr::SystemMetadata& system, const Params& params) const override
    {
        return isSuitable_i(system, params) && (m_capability.isNoCollect() || hasMessages_i(params));
    }

private:
    bool isSuitable_i(const pwr::SystemMetadata& system, const Params& params) const
    {
        return m_capability.isCapabilitySuitableFor(system, params) != pwr::PluginRequirementResult::NOT_SUITABLE;
    }
    bool hasMessages_i(const Params& params) const
    {
        return pwr::QVConfigFileParser::instance()->isPlatformPrefixSupported(
            parameter(params, SourceRequirement::PLATFORMS), m_capability.getConfigFilePrefix());
    }

    const pwr::MetricPluginCapability& m_capability;
};

FeatureCapability* copyOf(const pwr::MetricPluginCapability& capability)
{
    auto* copy = new FeatureCapability(capability.getName(), capability.getDescription(),
                                       capability.getConfigFilePrefix(), capability.getMetricID());
    for (const std::string& group : capability.getGroupNames())
        copy->addGroupName(group);
    if (capability.isHidden()) copy->setHidden();
    copy->require(new ModuleRequirement(capability));
    return copy;
}

}    // namespace

ModuleFeature::ModuleFeature(MetricPlugin& plugin, const pwr::MetricPluginCapability& capability)
    : FeaturePlugin(plugin.getUUID(), copyOf(capability)), m_plugin(plugin)
{
}

void ModuleFeature::getVersion(std::vector<std::pair<std::string, std::string>>& versions)
{
    m_plugin.getVersion(versions);
}

void ModuleFeature::handleBroadcastOption(const std::string& option)
{
    m_plugin.handleBroadcastOption(option);
}

Plugin::ResetReturnCode ModuleFeature::reset(ResetReason reason, unsigned long long tsc,
                                             const pwr::SystemMetadata& system)
{
    return m_plugin.reset(reason, tsc, system);
}

int ModuleFeature::initialize(const pwr::SystemMetadata& system)
{
    m_plugin.setSID(getSID());
    return m_plugin.initialize(system);
}

int ModuleFeature::finalize(const pwr::SystemMetadata& system)
{
    return m_plugin.finalize(system);
}

int ModuleFeature::processMessage_i(const pwr::SystemMetadata& system, const qv_driver_msg* message)
{
    const int result = m_plugin.processMessage_i(system, message);
    if (result == 0) countForeignSample_i();
    return result;
}

int ModuleFeature::processMetadata(const pwr::Metadata* metadata)
{
    return m_plugin.processMetadata(metadata);
}

int ModuleFeature::initializeCollection(Messages& messages, MetadataList& metadata, const std::string& feature,
                                        const Params& params, const pwr::SystemMetadata& system)
{
    const std::size_t before = messages.size();
    m_plugin.setSID(getSID());
    const int result = m_plugin.initializeCollection(messages, metadata, feature, params, system);
    for (std::size_t i = before; i < messages.size(); ++i) {
        if (messages[i] != nullptr && messages[i]->getFeatureName().empty()) messages[i]->setFeatureName(feature);
    }
    std::erase(metadata, nullptr);
    for (pwr::Metadata* record : metadata) {
        // By the feature's name a saved session finds the way back to it.
        if (auto* message = dynamic_cast<pwr::MsgMetadata*>(record)) message->setCapName(feature);
    }
    return result;
}

QVDynamicHelpType ModuleFeature::getDynamicHelpDisplayType(const std::string&, const Params&,
                                                           const pwr::SystemMetadata&)
{
    return QVDynamicHelpType::NO_MESSAGES;
}

int ModuleFeature::finalizeCollection(const std::string& feature, const Params& params,
                                      const pwr::SystemMetadata& system)
{
    return m_plugin.finalizeCollection(feature, params, system);
}

void ModuleFeature::getOrgMsgTag(const qv_driver_msg* message, std::string& tag) const
{
    m_plugin.getOrgMsgTag(message, tag);
}

void ModuleFeature::getOrgMsgPayload(const qv_driver_msg* message, std::string& payload) const
{
    m_plugin.getOrgMsgPayload(message, payload);
}

void addModuleFeatures(std::vector<Feature>& features, const Modules& modules, const std::string& platforms)
{
    for (MetricPlugin* plugin : modules.getMetricPlugins()) {
        Plugin::Capabilities capabilities;
        plugin->getAllCapabilities(capabilities);
        for (const pwr::PluginCapability* offered : capabilities) {
            const auto* capability = dynamic_cast<const pwr::MetricPluginCapability*>(offered);
            if (capability == nullptr) continue;
            features.emplace_back(std::make_unique<ModuleFeature>(*plugin, *capability), platforms);
        }
    }
}

}    // namespace host
