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

// Where it stands what a configuration says of one prefix on a chain of platforms. A plain value but for its messages,
// which are the parser's.
//
//   for (const ConfigOrigins::Statement& statement : origins.statements)
//       std::cout << statement.file << ':' << statement.line << ' ' << statement.message << '\n';
struct ConfigOrigins {
    struct Platform {
        std::string name;
        std::string parent;    // empty: none
    };

    // One line <platform>_<prefix>_<tag>_<keyword>_<key>=<value>, without its comment, and what has become of it.
    struct Statement {
        std::string file;          // as parse() was given it
        std::uint32_t line = 0;    // from 1
        std::string platform;
        std::string prefix;    // also "MODEL"
        std::string tag;
        std::string keyword;
        std::string key;
        std::string value;
        std::string message;             // full name of the message that it serves, after all merges; empty: none
        std::string operation;           // name of the operation that it sets or copies; empty: none
        bool isAvailable = true;         // false: says nothing here: its kind does not work, or nothing is to be copied
        std::string matchedProperty;     // of a model line: the asked property that it fits, "FMS=6.142.9"; empty: none
        std::string matchedSpecifier;    // and which of its specifiers does, "FMS=6.142"
    };

    std::vector<Platform> platforms;          // the chain, each once, nearest first
    std::vector<const InputMsg*> messages;    // of the prefix, inheritance applied, whatever their triggers
    std::vector<Statement> statements;        // of the chain's platforms, whether inheritance lets them in or not
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

    // Replaces `origins` by the statements of a prefix on the platforms of the chain and by their model lines, tested
    // with the system's properties `specifiers`, in the order of the files. A "SOURCE" statement is followed by those
    // of the operation that it copies, which name the copying message. The files are read again for it: they are not
    // kept in memory. Returns 0; -1, with `origins` empty and an error line, for names that don't resolve, for a file
    // that is not what was loaded, and when the load had failed at a file.
    int getOrigins(ConfigOrigins& origins, const std::vector<std::pair<std::string, std::string>>& specifiers,
                   const std::string& platformNames, const std::string& prefix) const;

private:
    QVConfigFileParser() = default;
    ~QVConfigFileParser() = default;
    QVConfigFileParser(const QVConfigFileParser&) = delete;
    QVConfigFileParser& operator=(const QVConfigFileParser&) = delete;
    void destroy_i();

    static QVConfigFileParser* s_instance;
};

}    // namespace pwr
