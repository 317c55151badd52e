// The rules of message lines: attributes of a message and settings of its operations.

#include "config/Parser.h"
#include "config/ParserRules.h"

#include "config/InputMsg.h"
#include "config/Operation.h"
#include "config/Platform.h"
#include "config/pw_utils.h"
#include "runtime/Log.h"
#include "runtime/os/Os.h"

#include <algorithm>
#include <iterator>

namespace pwr {

namespace {

// The triggers that stand alone; the others name what they wait for.
constexpr std::string_view PLAIN_TRIGGERS[] = {"REQUIREMENTS", "INIT", "BEGIN", "POLL", "END", "FINI"};

// Makes `text` <prefix>_<tag>_<last>.
const std::string& join(std::string& text, const ConfigStatement& statement, std::string_view last)
{
    return text.assign(statement.prefix).append(1, '_').append(statement.tag).append(1, '_').append(last);
}

// What stands behind the first "="; empty without one.
std::string nameOf(std::string_view entry)
{
    const std::size_t equals = entry.find('=');
    return std::string(equals == std::string_view::npos ? std::string_view() : entry.substr(equals + 1));
}

}    // namespace

bool Parser::tagSub_i(const ConfigStatement& statement)
{
    extendPath_i(statement.tag);
    m_platform->addMessageKey(prefixKey_i(), m_path);
    m_message = m_platform->getOrCreateMessage(statement.tag, prefixKey_i(), m_path);
    if (statement.keyword == "MSG") return rule_i(msgSub_i(statement), "msgSub");
    if (statement.keyword == "CONSTANT") return rule_i(constantSub_i(statement), "constantSub");
    return rule_i(hwMechRule_i(statement), "hwMechRule") && rule_i(hwCatRule_i(statement), "hwCatRule") &&
           rule_i(value_i(statement), "value");
}

bool Parser::msgSub_i(const ConfigStatement& statement)
{
    static constexpr KeywordRule rules[] = {
        {"READ-WHEN", "msgReadWhen", &Parser::msgReadWhen_i},
        {"READ-WHEN-MAX-DETAIL", "msgReadWhenMaxDetail", &Parser::msgReadWhenMaxDetail_i},
        {"WRITE-WHEN", "msgWriteWhen", &Parser::msgWriteWhen_i},
        {"WRITE-WHEN-MAX-DETAIL", "msgWriteWhenMaxDetail", &Parser::msgWriteWhenMaxDetail_i},
        {"READ-WHICH-CPU", "msgReadWhere", &Parser::msgReadWhere_i},
        {"WRITE-WHICH-CPU", "msgWriteWhere", &Parser::msgWriteWhere_i},
        {"ID", "msgID", &Parser::msgID_i},
        {"GROUP", "msgGroup", &Parser::msgGroup_i},
        {"SOURCE", "msgSource", &Parser::msgSource_i},
    };
    return keywordRule_i(rules, statement.key, statement);
}

bool Parser::msgReadWhen_i(const ConfigStatement& statement)
{
    return rule_i(triggers_i(statement.value, QVOpCommand::READ, false), "triggers");
}

bool Parser::msgReadWhenMaxDetail_i(const ConfigStatement& statement)
{
    return rule_i(triggers_i(statement.value, QVOpCommand::READ, true), "triggers");
}

bool Parser::msgWriteWhen_i(const ConfigStatement& statement)
{
    return rule_i(triggers_i(statement.value, QVOpCommand::WRITE, false), "triggers");
}

bool Parser::msgWriteWhenMaxDetail_i(const ConfigStatement& statement)
{
    return rule_i(triggers_i(statement.value, QVOpCommand::WRITE, true), "triggers");
}

bool Parser::triggers_i(std::string_view list, QVOpCommand command, bool maxDetail)
{
    std::string_view entry;
    while (takeEntry(entry, list)) {
        if (!rule_i(trigger_i(entry, command, maxDetail), "trigger")) return false;
    }
    return true;
}

bool Parser::trigger_i(std::string_view entry, QVOpCommand command, bool maxDetail)
{
    const std::string_view word = entry.substr(0, entry.find('='));
    if (word == "NOTIFIER") return rule_i(notifierTrigger_i(entry, command, maxDetail), "notifierTrigger");
    if (word == "TRACEPOINT") return rule_i(traceTrigger_i(entry, command, maxDetail), "traceTrigger");
    const bool isKnown =
        std::find(std::begin(PLAIN_TRIGGERS), std::end(PLAIN_TRIGGERS), entry) != std::end(PLAIN_TRIGGERS);
    return isKnown && m_message->addTrigger(command, std::string(entry), maxDetail) == 0;
}

bool Parser::notifierTrigger_i(std::string_view entry, QVOpCommand command, bool maxDetail)
{
    const std::string name = nameOf(entry);
    if (name.empty() || m_message->addTrigger(command, "NOTIFIER", maxDetail) != 0) return false;
    QV_STREAM_INFO << "OK, adding notifier name = " << name << " to msg " << m_message->getFullName();
    m_message->addNotifierName(name, maxDetail);
    return true;
}

bool Parser::traceTrigger_i(std::string_view entry, QVOpCommand command, bool maxDetail)
{
    const std::string name = nameOf(entry);
    if (name.empty() || m_message->addTrigger(command, "TRACEPOINT", maxDetail) != 0) return false;
    QV_STREAM_INFO << "OK, adding tracepoint name = " << name << " to msg " << m_message->getFullName();
    m_message->addTracepointName(name, maxDetail);
    return true;
}

bool Parser::msgReadWhere_i(const ConfigStatement& statement)
{
    return rule_i(readWriteCPU_i(statement.value), "readWriteCPU");
}

bool Parser::msgWriteWhere_i(const ConfigStatement& statement)
{
    return rule_i(readWriteCPU_i(statement.value), "readWriteCPU");
}

bool Parser::readWriteCPU_i(std::string_view cpu)
{
    return m_message->setCPUString(std::string(cpu)) == 0;
}

bool Parser::msgID_i(const ConfigStatement& statement)
{
    return rule_i(msgIDValue_i(statement.value), "msgIDValue");
}

bool Parser::msgIDValue_i(std::string_view value)
{
    const std::string number(value);
    if (!isNumber(number)) return false;
    m_message->setMsgID(static_cast<int>(extract_number_i(number)));
    return true;
}

bool Parser::msgGroup_i(const ConfigStatement& statement)
{
    return rule_i(msgGroupList_i(statement.value), "msgGroupList");
}

bool Parser::msgGroupList_i(std::string_view tags)
{
    std::string_view entry;
    while (takeEntry(entry, tags)) {
        const std::string_view tag = trim_i(entry);
        if (!rule_i(startsWithLetter(tag), "name") || !msgGroupEntry_i(tag)) return false;
    }
    return true;
}

// A member may be named before its own lines; only those list it.
bool Parser::msgGroupEntry_i(std::string_view tag)
{
    InputMsg* member = m_platform->getOrCreateMessage(tag, prefixKey_i());
    if (member == m_message) {
        QV_STREAM_DEBUG << "told to add a group " << m_message->getFullName() << " to itself?!";
        return true;
    }
    m_operationIndexes.erase(member);
    if (m_platform->appendMessage(m_message, collectorOf_i(*m_message), member, collectorOf_i(*member)) == 0) {
        return true;
    }
    QV_LOG_WARNING("WARNING: couldn't append message %s to message %s!\n", member->getFullName().c_str(),
                   m_message->getFullName().c_str());
    return false;
}

bool Parser::msgSource_i(const ConfigStatement& statement)
{
    return rule_i(msgSourceRule_i(statement), "msgSourceRule");
}

bool Parser::msgSourceRule_i(const ConfigStatement& statement)
{
    if (statement.value.empty()) return false;
    const std::string tag(statement.value);
    QV_LOG_INFO("INFO: Source rule token is %s\n", tag.c_str());
    const InputMsg* source = m_platform->findMessage(std::string(statement.prefix) + "_" + tag);
    if (source == nullptr) {
        QV_LOG_WARNING("WARNING: CANNOT source from non-existant msg %s!\n", tag.c_str());
        return false;
    }
    if (source == m_message) {
        QV_LOG_WARNING("WARNING: CANNOT self-source for message %s!\n", m_message->getFullName().c_str());
        return true;
    }
    if (source->getOperationCount() == 0) {
        QV_LOG_WARNING("WARNING: message %s cannot be sourced since it doesn't contain any supported operations!\n",
                       source->getFullName().c_str());
        return true;
    }
    return sourceFrom_i(*source, statement);
}

bool Parser::sourceFrom_i(const InputMsg& source, const ConfigStatement& statement)
{
    if (source.getOperationCount() > 1) {
        QV_LOG_WARNING("WARNING: message %s cannot be sourced since it is part of a group!\n",
                       source.getFullName().c_str());
        return false;
    }
    if (m_message->getOperationCount() != 0) {
        QV_LOG_WARNING("WARNING: CANNOT source to non-empty message %s!\n", m_message->getFullName().c_str());
        return false;
    }
    std::unique_ptr<Operation> clone(source.getOperations().front()->clone());
    if (!clone) return false;
    clone->setName(join(m_key, statement, clone->getOperation()));
    m_message->addOperation(clone.release());
    return true;
}

// Finds or adds the operation of F3. A kind that doesn't work on this system leaves no current operation, and its lines
// say nothing.
bool Parser::operation_i(const ConfigStatement& statement)
{
    extendPath_i(statement.keyword);
    const OperationProviders::Provider* provider = m_providers.find(statement.keyword);
    if (provider == nullptr) {
        QV_STREAM_ERROR << "ERROR: unknown collector type " << statement.keyword;
        return false;
    }
    const std::string_view name = std::string_view(m_path).substr(m_platform->getName().size() + 1);
    m_operation = addOperation_i(*m_message, name, *provider);
    if (m_operation != nullptr || !provider->isAvailable) return true;
    QV_STREAM_ERROR << "ERROR creating packet with key = " << m_path;
    return false;
}

// Sets m_value.
bool Parser::set_i(const std::string& key)
{
    const bool isDone = m_operation->set(key, m_value) == 0;
    m_message->recheck_i(*m_operation);
    return isDone;
}

bool Parser::constantSub_i(const ConfigStatement& statement)
{
    return operation_i(statement) && rule_i(constantAny_i(statement), "constantAny");
}

bool Parser::constantAny_i(const ConfigStatement& statement)
{
    return rule_i(constantAnyValue_i(statement), "constantAnyValue");
}

bool Parser::constantAnyValue_i(const ConfigStatement& statement)
{
    if (m_operation == nullptr) return true;
    m_value = trim_i(statement.value);
    if (set_i(join(m_key, statement, statement.key))) return true;
    const std::string complaint = "Couldn't add key " + m_key + ", value " + m_value + "\n";
    os::current().console->writeError(complaint.c_str());
    return false;
}

bool Parser::hwMechRule_i(const ConfigStatement& statement)
{
    return operation_i(statement);
}

bool Parser::hwCatRule_i(const ConfigStatement& statement)
{
    if (m_operation == nullptr || m_operation->isValidCategory(m_key.assign(statement.key))) return true;
    QV_STREAM_ERROR << "ERROR: unknown hardware category " << statement.key << " for operation " << statement.keyword;
    return false;
}

bool Parser::value_i(const ConfigStatement& statement)
{
    return rule_i(directValue_i(statement), "directValue");
}

bool Parser::directValue_i(const ConfigStatement& statement)
{
    if (m_operation == nullptr) return true;
    m_key = statement.key;
    m_value = trim_i(statement.value);
    if (set_i(m_key)) return true;
    QV_LOG_WARNING("WARNING: Couldn't add key %s, value %s to operation %s\n", m_key.c_str(), m_value.c_str(),
                   m_operation->getName().c_str());
    return false;
}

}    // namespace pwr
