#include "plugins/Plugin.h"

#include "plugins/PluginCapability.h"
#include "runtime/Log.h"

namespace {

bool isNamed(const pwr::PluginCapability& capability, const std::string& name)
{
    return name.empty() || capability.equals(name);
}

}    // namespace

Plugin::Plugin(const std::string& uuid) : m_uuid(uuid) {}

Plugin::~Plugin()
{
    for (const pwr::PluginCapability* capability : m_capabilities)
        delete capability;
}

void Plugin::getVersion(std::vector<std::pair<std::string, std::string>>&) {}

void Plugin::handleBroadcastOption(const std::string&) {}

Plugin::ResetReturnCode Plugin::reset(ResetReason, unsigned long long, const pwr::SystemMetadata&)
{
    return ResetReturnCode::DROP;
}

void Plugin::addCapability(pwr::PluginCapability* capability)
{
    if (capability == nullptr) return;
    m_capabilities.push_back(capability);
    capability->setOwner(this);
}

void Plugin::notifyCommandlineParamsSet_i() {}

void Plugin::setSID(int sid)
{
    m_sid = sid;
}

void Plugin::setCommandlineParams(const std::string& params)
{
    m_commandlineParams = params;
    notifyCommandlineParamsSet_i();
}

void Plugin::getCapabilitiesFor(Capabilities& out, const std::string& name, const pwr::SystemMetadata& system,
                                const Params& params) const
{
    for (pwr::PluginCapability* capability : m_capabilities) {
        if (!isNamed(*capability, name)) continue;
        if (capability->isCapabilitySuitableFor(system, params) == pwr::PluginRequirementResult::NOT_SUITABLE) continue;
        QV_LOG_INFO("INFO: %s is reporting a suitable capability for %s!\n", m_uuid.c_str(), name.c_str());
        out.push_back(capability);
    }
}

void Plugin::getCapabilitiesFor(Capabilities& out, const std::string& name, const pwr::SystemMetadata& system) const
{
    getCapabilitiesFor(out, name, system, Params());
}

void Plugin::getAllCapabilities(Capabilities& out, const pwr::SystemMetadata& system) const
{
    getCapabilitiesFor(out, "", system);
}

void Plugin::getAllCapabilities(Capabilities& out, const std::string& name) const
{
    for (pwr::PluginCapability* capability : m_capabilities) {
        if (isNamed(*capability, name)) out.push_back(capability);
    }
}

void Plugin::getAllCapabilities(Capabilities& out) const
{
    getAllCapabilities(out, "");
}
