#include "collector/HostRequirement.h"

#include "collector/SourceOperation.h"

#include "config/InputMsg.h"
#include "config/qv_configfile_parser.h"

#include <algorithm>

namespace host {

const char* const SourceRequirement::PLATFORMS = "platforms";

PathRequirement::PathRequirement(const SystemTree& tree, const std::string& path)
    : HostRequirement("PATH"), m_tree(tree), m_path(path)
{
}

std::string PathRequirement::explain(const pwr::SystemMetadata&, const Params&) const
{
    return "requires a path: there is no " + m_tree.realPath(m_path);
}

bool PathRequirement::isPluginRequirementSatisfied_i(const pwr::SystemMetadata&, const Params&) const
{
    return m_tree.exists(m_path);
}

std::string ElsewhereRequirement::explain(const pwr::SystemMetadata&, const Params&) const
{
    return "requires another kind of machine: there is no such access here";
}

bool ElsewhereRequirement::isPluginRequirementSatisfied_i(const pwr::SystemMetadata&, const Params&) const
{
    return false;
}

SourceRequirement::SourceRequirement(const std::string& prefix, const std::string& sources)
    : HostRequirement("SOURCE"), m_prefix(prefix), m_sources(sources)
{
}

std::string SourceRequirement::explain(const pwr::SystemMetadata&, const Params& params) const
{
    return "requires " + m_sources + ": " + findFault_i(params);
}

bool SourceRequirement::isPluginRequirementSatisfied_i(const pwr::SystemMetadata&, const Params& params) const
{
    return findFault_i(params).empty();
}

std::string SourceRequirement::findFault_i(const Params& params) const
{
    const std::string platforms = parameter(params, PLATFORMS);
    std::vector<pwr::InputMsg*> messages;
    pwr::QVConfigFileParser::instance()->getMessagesFor(messages, platforms, m_prefix, {"POLL"},
                                                        pwr::CollectionType::NORMAL);
    std::string fault =
        "there is no access to them on this machine (no message of " + m_prefix + " for " + platforms + ")";
    for (const pwr::InputMsg* message : messages) {
        fault = findFault(*message);
        if (fault.empty()) break;
    }
    return fault;
}

std::string findFault(const pwr::InputMsg& message)
{
    std::string fault;
    for (const pwr::Operation* operation : message.getOperations()) {
        const auto* source = dynamic_cast<const SourceOperation*>(operation);
        if (source == nullptr) continue;    // constants can't be missing
        fault = source->findFault();
        if (fault.empty()) return {};
    }
    return fault.empty() ? "nothing is read by the message " + message.getFullName() : fault;
}

std::string parameter(const pwr::PluginRequirement::Params& params, const std::string& name)
{
    const auto found = std::find_if(params.begin(), params.end(), [&name](const auto& p) { return p.first == name; });
    return found != params.end() ? found->second : std::string();
}

}    // namespace host
