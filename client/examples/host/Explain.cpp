#include "Explain.h"

#include "config/InputMsg.h"
#include "config/Operation.h"
#include "config/qv_configfile_parser.h"
#include "record/SystemMetadata.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <map>
#include <ostream>
#include <set>
#include <utility>

namespace host {

namespace {

using pwr::ConfigOrigins;
using pwr::InputMsg;
using Statement = ConfigOrigins::Statement;
using Statements = std::vector<const Statement*>;

constexpr std::size_t WIDTH = 80;

// Texts with the place that they come from in front of them, in a column of its own. Long texts go on in the next line.
class Page {
public:
    Page(std::ostream& out, const std::vector<Statement>& statements) : m_out(out)
    {
        nameFiles_i(statements);
        for (const Statement& statement : statements)
            m_column = std::max(m_column, placeOf_i(statement).size() + 2);
    }

    // Without that column.
    void text(const std::string& text) { write_i("", 0, text); }

    void title(const std::string& text) { m_out << '\n' << text << '\n'; }

    // `origin` may be null: then the text comes from nowhere in particular.
    void line(const Statement* origin, std::size_t depth, const std::string& text)
    {
        write_i(origin != nullptr ? placeOf_i(*origin) : std::string(), m_column + 2 * depth, text);
    }

    // Where the files stand whose names were printed.
    void files()
    {
        title("Files");
        for (const auto& [path, name] : m_names) {
            std::string head = name;
            head.resize(std::max(m_column, name.size() + 1), ' ');
            m_out << head << path << '\n';
        }
    }

private:
    // By their last names, where those tell them apart.
    void nameFiles_i(const std::vector<Statement>& statements)
    {
        std::map<std::string, std::set<std::string>> paths;
        for (const Statement& statement : statements)
            paths[std::filesystem::path(statement.file).filename().string()].insert(statement.file);
        for (const auto& [name, files] : paths) {
            for (const std::string& file : files)
                m_names[file] = files.size() == 1 ? name : file;
        }
    }

    void write_i(std::string head, std::size_t indent, const std::string& text)
    {
        const std::size_t further = indent + 2;
        for (std::size_t begin = 0; begin < text.size();) {
            const std::size_t end = endOfLine_i(text, begin, WIDTH - std::min(indent, WIDTH - 1));
            head.resize(indent, ' ');
            m_out << head << text.substr(begin, end - begin) << '\n';
            head.clear();
            indent = further;
            begin = std::min(text.find_first_not_of(' ', end), text.size());
        }
    }

    std::string placeOf_i(const Statement& statement) const
    {
        return m_names.at(statement.file) + ":" + std::to_string(statement.line);
    }

    // Behind the last word that still fits; a word that is too long stands whole.
    static std::size_t endOfLine_i(const std::string& text, std::size_t begin, std::size_t width)
    {
        if (text.size() - begin <= width) return text.size();
        const std::size_t last = text.rfind(' ', begin + width);
        if (last != std::string::npos && last > begin) return last;
        return std::min(text.find(' ', begin), text.size());
    }

    std::ostream& m_out;
    std::map<std::string, std::string> m_names;    // by path
    std::size_t m_column = 0;
};

// What the model says of a message, beyond its statements.
struct Triggers {
    std::string normal;
    std::string maxDetail;
};

std::string tagOf(const std::string& fullName)
{
    return fullName.substr(fullName.rfind('_') + 1);
}

bool isTriggers(const Statement& statement)
{
    return statement.keyword == "MSG" && statement.key.find("-WHEN") != std::string::npos;
}

bool isMaxDetail(const Statement& statement)
{
    return statement.key.ends_with("-MAX-DETAIL");
}

bool isSetting(const Statement& statement)
{
    return statement.keyword != "MSG";
}

// The triggers of the group that is selected, in the order of time, those with names once for each name.
std::string currentTriggers(const InputMsg& message)
{
    std::string text;
    const auto add = [&text](const std::string& entry) { text += (text.empty() ? "" : ", ") + entry; };
    for (const char* word : {"REQUIREMENTS", "INIT", "BEGIN", "POLL", "END", "FINI"}) {
        if (message.getTriggers().count(word) != 0) add(word);
    }
    for (const std::string& name : message.getNotifierNames())
        add("NOTIFIER=" + name);
    for (const std::string& name : message.getTracepointNames())
        add("TRACEPOINT=" + name);
    return text;
}

// Whose line it is, where that is another message, which joined or was copied.
std::string textOf(const Statement& statement, const std::string& name)
{
    const std::string text = name + " = " + statement.value;
    const bool isOfSamePlatform = statement.message.starts_with(statement.platform + "_");
    if (isOfSamePlatform && tagOf(statement.message) == statement.tag) return text;
    return text + " (of " + (isOfSamePlatform ? "" : statement.platform + "'s ") + statement.tag + ")";
}

const char* directionOf(const InputMsg& message)
{
    switch (message.getCommand()) {
    case pwr::QVOpCommand::READ:
        return "reads";
    case pwr::QVOpCommand::WRITE:
        return "writes";
    default:
        return "constants";
    }
}

// One feature on the page.
class Explanation {
public:
    Explanation(const ConfigOrigins& origins, const std::string& platforms, const std::string& prefix,
                std::ostream& out)
        : m_origins(origins), m_page(out, origins.statements)
    {
        for (const InputMsg* message : origins.messages)
            m_messages.emplace(message->getFullName(), message);
        learnTriggers_i(platforms, prefix);
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
    // The queries choose which group messages show; in the end it is the normal one, as before.
    void learnTriggers_i(const std::string& platforms, const std::string& prefix)
    {
        select_i(platforms, prefix, pwr::CollectionType::MAX_DETAIL);
        for (const auto& [name, message] : m_messages)
            m_triggers[message].maxDetail = currentTriggers(*message);
        select_i(platforms, prefix, pwr::CollectionType::NORMAL);
        for (const auto& [name, message] : m_messages)
            m_triggers[message].normal = currentTriggers(*message);
    }

    static void select_i(const std::string& platforms, const std::string& prefix, pwr::CollectionType type)
    {
        std::vector<InputMsg*> unused;
        pwr::QVConfigFileParser::instance()->getMessagesFor(unused, platforms, prefix, {}, type);
    }

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

    bool isIn_i(const Statements& message) const { return m_messages.count(message.front()->message) != 0; }

    void tellMessages_i(const ConfigOrigins::Platform& platform)
    {
        const std::vector<Statements> messages = messagesOf_i(platform.name);
        if (messages.empty() && inheritOf_i(platform.name) == nullptr) return;
        const bool isTaken =
            std::any_of(messages.begin(), messages.end(), [this](const Statements& one) { return isIn_i(one); });
        m_page.title("Messages of " + platform.name + (isTaken ? ", " + admission_i(platform) : ""));
        tellInherit_i(platform);
        if (!isTaken && !messages.empty()) m_page.line(nullptr, 0, "not taken: " + rejection_i(messages));
        for (const Statements& message : messages) {
            if (isTaken || !isShadowed_i(messages)) {
                tellMessage_i(message);
            } else {
                m_page.line(message.front(), 1, tagOf(message.front()->message));
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
                               [](const Statement* one) { return isSetting(*one) && one->isAvailable; });
        });
    }

    std::string rejection_i(const std::vector<Statements>& messages) const
    {
        if (!isShadowed_i(messages)) return "no operation of theirs works on this machine";
        if (m_taken.empty()) return "no platform that is asked extends to them";
        if (!doesExtend_i(m_taken.back())) return m_taken.back() + " is nearer and does not extend";
        std::map<std::string, const InputMsg*> nearer;
        for (const InputMsg* message : m_origins.messages)
            nearer.emplace(message->getName(), message);
        for (const Statements& message : messages) {
            const auto clash = nearer.find(tagOf(message.front()->message));
            if (clash == nearer.end()) continue;
            return clash->second->getPlatformName() + " has a message " + clash->first + ", too: all of these stay out";
        }
        return m_taken.back() + " is nearer and extends to others";
    }

    void tellMessage_i(const Statements& statements)
    {
        const auto known = m_messages.find(statements.front()->message);
        const std::string tag = tagOf(statements.front()->message);
        const Statement* first = firstOwn_i(statements, tag);
        if (known == m_messages.end()) {
            m_page.line(first, 0, tag + ": not taken, no operation of it works on this machine");
        } else {
            const InputMsg& message = *known->second;
            m_page.line(first, 0,
                        tag + ": " + directionOf(message) + ", cpu " + message.getCPUString() + ", msg id " +
                            std::to_string(message.getMsgID()));
            tellTriggers_i(message, statements);
        }
        for (const Statement* statement : statements) {
            const bool isAttribute = statement->keyword == "MSG" && !isTriggers(*statement);
            if (isAttribute) m_page.line(statement, 1, textOf(*statement, statement->key));
        }
        tellOperations_i(statements);
    }

    // Members of a group may stand before it.
    static const Statement* firstOwn_i(const Statements& statements, const std::string& tag)
    {
        const auto own = std::find_if(statements.begin(), statements.end(),
                                      [&tag](const Statement* statement) { return statement->tag == tag; });
        return own != statements.end() ? *own : statements.front();
    }

    void tellTriggers_i(const InputMsg& message, const Statements& statements)
    {
        const Triggers& triggers = m_triggers.at(&message);
        tellGroup_i("normal: ", triggers.normal, message, statements, false);
        tellGroup_i("max detail: ", triggers.maxDetail, message, statements, true);
    }

    // The group as a whole; beside it the first line that made it, below it the others.
    void tellGroup_i(const std::string& group, const std::string& triggers, const InputMsg& message,
                     const Statements& statements, bool isMaxDetailGroup)
    {
        Statements lines;
        std::copy_if(statements.begin(), statements.end(), std::back_inserter(lines),
                     [isMaxDetailGroup](const Statement* statement) {
                         return isTriggers(*statement) && isMaxDetail(*statement) == isMaxDetailGroup;
                     });
        const bool isConstant = message.getOperations().front()->getOperation() == "CONSTANT";
        const std::string none = isConstant ? "INIT, as constants without triggers" : "none";
        m_page.line(lines.empty() ? nullptr : lines.front(), 1, group + (triggers.empty() ? none : triggers));
        for (std::size_t i = lines.size() == 1 ? 1 : 0; i < lines.size(); ++i)
            m_page.line(lines[i], 2, textOf(*lines[i], lines[i]->key));
    }

    // The settings, those of one operation together.
    void tellOperations_i(const Statements& statements)
    {
        std::vector<Statements> operations;
        std::map<std::string, std::size_t> places;
        for (const Statement* statement : statements) {
            if (!isSetting(*statement)) continue;
            const auto [place, isNew] = places.emplace(statement->operation, operations.size());
            if (isNew) operations.emplace_back();
            operations[place->second].push_back(statement);
        }
        for (const Statements& operation : operations) {
            for (const Statement* statement : operation) {
                m_page.line(statement, 1,
                            textOf(*statement, statement->keyword + " " + statement->key) +
                                (statement->isAvailable ? "" : ": does not work on this machine"));
            }
        }
    }

    const ConfigOrigins& m_origins;
    Page m_page;
    std::map<std::string, const InputMsg*> m_messages;    // by full name
    std::map<const InputMsg*, Triggers> m_triggers;
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
