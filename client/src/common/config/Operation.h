#pragma once

#include "config/Triggers.h"
#include "plugins/PluginRequirement.h"
#include "runtime/Export.h"

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace pwr {

class EntityHandle;
class OperationMetadata;

// One access that a message is carried out by: a kind that a collector plugin knows, for instance "CONSTANT", with its
// settings. A collector derives from it and offers prototypes; the configuration clones them for its messages.
//
//   class SysfsOperation : public Operation {    // kind "SYSFS", categories "PATH" and "FIELD"
//       int set(const std::string& category, const std::string& value) override;
//   };
class QUORVANE_API Operation {
public:
    explicit Operation(const std::string& operation);    // the name is the kind
    Operation(const std::string& operation, const std::string& name);
    virtual ~Operation();

    // Takes one setting of a configuration line. 0; anything else refuses it.
    virtual int set(const std::string& key, const std::string& value) = 0;
    virtual OperationMetadata* getOperationMetadata() const = 0;    // new, the caller's
    virtual Operation* clone() const = 0;                           // new, the caller's

    const std::string& getOperation() const { return m_kind->operation; }    // the kind
    const std::string& getName() const { return m_name; }
    void setName(const std::string& name);

    // The category is one of this kind's, and may be set now.
    bool isValidCategory(const std::string& category) const;
    bool isValidCommand(QVOpCommand command) const;

    void addRequirement(PluginRequirement* requirement);    // not owned; clones share it. Null is left out
    PluginRequirementResult isOperationSuitableFor(const SystemMetadata& system) const;

    // Carries out one operation now, through the collector that provides its kind. Returns what the collector returns;
    // -1, with an error line, for an operation without a kind, without a loaded configuration, without a collector.
    static int dispatchRead(Operation* operation, const std::string& text);
    static int dispatchWrite(Operation* operation, const std::string& text);

    // Without a function so far: both warn; the write form gives -1, the read form throws an empty std::string.
    static int dispatchRead(Operation* operation, const EntityHandle* entity);
    static int dispatchWrite(Operation* operation, const EntityHandle* entity);

protected:
    Operation(const Operation& other);
    Operation& operator=(const Operation& other);

    void addCategory(const std::string& category);
    virtual bool canSetCategory(const std::string& category) const;    // true
    virtual bool isValidCommand_i(QVOpCommand command) const;          // reads only

private:
    // What a prototype says of its kind. A configuration holds many clones: they share it until one adds to its own.
    struct Kind {
        std::string operation;
        PWSet<std::string> categories;
        std::vector<PluginRequirement*> requirements;    // not owned
    };
    Kind& ownKind_i();

    std::string m_name;
    std::shared_ptr<Kind> m_kind;    // never null
};

// Constant values, in the order of their lines; keys are unique.
class QUORVANE_API CONSTANTOperation : public Operation {
public:
    using Values = std::vector<std::pair<std::string, std::string>>;

    explicit CONSTANTOperation(const std::string& name);

    int set(const std::string& key, const std::string& value) override;    // -1, with an error line, for a known key
    OperationMetadata* getOperationMetadata() const override;
    Operation* clone() const override;

    Values::const_iterator begin() const { return m_values.begin(); }
    Values::const_iterator end() const { return m_values.end(); }

private:
    bool doesKeyExist_i(const std::string& key) const;

    static constexpr std::size_t FEW_VALUES = 16;

    Values m_values;
    PWSet<std::string> m_keys;    // an index beside the list, while that is long
};

}    // namespace pwr
