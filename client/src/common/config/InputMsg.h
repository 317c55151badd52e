#pragma once

#include "config/Triggers.h"
#include "runtime/Export.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace pwr {

class EntityHandle;
class MsgMetadata;
class Operation;
class Parser;
class Platform;

// One message of the collector configuration: what is read or written, when, and on which processor, carried out by the
// operations of one collector. A message has one direction; each of its two trigger groups (normal, and for collections
// of the highest detail) is a mix of "BEGIN", "POLL", "END", "NOTIFIER" and "TRACEPOINT", or one of "INIT", "FINI" and
// "REQUIREMENTS" alone. It owns its operations; a copy clones them, and its current group is its own. Messages that
// queries hand out are the parser's and die with its model.
//
//   InputMsg message("LOAD", pluginId, metricId, msgId);
//   message.addReadTrigger("POLL");
//   message.addOperation(new SysfsOperation(...));
//
// Operations that return int give 0; or -1, with nothing changed.
class QUORVANE_API InputMsg {
public:
    using const_iterator = std::vector<Operation*>::const_iterator;

    explicit InputMsg(const std::string& name);
    InputMsg(const std::string& name, const std::string& platformPrefix);
    InputMsg(const std::string& name, int pluginID, int metricID, int msgID);
    InputMsg(const InputMsg& other);
    InputMsg& operator=(const InputMsg& other);
    ~InputMsg();

    const std::string& getName() const { return m_name; }                        // the tag
    void setName(const std::string& name);                                       // leaves the full name
    const std::string& getFullName() const { return m_fullName; }                // platform prefix, "_", name
    const std::string& getPlatformPrefix() const { return m_platformPrefix; }    // <platform>_<prefix>
    void setPlatformPrefix(const std::string& platformPrefix);
    const std::string& getPlatformName() const { return m_platformName; }
    std::string getConfigfilePrefix() const;    // "<N/A>" without a platform prefix

    int getPluginID() const { return m_pluginId; }
    void setPluginID(int id);
    int getMetricID() const { return m_metricId; }
    void setMetricID(int id);
    int getMsgID() const { return m_msgId; }
    void setMsgID(int id);

    const std::string& getCPUString() const { return m_cpu; }
    int setCPUString(const std::string& cpu);    // "ALL", "ANY" or a number
    const EntityHandle* getEntityHandle() const { return m_entity; }
    int setEntityHandle(const EntityHandle* entity);    // once; not owned

    QVOpCommand getCommand() const { return m_command; }
    void setCommand(QVOpCommand command);
    std::uint16_t getSamplingInterval() const { return m_samplingIntervalMsecs; }
    void setSamplingInterval(std::uint16_t msecs);
    const std::string& getFeatureName() const { return m_featureName; }
    void setFeatureName(const std::string& name);

    // The current trigger group: the normal one until a query of the parser selects another. A trigger is refused when
    // the message has the other direction or an operation can't do it (silently), and when it doesn't go with the
    // group's triggers (with an error line).
    int addTrigger(QVOpCommand command, const std::string& trigger);
    int addReadTrigger(const std::string& trigger);
    int addWriteTrigger(const std::string& trigger);
    const PWSet<std::string>& getTriggers() const;
    const PWSet<std::string>& getTracepointNames() const;
    const PWSet<std::string>& getNotifierNames() const;
    void addTracepointName(const std::string& name);
    void addNotifierName(const std::string& name);

    void addOperation(Operation* operation);    // takes ownership; null is left out
    void resetOperations();                     // forgets them without deleting
    const std::vector<Operation*>& getOperations() const { return m_operations.list; }
    std::size_t getOperationCount() const { return m_operations.list.size(); }
    const_iterator begin() const { return m_operations.list.begin(); }
    const_iterator end() const { return m_operations.list.end(); }

    // A new record of this message, the caller's; without a capability name, which whoever stores it sets.
    MsgMetadata* getMetadata() const;

    // Reads or writes the whole message now, through the collector of its first operation. Returns what the collector
    // returns; -1, with a line in the log, without operations, loaded configuration or collector.
    int execute(std::vector<std::pair<std::string, std::string>>& results);

private:
    friend class Parser;
    friend class Platform;

    struct TriggerGroup {
        PWSet<std::string> triggers;
        PWSet<std::string> tracepointNames;
        PWSet<std::string> notifierNames;
    };

    // A group that takes no room until something is put in; most messages have one, many none.
    class LazyGroup {
    public:
        LazyGroup() = default;
        LazyGroup(const LazyGroup& other);
        LazyGroup& operator=(const LazyGroup& other);
        ~LazyGroup() = default;

        const TriggerGroup& get() const;
        TriggerGroup& make();

    private:
        std::unique_ptr<TriggerGroup> m_group;
    };

    // Deletes its operations from the last to the first; a copy has clones.
    struct OwnedOperations {
        OwnedOperations() = default;
        OwnedOperations(const OwnedOperations& other);
        OwnedOperations& operator=(const OwnedOperations& other);
        ~OwnedOperations();

        std::vector<Operation*> list;
    };

    void init_i(const std::string& name, const std::string& platformPrefix, int pluginID, int metricID, int msgID,
                QVOpCommand command);
    void setPlatformName();

    // On the group that `maxDetail` chooses; a direction that doesn't fit is told on the standard error stream. While a
    // configuration is read, an operation is asked again whether it can do the message's direction only after a setting
    // (recheck_i): groups can be large, and every line would ask all.
    int addTrigger(QVOpCommand command, const std::string& trigger, bool maxDetail);
    int addReadTrigger(const std::string& trigger, bool maxDetail);
    int addWriteTrigger(const std::string& trigger, bool maxDetail);
    const PWSet<std::string>& getTriggers(bool maxDetail) const;
    const PWSet<std::string>& getTracepointNames(bool maxDetail) const;
    const PWSet<std::string>& getNotifierNames(bool maxDetail) const;
    void addTracepointName(const std::string& name, bool maxDetail);
    void addNotifierName(const std::string& name, bool maxDetail);

    // Makes a group the current one; with `fallback` the other one when the chosen has no triggers.
    void setTrigger(bool maxDetail, bool fallback);

    int addTriggerTo_i(LazyGroup& group, QVOpCommand command, const std::string& trigger);
    LazyGroup& group_i(bool maxDetail) { return maxDetail ? m_maxDetail : m_normal; }
    const LazyGroup& group_i(bool maxDetail) const { return maxDetail ? m_maxDetail : m_normal; }
    bool isCommandCompatible_i(QVOpCommand command) const;
    bool areOperationsCompatible_i(QVOpCommand command, std::size_t first = 0) const;
    bool isCommandStillCompatible_i(QVOpCommand command);
    void recheck_i(const Operation& operation);
    bool isTriggerCompatible_i(const std::string& trigger, const PWSet<std::string>& triggers) const;

    std::string m_name;
    std::string m_platformPrefix;
    std::string m_platformName;
    std::string m_fullName;
    int m_pluginId = 0;
    int m_metricId = 0;
    int m_msgId = 0;
    std::string m_cpu = "ANY";
    const EntityHandle* m_entity = nullptr;
    LazyGroup m_normal;
    LazyGroup m_maxDetail;
    bool m_isMaxDetailCurrent = false;
    OwnedOperations m_operations;
    std::size_t m_checkedOperations = 0;    // so many, from the first on, are known to do m_command
    QVOpCommand m_command = QVOpCommand::UNDECIDED;
    std::uint16_t m_samplingIntervalMsecs = 0;
    std::string m_featureName;
};

}    // namespace pwr
