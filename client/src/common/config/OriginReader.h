#pragma once

#include "config/ConfigLanguage.h"
#include "config/TextMap.h"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pwr {

class OperationProviders;
class Platform;
struct ConfigOrigins;

// Reads the files of a loaded configuration again and tells what one prefix has of each line. It follows the messages
// through merges and copies as the Parser does, so that each statement names the message that it ended in. Internal;
// all that it is given outlives it.
//
//   OriginReader reader(origins, chain, "FEAT", {{"FMS", "6.142.9"}}, providers);
//   reader.read(path, fingerprint);    // each file, in the order of the load
//   reader.finish();
class OriginReader : public ConfigLanguage {
public:
    using Specifiers = std::vector<std::pair<std::string, std::string>>;

    OriginReader(ConfigOrigins& origins, const std::vector<Platform*>& chain, const std::string& prefix,
                 const Specifiers& specifiers, const OperationProviders& providers);

    // False for a file that can't be read or has another fingerprint than when it was loaded.
    bool read(const std::string& path, std::size_t fingerprint);

    void finish();    // names the messages

private:
    // A platform of the chain, and how many of its specifiers the lines so far have made.
    struct Level {
        const Platform* platform;
        std::size_t specifiers = 0;
    };

    // The statements that a message has got, by their places in the list.
    struct Message {
        std::string fullName;
        std::vector<std::size_t> statements;
    };

    bool statementRule_i(const ConfigStatement& statement) override;
    void add_i(const ConfigStatement& statement);
    void matchModel_i(Level& level, const ConfigStatement& statement);
    void serveMessage_i(const Level& level, const ConfigStatement& statement);
    void merge_i(const Level& level, const ConfigStatement& statement, std::size_t target);
    void copySource_i(const Level& level, const ConfigStatement& statement, std::size_t target);
    std::size_t messageOf_i(const Platform& platform, std::string_view tag);
    const std::size_t* findMessage_i(const Platform& platform, std::string_view tag) const;

    ConfigOrigins& m_origins;
    const std::string& m_prefix;
    const Specifiers& m_specifiers;
    const OperationProviders& m_providers;
    std::string m_path;
    TextMap<Level> m_levels;                                            // by the platform's name
    std::map<const Platform*, TextMap<std::size_t>> m_messagesByTag;    // several tags may lead to one
    std::vector<Message> m_messages;
};

}    // namespace pwr
