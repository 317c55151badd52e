#include "explain/Explain.h"

#include "explain/MessageLines.h"
#include "explain/OriginPage.h"

#include "config/InputMsg.h"
#include "config/qv_configfile_parser.h"
#include "record/SystemMetadata.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <ostream>

namespace host {

namespace {

using pwr::ConfigOrigins;
using Statement = ConfigOrigins::Statement;
using Statements = MessageLines::Statements;

// One feature on the page.
class Explanation {
public:
    Explanation(const ConfigOrigins& origins, const std::string& platforms, const std::string& prefix,
                std::ostream& out)
        : m_origins(origins), m_page(out, origins.statements), m_lines(m_page, origins.messages, platforms, prefix)
    {
    }

    void print(const std::string& head, const std::string& offer)
    {
        m_page.text(head);
        m_page.text(offer);
        tellPlatforms_i();
        tellCapabilities_i();
        for (const ConfigOrigins::Platform& platform : m_origins.platforms)
            tellMessages_i(platform);
        if (m_taken.empty()) m_page.title("No messages");
        m_page.files();
    }

private:
    Statements statementsOf_i(const std::string& platform, const std::string& tag) const
    {
        Statements found;
        for (const Statement& statement : m_origins.statements) {
            if (statement.platform == platform && statement.prefix != "MODEL" && statement.tag == tag)
                found.push_back(&statement);
        }
        return found;
    }

    // The line that counts: the last. Null: OVERRIDE by default.
    const Statement* inheritOf_i(const std::string& platform) const
    {
        const Statements found = statementsOf_i(platform, "INHERIT");
        return found.empty() ? nullptr : found.back();
    }

    bool doesExtend_i(const std::string& platform) const
    {
        const Statement* mode = inheritOf_i(platform);
        return mode != nullptr && mode->value == "EXTEND";
    }

    void tellPlatforms_i()
    {
        m_page.title("Platforms of this machine, nearest first");
        for (const ConfigOrigins::Platform& platform : m_origins.platforms) {
            bool isMatched = false;
            for (const Statement& statement : m_origins.statements) {
                if (statement.platform != platform.name || statement.matchedProperty.empty()) continue;
                m_page.line(&statement, 0,
                            platform.name + ": " + statement.matchedSpecifier + " fits this machine's " +
                                statement.matchedProperty);
                isMatched = true;
            }
            if (!isMatched) m_page.line(nullptr, 0, platform.name + ": " + relationOf_i(platform));
        }
    }

    std::string relationOf_i(const ConfigOrigins::Platform& platform) const
    {
        if (platform.parent.empty()) return "the root, every machine";
        const auto child = std::find_if(m_origins.platforms.begin(), m_origins.platforms.end(),
                                        [&platform](const auto& other) { return other.parent == platform.name; });
        return child != m_origins.platforms.end() ? "the parent of " + child->name : "named by the host";
    }

    void tellCapabilities_i()
    {
        m_page.title("Capability, that of the nearest platform first");
        bool isTold = false;
        for (const ConfigOrigins::Platform& platform : m_origins.platforms) {
            const Statements statements = statementsOf_i(platform.name, "CAPABILITY");
            if (statements.empty()) continue;
            isTold = true;
            m_page.line(nullptr, 0, platform.name);
            for (const Statement* statement : statements)
                m_page.line(statement, 1, statement->keyword + " = " + statement->value);
        }
        if (!isTold) m_page.line(nullptr, 0, "not told: the feature speaks for itself");
    }

    // The statements of each message that a platform has, in the order of their first lines.
    std::vector<Statements> messagesOf_i(const std::string& platform) const
    {
        std::vector<Statements> messages;
        std::map<std::string, std::size_t> places;
        for (const Statement& statement : m_origins.statements) {
            if (!statement.message.starts_with(platform + "_")) continue;
            const auto [place, isNew] = places.emplace(statement.message, messages.size());
            if (isNew) messages.emplace_back();
            messages[place->second].push_back(&statement);
        }
        return messages;
    }

    void tellMessages_i(const ConfigOrigins::Platform& platform)
    {
        const std::vector<Statements> messages = messagesOf_i(platform.name);
        if (messages.empty() && inheritOf_i(platform.name) == nullptr) return;
        const bool isTaken = std::any_of(messages.begin(), messages.end(),
                                         [this](const Statements& one) { return m_lines.isTaken(one); });
        m_page.title("Messages of " + platform.name + (isTaken ? ", " + admission_i(platform) : ""));
        tellInherit_i(platform);
        if (!isTaken && !messages.empty()) m_page.line(nullptr, 0, "not taken: " + rejection_i(messages));
        for (const Statements& message : messages) {
            if (isTaken || !isShadowed_i(messages)) {
                m_lines.tell(message);
            } else {
                m_page.line(message.front(), 1, MessageLines::tagOf(message));
            }
        }
        if (isTaken) m_taken.push_back(platform.name);
    }

    void tellInherit_i(const ConfigOrigins::Platform& platform)
    {
        const Statement* mode = inheritOf_i(platform.name);
        if (platform.parent.empty() && mode == nullptr) return;
        const std::string parent = platform.parent.empty() ? "a parent" : platform.parent;
        const std::string text =
            doesExtend_i(platform.name) ? "EXTEND: behind these come those of " : "OVERRIDE: without those of ";
        m_page.line(mode, 0, text + parent + (mode == nullptr ? ", since no line says otherwise" : ""));
    }

    // Why the messages are taken: they are the first, or a platform below extends.
    std::string admission_i(const ConfigOrigins::Platform& platform) const
    {
        if (m_taken.empty()) return "the nearest that has some";
        const auto child = std::find_if(m_origins.platforms.begin(), m_origins.platforms.end(), [&](const auto& other) {
            return other.parent == platform.name && doesExtend_i(other.name);
        });
        return child != m_origins.platforms.end() ? "let in by EXTEND of " + child->name : "let in";
    }

    // Some of them can be carried out, so that it is the other platforms that keep them out.
    static bool isShadowed_i(const std::vector<Statements>& messages)
    {
        return std::any_of(messages.begin(), messages.end(), [](const Statements& message) {
            return std::any_of(message.begin(), message.end(),
                               [](const Statement* one) { return MessageLines::isSetting(*one) && one->isAvailable; });
        });
    }

    std::string rejection_i(const std::vector<Statements>& messages) const
    {
        if (!isShadowed_i(messages)) return "no operation of theirs works on this machine";
        if (m_taken.empty()) return "no platform that is asked extends to them";
        if (!doesExtend_i(m_taken.back())) return m_taken.back() + " is nearer and does not extend";
        std::map<std::string, const pwr::InputMsg*> nearer;
        for (const pwr::InputMsg* message : m_origins.messages)
            nearer.emplace(message->getName(), message);
        for (const Statements& message : messages) {
            const auto clash = nearer.find(MessageLines::tagOf(message));
            if (clash == nearer.end()) continue;
            return clash->second->getPlatformName() + " has a message " + clash->first + ", too: all of these stay out";
        }
        return m_taken.back() + " is nearer and extends to others";
    }

    const ConfigOrigins& m_origins;
    OriginPage m_page;
    MessageLines m_lines;
    std::vector<std::string> m_taken;    // platforms
};

int fail(const Console& console, int status, const std::string& text)
{
    console.errors << "quorvane_host: " << text << std::endl;
    return status;
}

bool explain(const Feature& feature, const pwr::SystemMetadata& record, const Plugin::Params& params, std::ostream& out)
{
    const std::string platforms = parameter(params, SourceRequirement::PLATFORMS);
    const std::string& prefix = feature.getPlugin().getCapability().getConfigFilePrefix();
    ConfigOrigins origins;
    const auto* config = pwr::QVConfigFileParser::instance();
    if (config->getOrigins(origins, record.platformSpecifiers, platforms, prefix) != 0) return false;
    const bool isOffered = feature.isAvailable(record, params);
    Explanation(origins, platforms, prefix, out)
        .print(feature.getName() + ": " + feature.getDescription(),
               isOffered ? "offered here" : "not offered here: " + feature.explain(record, params));
    return true;
}

}    // namespace

int explainFeatures(const std::string& name, const std::vector<Feature>& features, const pwr::SystemMetadata& record,
                    const Plugin::Params& params, const Console& console)
{
    bool isKnown = false;
    for (const Feature& feature : features) {
        if (!feature.answersTo(name)) continue;
        if (isKnown) console.out << "\n\n";
        isKnown = true;
        if (!explain(feature, record, params, console.out))
            return fail(console, EXIT_RUN, "the configuration could not be read again: the lines before say why");
    }
    if (!isKnown) return fail(console, EXIT_USAGE, "there is no feature '" + name + "' here: --list tells the names");
    console.out.flush();
    return console.out ? EXIT_GOOD : fail(console, EXIT_RUN, "the explanation could not be printed");
}

}    // namespace host
