#pragma once

#include "runtime/Export.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

class CollectorPlugin;

namespace pwr {

class ConfigCap;
class InputMsg;
class SystemMetadata;

// Which trigger group of a message a collection uses.
enum class CollectionType : std::uint32_t {
    NORMAL = 0,
    MAX_DETAIL = 1,
    NORMAL_OR_MAX_DETAIL = 2,    // max-detail for a message without normal triggers
};

// The collector configuration of the process: from files, loaded collectors and the system's record it learns which
// platforms there are and which capabilities and messages exist on them. Load it on one thread before a collection;
// queries write the chosen trigger group into the messages, so they don't run at the same time either. What queries
// hand out dies with the next parse() or destroy(). Before any parse() queries answer false, -1 or empty.
//
//   auto* config = QVConfigFileParser::instance();
//   if (config->parse(files, collectors, system) != 0) return fail();
//   std::string name;
//   config->getPlatformName(name, {"FMS", "6.142.9"});
//   config->getMessagesFor(messages, "FMS=" + name, "CPU-LOAD", {"POLL"}, CollectionType::NORMAL);
//
// `platformNames` is a list "<TYPE>=<NAME>,<TYPE>=<NAME>", most important first; the types are the host's.
class QUORVANE_API QVConfigFileParser {
public:
    static QVConfigFileParser* instance();    // made at the first call, lives as long as the process

    // Forgets what was loaded.
    void destroy();

    // Replaces what was loaded. Operation kinds are those of the collectors, whose plugins outlive the model; the last
    // provider of a kind that is available on `system` serves it. Returns 0; -1, with the reason in the error log and
    // on the standard error stream, at the first line or file that fails or when a platform's parent is missing: what
    // was read stays until the next parse().
    int parse(const std::vector<std::string>& files, const std::vector<CollectorPlugin*>& collectors,
              const SystemMetadata& system);

    // The platform that a property of the system selects; empty when none does. Returns 0; -1 before any parse().
    int getPlatformName(std::string& name, const std::pair<std::string, std::string>& specifier) const;

    // A message exists for the prefix, inheritance applied.
    bool isPlatformPrefixSupported(const std::string& platformNames, const std::string& prefix) const;

    // Appends the messages of the prefix that have one of the triggers in the group of `type`, which becomes their
    // current group; a message of constants without triggers counts as "INIT". Returns 0, also when none was selected;
    // -1 when the prefix has no messages.
    int getMessagesFor(std::vector<InputMsg*>& messages, const std::string& platformNames, const std::string& prefix,
                       const std::vector<std::string>& triggers, const CollectionType& type) const;

    // Replaces `capabilities` by those of every platform of the chain, nearest first. Returns 0; -1 with an error line
    // for names that don't resolve.
    int getCapabilitiesFor(std::vector<const ConfigCap*>& capabilities, const std::string& platformNames) const;

private:
    QVConfigFileParser() = default;
    ~QVConfigFileParser() = default;
    QVConfigFileParser(const QVConfigFileParser&) = delete;
    QVConfigFileParser& operator=(const QVConfigFileParser&) = delete;
    void destroy_i();

    static QVConfigFileParser* s_instance;
};

}    // namespace pwr
