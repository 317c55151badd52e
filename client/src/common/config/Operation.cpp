#include "config/Operation.h"

#include "config/Parser.h"
#include "plugins/CollectorPlugin.h"
#include "record/Metadata.h"
#include "runtime/Log.h"

#include <algorithm>

namespace pwr {

namespace {

void warnOfTodo(const char* function)
{
    QV_LOG_WARNING("WARNING: %s functionality is TODO!\n", function);
}

}    // namespace

Operation::Operation(const std::string& operation) : Operation(operation, operation) {}

Operation::Operation(const std::string& operation, const std::string& name)
    : m_name(name), m_kind(std::make_shared<Kind>())
{
    m_kind->operation = operation;
}

Operation::Operation(const Operation& other) = default;

Operation& Operation::operator=(const Operation& other) = default;

Operation::~Operation() = default;

void Operation::setName(const std::string& name)
{
    m_name = name;
}

bool Operation::isValidCategory(const std::string& category) const
{
    return m_kind->categories.count(category) != 0 && canSetCategory(category);
}

bool Operation::isValidCommand(QVOpCommand command) const
{
    return isValidCommand_i(command);
}

void Operation::addRequirement(PluginRequirement* requirement)
{
    if (requirement != nullptr) ownKind_i().requirements.push_back(requirement);
}

PluginRequirementResult Operation::isOperationSuitableFor(const SystemMetadata& system) const
{
    if (m_kind->requirements.empty()) return PluginRequirementResult::SUITABLE_UNTESTED;
    const bool isSuitable = std::all_of(m_kind->requirements.begin(), m_kind->requirements.end(),
                                        [&system](const PluginRequirement* requirement) {
                                            return requirement->isPluginRequirementSatisfied(system, {});
                                        });
    return isSuitable ? PluginRequirementResult::SUITABLE : PluginRequirementResult::NOT_SUITABLE;
}

int Operation::dispatchRead(Operation* operation, const std::string& text)
{
    CollectorPlugin* collector = Parser::findCollectorToDispatch(operation, "read");
    return collector != nullptr ? collector->doImmediateRead(operation, text) : -1;
}

int Operation::dispatchWrite(Operation* operation, const std::string& text)
{
    CollectorPlugin* collector = Parser::findCollectorToDispatch(operation, "write");
    return collector != nullptr ? collector->doImmediateWrite(operation, text) : -1;
}

int Operation::dispatchRead(Operation*, const EntityHandle*)
{
    warnOfTodo("pwr::Operation::dispatchRead");
    throw std::string();
}

int Operation::dispatchWrite(Operation*, const EntityHandle*)
{
    warnOfTodo("pwr::Operation::dispatchWrite");
    return -1;
}

void Operation::addCategory(const std::string& category)
{
    ownKind_i().categories.insert(category);
}

bool Operation::canSetCategory(const std::string&) const
{
    return true;
}

bool Operation::isValidCommand_i(QVOpCommand command) const
{
    return command == QVOpCommand::READ;
}

Operation::Kind& Operation::ownKind_i()
{
    if (m_kind.use_count() > 1) m_kind = std::make_shared<Kind>(*m_kind);
    return *m_kind;
}

CONSTANTOperation::CONSTANTOperation(const std::string& name) : Operation("CONSTANT", name) {}

int CONSTANTOperation::set(const std::string& key, const std::string& value)
{
    if (doesKeyExist_i(key)) {
        QV_LOG_ERROR("ERROR: key %s already set!\n", key.c_str());
        return -1;
    }
    m_values.emplace_back(key, value);
    if (m_values.size() == FEW_VALUES + 1) {
        for (const auto& [known, text] : m_values)
            m_keys.insert(known);
    } else if (m_values.size() > FEW_VALUES) {
        m_keys.insert(key);
    }
    return 0;
}

OperationMetadata* CONSTANTOperation::getOperationMetadata() const
{
    return new CONSTANTOperationMetadata(getName(), m_values);
}

Operation* CONSTANTOperation::clone() const
{
    return new CONSTANTOperation(*this);
}

bool CONSTANTOperation::doesKeyExist_i(const std::string& key) const
{
    if (m_values.size() > FEW_VALUES) return m_keys.count(key) != 0;
    return std::any_of(m_values.begin(), m_values.end(), [&key](const auto& entry) { return entry.first == key; });
}

}    // namespace pwr
