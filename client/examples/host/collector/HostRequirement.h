#pragma once

#include "machine/SystemTree.h"

#include "plugins/PluginRequirement.h"

#include <string>

namespace pwr {
class InputMsg;
}

namespace host {

// A requirement that can say why it isn't met.
class HostRequirement : public pwr::PluginRequirement {
public:
    // For one that isn't met: "requires idle states: there is no /sys/...".
    virtual std::string explain(const pwr::SystemMetadata& system, const Params& params) const = 0;

protected:
    explicit HostRequirement(const std::string& name) : pwr::PluginRequirement(name, false) {}
};

// The path exists below the root. Kinds of access depend on it.
class PathRequirement : public HostRequirement {
public:
    PathRequirement(const SystemTree& tree, const std::string& path);
    std::string explain(const pwr::SystemMetadata& system, const Params& params) const override;

protected:
    bool isPluginRequirementSatisfied_i(const pwr::SystemMetadata& system, const Params& params) const override;

private:
    SystemTree m_tree;
    std::string m_path;
};

// Never met: what needs it is offered on another kind of machine.
class ElsewhereRequirement : public HostRequirement {
public:
    ElsewhereRequirement() : HostRequirement("ELSEWHERE") {}
    std::string explain(const pwr::SystemMetadata& system, const Params& params) const override;

protected:
    bool isPluginRequirementSatisfied_i(const pwr::SystemMetadata& system, const Params& params) const override;
};

// The configuration that is loaded has a message of the prefix for these platforms that is read at each interval, and
// something of what it reads can be read now. The platforms are the parameter PLATFORMS.
class SourceRequirement : public HostRequirement {
public:
    static const char* const PLATFORMS;    // the name of the parameter

    // `sources` says what is missing otherwise: "idle states".
    SourceRequirement(const std::string& prefix, const std::string& sources);
    std::string explain(const pwr::SystemMetadata& system, const Params& params) const override;

protected:
    bool isPluginRequirementSatisfied_i(const pwr::SystemMetadata& system, const Params& params) const override;

private:
    // Empty when something can be read.
    std::string findFault_i(const Params& params) const;

    std::string m_prefix;
    std::string m_sources;
};

// Why nothing of what the message reads can be read now; empty when something can.
std::string findFault(const pwr::InputMsg& message);

// The value of a parameter; empty without it.
std::string parameter(const pwr::PluginRequirement::Params& params, const std::string& name);

}    // namespace host
