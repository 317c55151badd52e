#pragma once

#include "runtime/Export.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace pwr {
class PluginCapability;
class SystemMetadata;
}    // namespace pwr

// What every plugin is: an identity that the host numbers, and the capabilities that it offers. The host creates
// plugins, drives them from one thread and deletes them; a plugin owns its capabilities.
//
//   class Fan : public MetricPlugin {
//   public:
//       Fan() : MetricPlugin("9c1f...") { addCapability(new pwr::MetricPluginCapability(...)); }
//   };
class QUORVANE_API Plugin {
public:
    using Params = std::vector<std::pair<std::string, std::string>>;
    using Capabilities = std::vector<pwr::PluginCapability*>;

    // Why a driver message follows a reset: by the system state that was recorded then.
    enum class ResetReason : std::uint32_t {
        STATE_NORMAL = 0,        // state 1
        STATE_SUSPENDED = 1,     // state 4
        STATE_HIBERNATED = 2,    // state 5
        OTHER = 5,               // any other state
    };

    // PROCESS: dealt with, the message is still processed. Anything else: the reset consumes the message.
    enum class ResetReturnCode : std::uint32_t { PROCESS = 0, DROP = 1 };

    virtual ~Plugin();
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    // Appends pairs of name and version. The default has none.
    virtual void getVersion(std::vector<std::pair<std::string, std::string>>& versions);

    // An option that the host tells all plugins.
    virtual void handleBroadcastOption(const std::string& option);

    // Asked for a message that follows a reset, at `tsc` ticks. The default drops the message.
    virtual ResetReturnCode reset(ResetReason reason, unsigned long long tsc, const pwr::SystemMetadata& system);

protected:
    // Takes ownership and becomes the capability's owner. Null is left out.
    virtual void addCapability(pwr::PluginCapability* capability);

    virtual void notifyCommandlineParamsSet_i();

public:
    // The small number that the host hands out for the run; -1 until then.
    void setSID(int sid);
    int getSID() const { return m_sid; }
    const std::string& getUUID() const { return m_uuid; }    // never changes

    void setCommandlineParams(const std::string& params);    // then notifies the derived class
    const std::string& getCommandlineParams() const { return m_commandlineParams; }

    // Append the capabilities whose name or group is `name` (all for an empty one), in the order of registration. The
    // pointers stay the plugin's. With a system only those that suit it.
    void getCapabilitiesFor(Capabilities& out, const std::string& name, const pwr::SystemMetadata& system,
                            const Params& params) const;
    void getCapabilitiesFor(Capabilities& out, const std::string& name, const pwr::SystemMetadata& system) const;
    void getAllCapabilities(Capabilities& out, const pwr::SystemMetadata& system) const;
    void getAllCapabilities(Capabilities& out, const std::string& name) const;
    void getAllCapabilities(Capabilities& out) const;

protected:
    explicit Plugin(const std::string& uuid);
    bool hasCapabilities_i() const { return !m_capabilities.empty(); }

private:
    int m_sid = -1;
    std::string m_uuid;
    Capabilities m_capabilities;    // owned
    std::string m_commandlineParams;
};
