#pragma once

#include "config/ConfigLanguage.h"
#include "config/OperationProviders.h"
#include "config/TextMap.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

class CollectorPlugin;

namespace pwr {

class ConfigCap;
class InputMsg;
class Operation;
class Platform;
class SystemMetadata;
struct ConfigOrigins;
enum class CollectionType : std::uint32_t;
enum class QVOpCommand : std::uint32_t;

// The collector configuration that is loaded: reads the statements, keeps the platform tree that they describe and
// answers what it says. There is at most one, made by QVConfigFileParser::parse(). Messages, capabilities and platforms
// that it hands out are its own.
//
//   PLATA_MODEL_FMS_CONSTANT_VALUE=6.142.9,6.158        how a platform is recognised
//   ALL_FEAT_CAPABILITY_COMMAND-LINE_VALUE=feat         an attribute of a feature
//   PLATA_FEAT_INHERIT_MODE_VALUE=EXTEND                the parent's messages come too
//   ALL_FEAT_RESID_MSG_READ-WHEN=BEGIN,POLL,END         an attribute of a message
//   ALL_FEAT_RESID_OPKIND_CATEG=value                   a setting of an operation
class Parser : public ConfigLanguage {
public:
    static constexpr const char* LOG_TAG = "config-parser";

    Parser();
    ~Parser() override;

    // The one that queries and immediate operations ask; null: nothing is loaded.
    static Parser* loaded();

    // Deletes the loaded one and puts another in its place.
    static void setLoaded(std::unique_ptr<Parser> parser);

    // False at the first file that fails, and when a platform's parent is missing; what was read before stays.
    bool load(const std::vector<std::string>& files, const std::vector<CollectorPlugin*>& collectors,
              const SystemMetadata& system);

    // A platform that names itself as its parent is the root. One whose parent is unknown waits for it. Null for an
    // empty name.
    Platform* getOrCreatePlatform(std::string_view name, std::string_view parentName);

    // The first platform in name order that a property of the system selects exactly, else the first that it selects
    // partially; empty for none.
    std::string getPlatformName_i(const std::string& type, const std::string& valueOrRange) const;

    // The chain of "<TYPE>=<NAME>,...": each platform with its ancestors, the root once at the end.
    bool getAllPlatforms_i(std::vector<Platform*>& out, const std::string& platformNames) const;

    // The messages of a prefix, inheritance applied. 0; -1 for none.
    int getMessagesForPrefix_i(std::vector<InputMsg*>& out, const std::string& platformNames,
                               const std::string& prefix) const;

    // Those of QVConfigFileParser.
    int getMessagesFor(std::vector<InputMsg*>& messages, const std::string& platformNames, const std::string& prefix,
                       const std::vector<std::string>& triggers, CollectionType type) const;
    int getCapabilitiesFor(std::vector<const ConfigCap*>& capabilities, const std::string& platformNames) const;
    int getOrigins(ConfigOrigins& origins, const std::vector<std::pair<std::string, std::string>>& specifiers,
                   const std::string& platformNames, const std::string& prefix) const;

    // Null: no collector provides this kind of operation.
    CollectorPlugin* getCollectorFor(std::string_view operation) const;
    const Operation* getOperationFor(std::string_view operation, bool& available) const;

    // The operation of that name on the message, a clone of its kind's prototype the first time. Null for an unknown
    // kind, for another collector than the message has, with an error line, and for a kind that doesn't work on this
    // system: then `available` is false.
    Operation* addOperationToMessage(InputMsg* message, std::string_view name, std::string_view operation,
                                     bool& available);

    // The collector that carries out an operation at once, through what is loaded. Null with an error line, which
    // speaks of an immediate `what`.
    static CollectorPlugin* findCollectorToDispatch(const Operation* operation, const char* what);

private:
    // A statement whose keyword chooses the rule.
    struct KeywordRule {
        std::string_view keyword;
        const char* name;
        bool (Parser::*rule)(const ConfigStatement&);
    };

    // Finds the operations of a message by name, where a group has many; the first of a name counts.
    struct OperationIndex {
        std::size_t indexed = 0;
        TextMap<Operation*> byName;
    };

    // What is kept of a file: its lines are read again when somebody asks where they stand.
    struct LoadedFile {
        std::string path;
        std::size_t fingerprint;
    };

    bool areParentsKnown_i() const;
    void adoptOrphans_i(Platform& platform);
    Platform* findPlatform_i(std::string_view name) const;
    bool collectLevels_i(std::vector<InputMsg*>& out, const Platform* platform, const std::string& prefix) const;
    CollectorPlugin* collectorOf_i(const InputMsg& message) const;
    bool isOfOtherCollector_i(const InputMsg& message, const OperationProviders::Provider& provider) const;
    Operation* addOperation_i(InputMsg& message, std::string_view name, const OperationProviders::Provider& provider);
    Operation* findOperation_i(const InputMsg& message, std::string_view name);

    // Most rules succeed: then nothing is called.
    bool rule_i(bool isDone, const char* name) const { return isDone || ConfigLanguage::rule_i(false, name); }

    // The rules, named as in the log; each gives false when the line fails.
    bool statementRule_i(const ConfigStatement& statement) override;
    Platform* platformOf_i(const ConfigStatement& statement);
    void extendPath_i(std::string_view field);
    std::string_view prefixKey_i() const;
    template <std::size_t N>
    bool keywordRule_i(const KeywordRule (&rules)[N], std::string_view keyword, const ConfigStatement& statement);

    bool modelRule_i(const ConfigStatement& statement);
    bool modelFMSRule_i(const ConfigStatement& statement);
    bool fmsValues_i(std::string_view values);
    bool fmsValue_i(std::string_view value);
    bool modelPCIRule_i(const ConfigStatement& statement);
    bool pciValue_i(std::string_view value);
    bool modelPMTRule_i(const ConfigStatement& statement);
    bool PMTValue_i(std::string_view value);
    bool modelOtherRule_i(const ConfigStatement& statement);
    bool modelSpec_i(const ConfigStatement& statement);
    bool modelValue_i(const ConfigStatement& statement);
    bool modelRange_i(const ConfigStatement& statement);
    bool modelRangeSub_i(const ConfigStatement& statement);

    bool prefixRule_i(const ConfigStatement& statement);
    bool metricRule_i(const ConfigStatement& statement);
    bool capRule_i(const ConfigStatement& statement);
    bool capSub_i(const ConfigStatement& statement);
    bool capSubCmdline_i(const ConfigStatement& statement);
    bool capSubHelp_i(const ConfigStatement& statement);
    bool capSubGroup_i(const ConfigStatement& statement);
    bool capSubHidden_i(const ConfigStatement& statement);
    bool inheritRule_i(const ConfigStatement& statement);
    bool inheritSub_i(const ConfigStatement& statement);
    bool inheritMode_i(const ConfigStatement& statement);
    bool inheritValue_i(const ConfigStatement& statement);

    bool tagSub_i(const ConfigStatement& statement);
    bool msgSub_i(const ConfigStatement& statement);
    bool msgReadWhen_i(const ConfigStatement& statement);
    bool msgReadWhenMaxDetail_i(const ConfigStatement& statement);
    bool msgWriteWhen_i(const ConfigStatement& statement);
    bool msgWriteWhenMaxDetail_i(const ConfigStatement& statement);
    bool triggers_i(std::string_view list, QVOpCommand command, bool maxDetail);
    bool trigger_i(std::string_view entry, QVOpCommand command, bool maxDetail);
    bool notifierTrigger_i(std::string_view entry, QVOpCommand command, bool maxDetail);
    bool traceTrigger_i(std::string_view entry, QVOpCommand command, bool maxDetail);
    bool msgReadWhere_i(const ConfigStatement& statement);
    bool msgWriteWhere_i(const ConfigStatement& statement);
    bool readWriteCPU_i(std::string_view cpu);
    bool msgID_i(const ConfigStatement& statement);
    bool msgIDValue_i(std::string_view value);
    bool msgGroup_i(const ConfigStatement& statement);
    bool msgGroupList_i(std::string_view tags);
    bool msgGroupEntry_i(std::string_view tag);
    bool msgSource_i(const ConfigStatement& statement);
    bool msgSourceRule_i(const ConfigStatement& statement);
    bool sourceFrom_i(const InputMsg& source, const ConfigStatement& statement);

    bool operation_i(const ConfigStatement& statement);
    bool set_i(const std::string& key);
    bool constantSub_i(const ConfigStatement& statement);
    bool constantAny_i(const ConfigStatement& statement);
    bool constantAnyValue_i(const ConfigStatement& statement);
    bool hwMechRule_i(const ConfigStatement& statement);
    bool hwCatRule_i(const ConfigStatement& statement);
    bool value_i(const ConfigStatement& statement);
    bool directValue_i(const ConfigStatement& statement);

    OperationProviders m_providers;
    std::vector<LoadedFile> m_files;                                              // read to the end
    std::string m_failedFile;                                                     // empty: none
    std::map<std::string, std::unique_ptr<Platform>, std::less<>> m_platforms;    // name order is the order of scans
    std::map<std::string, std::vector<Platform*>, std::less<>> m_orphans;         // by the parent that they wait for
    std::unordered_map<const InputMsg*, OperationIndex> m_operationIndexes;

    // What the current line is about.
    Platform* m_platform = nullptr;
    ConfigCap* m_cap = nullptr;
    InputMsg* m_message = nullptr;
    Operation* m_operation = nullptr;    // null also where the kind doesn't work on this system
    std::string m_path;                  // the platform's name, growing by a field at each step
    std::size_t m_prefixKeySize = 0;     // of m_path
    std::string m_key;                   // texts of the moment, to be handed to an operation
    std::string m_value;
};

}    // namespace pwr
