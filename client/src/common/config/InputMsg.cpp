#include "config/InputMsg.h"

#include "config/Operation.h"
#include "config/Parser.h"
#include "config/pw_utils.h"
#include "plugins/CollectorPlugin.h"
#include "record/Metadata.h"
#include "runtime/Log.h"
#include "runtime/os/Os.h"

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>

namespace pwr {

namespace {

constexpr std::size_t FEW_OPERATIONS = 3;    // what most messages have at most: saves growing by one

// A group has one of these alone, or none of them.
bool isExclusive(const std::string& trigger)
{
    return trigger == "INIT" || trigger == "REQUIREMENTS" || trigger == "FINI";
}

// Moves the next run of characters other than "_" from `rest` to `part`; false when there is none.
bool takePart(std::string_view& part, std::string_view& rest)
{
    const std::size_t begin = rest.find_first_not_of('_');
    if (begin == std::string_view::npos) return false;
    part = rest.substr(begin, rest.find('_', begin) - begin);
    rest.remove_prefix(begin + part.size());
    return true;
}

// The two parts of <platform>_<prefix>; false when there are more or fewer.
bool splitPlatformPrefix(std::string_view text, std::string_view& platform, std::string_view& prefix)
{
    std::string_view third;
    return takePart(platform, text) && takePart(prefix, text) && !takePart(third, text);
}

}    // namespace

InputMsg::LazyGroup::LazyGroup(const LazyGroup& other)
    : m_group(other.m_group ? std::make_unique<TriggerGroup>(*other.m_group) : nullptr)
{
}

InputMsg::LazyGroup& InputMsg::LazyGroup::operator=(const LazyGroup& other)
{
    m_group = std::move(LazyGroup(other).m_group);
    return *this;
}

const InputMsg::TriggerGroup& InputMsg::LazyGroup::get() const
{
    static const TriggerGroup none;
    return m_group ? *m_group : none;
}

InputMsg::TriggerGroup& InputMsg::LazyGroup::make()
{
    if (!m_group) m_group = std::make_unique<TriggerGroup>();
    return *m_group;
}

InputMsg::OwnedOperations::OwnedOperations(const OwnedOperations& other) : OwnedOperations()
{
    list.reserve(other.list.size());
    for (const Operation* operation : other.list) {
        if (Operation* copy = operation->clone()) list.push_back(copy);
    }
}

InputMsg::OwnedOperations& InputMsg::OwnedOperations::operator=(const OwnedOperations& other)
{
    OwnedOperations copy(other);
    list.swap(copy.list);
    return *this;
}

InputMsg::OwnedOperations::~OwnedOperations()
{
    std::for_each(list.rbegin(), list.rend(), [](Operation* operation) { delete operation; });
}

InputMsg::InputMsg(const std::string& name)
{
    init_i(name, "", 0, 0, 0, QVOpCommand::UNDECIDED);
}

InputMsg::InputMsg(const std::string& name, const std::string& platformPrefix)
{
    init_i(name, platformPrefix, 0, 0, 0, QVOpCommand::UNDECIDED);
}

InputMsg::InputMsg(const std::string& name, int pluginID, int metricID, int msgID)
{
    init_i(name, "", pluginID, metricID, msgID, QVOpCommand::UNDECIDED);
}

InputMsg::InputMsg(const InputMsg& other) = default;

InputMsg& InputMsg::operator=(const InputMsg& other) = default;

InputMsg::~InputMsg() = default;

void InputMsg::init_i(const std::string& name, const std::string& platformPrefix, int pluginID, int metricID, int msgID,
                      QVOpCommand command)
{
    m_name = name;
    m_pluginId = pluginID;
    m_metricId = metricID;
    m_msgId = msgID;
    m_command = command;
    setPlatformPrefix(platformPrefix);
}

void InputMsg::setName(const std::string& name)
{
    m_name = name;
}

void InputMsg::setPlatformPrefix(const std::string& platformPrefix)
{
    m_platformPrefix = platformPrefix;
    m_fullName.clear();
    m_fullName.reserve(m_platformPrefix.size() + 1 + m_name.size());
    m_fullName.append(m_platformPrefix).append(1, '_').append(m_name);
    setPlatformName();
}

void InputMsg::setPlatformName()
{
    std::string_view platform;
    std::string_view prefix;
    if (splitPlatformPrefix(m_platformPrefix, platform, prefix)) m_platformName = platform;
}

std::string InputMsg::getConfigfilePrefix() const
{
    std::string_view platform;
    std::string_view prefix;
    return splitPlatformPrefix(m_platformPrefix, platform, prefix) ? std::string(prefix) : "<N/A>";
}

void InputMsg::setPluginID(int id)
{
    m_pluginId = id;
}

void InputMsg::setMetricID(int id)
{
    m_metricId = id;
}

void InputMsg::setMsgID(int id)
{
    m_msgId = id;
}

int InputMsg::setCPUString(const std::string& cpu)
{
    if (cpu != "ALL" && cpu != "ANY" && !isNumber(cpu)) return -1;
    m_cpu = cpu;
    return 0;
}

int InputMsg::setEntityHandle(const EntityHandle* entity)
{
    if (m_entity != nullptr) return -1;
    m_entity = entity;
    return 0;
}

void InputMsg::setCommand(QVOpCommand command)
{
    m_command = command;
    m_checkedOperations = 0;
}

void InputMsg::setSamplingInterval(std::uint16_t msecs)
{
    m_samplingIntervalMsecs = msecs;
}

void InputMsg::setFeatureName(const std::string& name)
{
    m_featureName = name;
}

int InputMsg::addTrigger(QVOpCommand command, const std::string& trigger)
{
    if (!isCommandCompatible_i(command)) return -1;
    return addTriggerTo_i(group_i(m_isMaxDetailCurrent), command, trigger);
}

int InputMsg::addReadTrigger(const std::string& trigger)
{
    return addTrigger(QVOpCommand::READ, trigger);
}

int InputMsg::addWriteTrigger(const std::string& trigger)
{
    return addTrigger(QVOpCommand::WRITE, trigger);
}

int InputMsg::addTrigger(QVOpCommand command, const std::string& trigger, bool maxDetail)
{
    if (!isCommandStillCompatible_i(command)) {
        os::current().console->writeError("Commands are not compatible!\n");
        return -1;
    }
    return addTriggerTo_i(group_i(maxDetail), command, trigger);
}

int InputMsg::addReadTrigger(const std::string& trigger, bool maxDetail)
{
    return addTrigger(QVOpCommand::READ, trigger, maxDetail);
}

int InputMsg::addWriteTrigger(const std::string& trigger, bool maxDetail)
{
    return addTrigger(QVOpCommand::WRITE, trigger, maxDetail);
}

int InputMsg::addTriggerTo_i(LazyGroup& group, QVOpCommand command, const std::string& trigger)
{
    if (!isTriggerCompatible_i(trigger, group.get().triggers)) return -1;
    m_command = command;
    group.make().triggers.insert(trigger);
    return 0;
}

const PWSet<std::string>& InputMsg::getTriggers() const
{
    return getTriggers(m_isMaxDetailCurrent);
}

const PWSet<std::string>& InputMsg::getTracepointNames() const
{
    return getTracepointNames(m_isMaxDetailCurrent);
}

const PWSet<std::string>& InputMsg::getNotifierNames() const
{
    return getNotifierNames(m_isMaxDetailCurrent);
}

void InputMsg::addTracepointName(const std::string& name)
{
    addTracepointName(name, m_isMaxDetailCurrent);
}

void InputMsg::addNotifierName(const std::string& name)
{
    addNotifierName(name, m_isMaxDetailCurrent);
}

const PWSet<std::string>& InputMsg::getTriggers(bool maxDetail) const
{
    return group_i(maxDetail).get().triggers;
}

const PWSet<std::string>& InputMsg::getTracepointNames(bool maxDetail) const
{
    return group_i(maxDetail).get().tracepointNames;
}

const PWSet<std::string>& InputMsg::getNotifierNames(bool maxDetail) const
{
    return group_i(maxDetail).get().notifierNames;
}

void InputMsg::addTracepointName(const std::string& name, bool maxDetail)
{
    group_i(maxDetail).make().tracepointNames.insert(name);
}

void InputMsg::addNotifierName(const std::string& name, bool maxDetail)
{
    group_i(maxDetail).make().notifierNames.insert(name);
}

void InputMsg::setTrigger(bool maxDetail, bool fallback)
{
    const bool isOtherTaken = fallback && getTriggers(maxDetail).empty();
    m_isMaxDetailCurrent = maxDetail != isOtherTaken;
}

void InputMsg::addOperation(Operation* operation)
{
    if (operation == nullptr) return;
    std::unique_ptr<Operation> owned(operation);
    if (m_operations.list.empty()) m_operations.list.reserve(FEW_OPERATIONS);
    m_operations.list.push_back(operation);
    owned.release();
}

void InputMsg::resetOperations()
{
    m_operations.list.clear();
    m_checkedOperations = 0;
}

MsgMetadata* InputMsg::getMetadata() const
{
    auto record = std::make_unique<MsgMetadata>(m_pluginId, m_metricId, m_msgId);
    record->setMsgName(m_name);
    for (const Operation* operation : m_operations.list)
        record->addMetaValue(operation->getOperationMetadata());
    return record.release();
}

int InputMsg::execute(std::vector<std::pair<std::string, std::string>>& results)
{
    if (m_operations.list.empty()) {
        QV_LOG_WARNING("WARNING: Message %s has no operations defined!\n", m_name.c_str());
        return -1;
    }
    CollectorPlugin* collector = Parser::findCollectorToDispatch(m_operations.list.front(), "read/write");
    if (collector == nullptr) return -1;

    // A message that is not decided yet reads.
    const auto command = static_cast<std::size_t>(m_command);
    const bool isWrite = (command & ~std::size_t{2}) != 0;
    if (isWrite) {
        QV_LOG_INFO("INFO: doing a WRITE (cmd = %zu)\n", command);
        return collector->doImmediateWrite(this);
    }
    QV_LOG_INFO("INFO: doing a READ (cmd = %zu)\n", command);
    return collector->doImmediateRead(this, results);
}

bool InputMsg::isCommandCompatible_i(QVOpCommand command) const
{
    if (m_command != QVOpCommand::UNDECIDED && m_command != command) return false;
    return areOperationsCompatible_i(command);
}

bool InputMsg::areOperationsCompatible_i(QVOpCommand command, std::size_t first) const
{
    return std::all_of(begin() + static_cast<std::ptrdiff_t>(first), end(),
                       [command](const Operation* operation) { return operation->isValidCommand(command); });
}

bool InputMsg::isCommandStillCompatible_i(QVOpCommand command)
{
    if (m_command != command) return isCommandCompatible_i(command);
    if (!areOperationsCompatible_i(command, m_checkedOperations)) return false;
    m_checkedOperations = getOperationCount();
    return true;
}

void InputMsg::recheck_i(const Operation& operation)
{
    if (m_checkedOperations != 0 && !operation.isValidCommand(m_command)) m_checkedOperations = 0;
}

bool InputMsg::isTriggerCompatible_i(const std::string& trigger, const PWSet<std::string>& triggers) const
{
    if (isExclusive(trigger)) {
        if (triggers.empty() || triggers.count(trigger) != 0) return true;
        QV_STREAM_ERROR << "Trying to add Trigger " << trigger << " to message " << m_name
                        << " which already has other triggers; \"INIT\", \"FINI\" and \"REQUIREMENTS\" messages CANNOT "
                           "be mixed with other messages!";
        return false;
    }
    if (std::none_of(triggers.begin(), triggers.end(), isExclusive)) return true;
    QV_STREAM_ERROR << "Trying to add Trigger " << trigger << " to message " << m_name
                    << " which already has an \"INIT\" or \"REQUIREMENTS\" Trigger; \"INIT\" and \"REQUIREMENTS\" "
                       "messages cannot be mixed with other messages!";
    return false;
}

}    // namespace pwr
