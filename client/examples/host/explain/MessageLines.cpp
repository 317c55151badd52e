#include "explain/MessageLines.h"

#include "config/InputMsg.h"
#include "config/Operation.h"

#include <algorithm>
#include <cstddef>

namespace host {

namespace {

using pwr::InputMsg;
using Statement = MessageLines::Statement;
using Statements = MessageLines::Statements;

std::string tagOfName(const std::string& fullName)
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

// The queries choose which group messages show.
void selectGroup(const std::string& platforms, const std::string& prefix, pwr::CollectionType type)
{
    std::vector<InputMsg*> unused;
    pwr::QVConfigFileParser::instance()->getMessagesFor(unused, platforms, prefix, {}, type);
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
    if (isOfSamePlatform && tagOfName(statement.message) == statement.tag) return text;
    return text + " (of " + (isOfSamePlatform ? "" : statement.platform + "'s ") + statement.tag + ")";
}

bool isConstant(const InputMsg& message)
{
    const auto& operations = message.getOperations();
    return !operations.empty() && operations.front()->getOperation() == "CONSTANT";
}

const char* directionOf(const InputMsg& message)
{
    switch (message.getCommand()) {
    case pwr::QVOpCommand::READ:
        return "reads";
    case pwr::QVOpCommand::WRITE:
        return "writes";
    default:
        return isConstant(message) ? "constants" : "never read or written";
    }
}

// Members of a group may stand before it.
const Statement* firstOwn(const Statements& statements)
{
    const std::string tag = MessageLines::tagOf(statements);
    const auto own = std::find_if(statements.begin(), statements.end(),
                                  [&tag](const Statement* statement) { return statement->tag == tag; });
    return own != statements.end() ? *own : statements.front();
}

}    // namespace

// In the end the normal group is selected, as before.
MessageLines::MessageLines(OriginPage& page, const std::vector<const InputMsg*>& messages, const std::string& platforms,
                           const std::string& prefix)
    : m_page(page)
{
    for (const InputMsg* message : messages)
        m_messages.emplace(message->getFullName(), message);
    selectGroup(platforms, prefix, pwr::CollectionType::MAX_DETAIL);
    for (const InputMsg* message : messages)
        m_triggers[message].maxDetail = currentTriggers(*message);
    selectGroup(platforms, prefix, pwr::CollectionType::NORMAL);
    for (const InputMsg* message : messages)
        m_triggers[message].normal = currentTriggers(*message);
}

const InputMsg* MessageLines::find_i(const Statements& message) const
{
    const auto known = m_messages.find(message.front()->message);
    return known != m_messages.end() ? known->second : nullptr;
}

bool MessageLines::isTaken(const Statements& message) const
{
    return find_i(message) != nullptr;
}

std::string MessageLines::tagOf(const Statements& message)
{
    return tagOfName(message.front()->message);
}

bool MessageLines::isSetting(const Statement& statement)
{
    return statement.keyword != "MSG";
}

void MessageLines::tell(const Statements& statements)
{
    const InputMsg* message = find_i(statements);
    if (message == nullptr) {
        m_page.line(firstOwn(statements), 0,
                    tagOf(statements) + ": not taken, no operation of it works on this machine");
    } else {
        m_page.line(firstOwn(statements), 0,
                    tagOf(statements) + ": " + directionOf(*message) + ", cpu " + message->getCPUString() +
                        ", msg id " + std::to_string(message->getMsgID()));
        tellTriggers_i(*message, statements);
    }
    for (const Statement* statement : statements) {
        const bool isAttribute = !isSetting(*statement) && !isTriggers(*statement);
        if (isAttribute) m_page.line(statement, 1, textOf(*statement, statement->key));
    }
    tellOperations_i(statements);
}

void MessageLines::tellTriggers_i(const InputMsg& message, const Statements& statements)
{
    Statements normal;
    Statements maxDetail;
    for (const Statement* statement : statements) {
        if (isTriggers(*statement)) (isMaxDetail(*statement) ? maxDetail : normal).push_back(statement);
    }
    const Triggers& triggers = m_triggers.at(&message);
    tellGroup_i("normal: ", triggers.normal, message, normal);
    tellGroup_i("max detail: ", triggers.maxDetail, message, maxDetail);
}

// The group as a whole; beside it the first line that made it, below it the others.
void MessageLines::tellGroup_i(const std::string& group, const std::string& triggers, const InputMsg& message,
                               const Statements& lines)
{
    const std::string none = isConstant(message) ? "INIT, as constants without triggers" : "none";
    m_page.line(lines.empty() ? nullptr : lines.front(), 1, group + (triggers.empty() ? none : triggers));
    for (std::size_t i = lines.size() == 1 ? 1 : 0; i < lines.size(); ++i)
        m_page.line(lines[i], 2, textOf(*lines[i], lines[i]->key));
}

// Those of one operation together.
void MessageLines::tellOperations_i(const Statements& statements)
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

}    // namespace host
