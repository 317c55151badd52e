#pragma once

#include "config/TextMap.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class CollectorPlugin;

namespace pwr {

class ConfigCap;
class InputMsg;
struct Specifier;

// One node of the platform tree: by its specifiers it says which systems it stands for; it holds the capabilities and
// messages that exist there, by prefix (the short name of a feature). Internal; the Parser owns all platforms. Keys are
// whole names: a prefix key is <platform>_<prefix>, a message key <platform>_<prefix>_<tag>.
class Platform {
public:
    enum InheritMode { OVERRIDE = 0, EXTEND = 1 };
    using Capabilities = std::map<std::string, std::unique_ptr<ConfigCap>, std::less<>>;

    Platform(const std::string& name, Platform* parent);    // joins the parent's children
    ~Platform();
    Platform(const Platform&) = delete;
    Platform& operator=(const Platform&) = delete;

    const std::string& getName() const { return m_name; }
    Platform* getParent() const { return m_parent; }
    void adopt(Platform& child);    // becomes the parent of an orphan
    const std::vector<Platform*>& getChildren() const { return m_children; }

    void addSpecifier(Specifier* specifier);    // takes ownership
    const std::vector<std::unique_ptr<Specifier>>& getSpecifiers() const { return m_specifiers; }

    // Under `path`_`prefix`: one capability per prefix.
    ConfigCap* getOrCreateCap(std::string_view prefix, std::string_view path);
    const Capabilities& getCapabilities() const { return m_capabilities; }

    // Under `prefixKey`_`tag`; message ids count from 1 within a prefix.
    InputMsg* getOrCreateMessage(std::string_view tag, std::string_view prefixKey);
    InputMsg* getOrCreateMessage(std::string_view tag, std::string_view prefixKey, std::string_view messageKey);

    // The message of <prefix>_<tag> here or on the nearest ancestor that has it; null: nowhere.
    InputMsg* findMessage(std::string_view key) const;

    // Lists a message under its prefix, in the order of first appearance; queries see listed messages only.
    void addMessageKey(std::string_view prefixKey, std::string_view messageKey);

    void setInheritMode(std::string_view prefix, int mode);
    bool doesExtend(std::string_view prefix) const;    // OVERRIDE unless told

    // Merges `source` into `target`: triggers join, operations move, the source's key leads to the target. 0; -1 with
    // an error line when collectors or triggers don't go together.
    int appendMessage(InputMsg* target, CollectorPlugin* targetCollector, InputMsg* source,
                      CollectorPlugin* sourceCollector);

    // The messages of this platform alone, each once, those without operations left out. 0; -1 for none.
    int getMessagesFor(std::vector<InputMsg*>& out, std::string_view prefix) const;

private:
    // What a message key leads to; after a merge several keys lead to one message. Null: nothing yet.
    struct MessageEntry {
        InputMsg* message = nullptr;
        bool isListed = false;
    };
    using Messages = TextMap<MessageEntry>;

    struct PrefixEntry {
        int created = 0;
        int inheritMode = OVERRIDE;
        std::vector<const Messages::value_type*> listed;    // the order of queries
    };
    using Prefixes = TextMap<PrefixEntry>;

    Messages::value_type& messageEntry_i(std::string_view key);
    PrefixEntry& prefixEntry_i(std::string_view prefix);

    // What stands behind this platform's name: all keys begin with it, so that the tables leave it out.
    std::string_view withoutName_i(std::string_view key) const;
    bool mergeTriggers_i(InputMsg& target, const InputMsg& source, bool maxDetail) const;

    std::string m_name;
    Messages m_messages;
    std::string m_key;              // of the moment
    Capabilities m_capabilities;    // key order is the order of listings
    Prefixes m_prefixes;
    std::vector<std::unique_ptr<InputMsg>> m_ownedMessages;
    Platform* m_parent;                   // not owned; null: the root, or an orphan
    std::vector<Platform*> m_children;    // not owned
    std::vector<std::unique_ptr<Specifier>> m_specifiers;

    // The lines of a message, a prefix, a capability mostly stand together: what the last one was about.
    Messages::value_type* m_lastMessage = nullptr;
    Prefixes::value_type* m_lastPrefix = nullptr;
    Capabilities::value_type* m_lastCap = nullptr;
};

}    // namespace pwr
