#include "plugins/PluginRequirement.h"

#include "record/SystemMetadata.h"
#include "runtime/Log.h"

namespace pwr {

namespace {

constexpr const char* DRIVER_PREFIX = "DRIVERREQ";

// The three numbers that a driver version shows; the bits between them count in comparisons only.
unsigned int majorOf(unsigned long long version)
{
    return static_cast<unsigned int>(version >> 32 & 0xFF);
}

unsigned int minorOf(unsigned long long version)
{
    return static_cast<unsigned int>(version >> 16 & 0xFF);
}

unsigned int thirdOf(unsigned long long version)
{
    return static_cast<unsigned int>(version & 0xFF);
}

// Tells the user once in the life of the process. Without an environment there is nobody to tell yet.
void reportMissingGraphics()
{
    static bool s_isReported = false;
    if (s_isReported || g_pluginEnvironment == nullptr) return;
    s_isReported = true;
    constexpr const char* TEXT =
        "An integrated graphics device is not detected. Integrated graphics related metrics are disabled.";
    QV_LOG_PLAIN("%s\n", TEXT);
    g_pluginEnvironment->queueMessage(TEXT);
}

}    // namespace

DriverInterface::~DriverInterface() = default;

void DriverInterface::reserved() {}

PluginRequirement::PluginRequirement(const std::string& name, bool negative) : m_name(name), m_negative(negative) {}

PluginRequirement::~PluginRequirement() = default;

bool PluginRequirement::isPluginRequirementSatisfied(const SystemMetadata& system, const Params& params) const
{
    const bool isMet = isPluginRequirementSatisfied_i(system, params);
    if (m_negative) {
        QV_LOG_DEBUG("DEBUG: Negative Requirement met: %d\n", !isMet);
        return !isMet;
    }
    QV_LOG_DEBUG("DEBUG: Requirement met: %d\n", isMet);
    return isMet;
}

FMSPluginRequirement::FMSPluginRequirement(const FMS& fms, bool negative)
    : PluginRequirement("FMS", negative), m_fms(fms)
{
}

bool FMSPluginRequirement::isPluginRequirementSatisfied_i(const SystemMetadata& system, const Params&) const
{
    return m_fms == system.fms;
}

SCUPluginRequirement::SCUPluginRequirement(const unsigned int& scu, bool negative)
    : PluginRequirement("SCU", negative), m_scu(scu)
{
}

bool SCUPluginRequirement::isPluginRequirementSatisfied_i(const SystemMetadata& system, const Params&) const
{
    return m_scu == system.scuVersion;
}

OSNamePluginRequirement::OSNamePluginRequirement(const std::string& name, bool negative)
    : PluginRequirement("OS", negative), m_osName(name)
{
}

bool OSNamePluginRequirement::isPluginRequirementSatisfied_i(const SystemMetadata& system, const Params&) const
{
    return m_osName == system.osName;
}

IGFXPresentPluginRequirement::IGFXPresentPluginRequirement(bool negative) : PluginRequirement("IGFX", negative) {}

bool IGFXPresentPluginRequirement::isPluginRequirementSatisfied_i(const SystemMetadata& system, const Params&) const
{
    if (system.iGfxId != 0) return true;
    reportMissingGraphics();
    return false;
}

PCHPluginRequirement::PCHPluginRequirement(const std::string& name, bool negative)
    : PluginRequirement("PCH", negative), m_part(name)
{
}

bool PCHPluginRequirement::isPluginRequirementSatisfied_i(const SystemMetadata& system, const Params&) const
{
    return system.platformName.find(m_part) != std::string::npos;
}

HyperVEnablePluginRequirement::HyperVEnablePluginRequirement(bool negative) : PluginRequirement("HV", negative) {}

bool HyperVEnablePluginRequirement::isPluginRequirementSatisfied_i(const SystemMetadata& system, const Params&) const
{
    return system.hyperVEnabled != 0;
}

VSMDisablePluginRequirement::VSMDisablePluginRequirement(bool negative) : PluginRequirement("VSM", negative) {}

bool VSMDisablePluginRequirement::isPluginRequirementSatisfied_i(const SystemMetadata& system, const Params&) const
{
    return system.vsmEnabled == 0;
}

PluginRequirementGroup::PluginRequirementGroup(bool all) : PluginRequirement("SYSTEM", false), m_all(all) {}

PluginRequirementGroup::~PluginRequirementGroup()
{
    for (const PluginRequirement* member : m_members)
        delete member;
}

bool PluginRequirementGroup::addPluginRequirement(PluginRequirement* requirement)
{
    if (requirement != nullptr) m_members.push_back(requirement);
    return true;
}

bool PluginRequirementGroup::isPluginRequirementSatisfied_i(const SystemMetadata& system, const Params& params) const
{
    if (m_members.empty()) return true;
    for (const PluginRequirement* member : m_members) {
        const bool isMet = member->isPluginRequirementSatisfied(system, params);
        if (isMet != m_all) return isMet;
    }
    return m_all;
}

DriverRequirement::DriverRequirement(unsigned long long minimum, DriverInterface* driver)
    : PluginRequirement("DriverRequirement", false), m_driver(driver), m_minimum(minimum)
{
}

bool DriverRequirement::isPluginRequirementSatisfied_i(const SystemMetadata&, const Params&) const
{
    if (m_driver == nullptr) return false;
    const unsigned long long version = m_driver->getVersion();
    QV_LOG_INFO_FOR(DRIVER_PREFIX, "INFO: DriverRequirement requirement has driver version = %llu\n", version);
    if (version >= m_minimum) return true;
    QV_LOG_WARNING_FOR(DRIVER_PREFIX, "WARNING: Driver version %u.%u.%u found, minimum driver required is %u.%u.%u\n",
                       majorOf(version), minorOf(version), thirdOf(version), majorOf(m_minimum), minorOf(m_minimum),
                       thirdOf(m_minimum));
    return false;
}

}    // namespace pwr
