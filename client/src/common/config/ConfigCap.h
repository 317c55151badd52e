#pragma once

#include "runtime/Export.h"
#include "values/PWSet.h"

#include <string>

namespace pwr {

// A feature as the collector configuration declares it for one platform. A plain value; those that queries hand out are
// the parser's.
class QUORVANE_API ConfigCap {
public:
    const std::string& getName() const { return m_name; }    // what the command line asks for
    void setName(const std::string& name);
    const std::string& getDescription() const { return m_description; }
    void setDescription(const std::string& description);
    const std::string& getConfigfilePrefix() const { return m_configfilePrefix; }
    void setConfigfilePrefix(const std::string& prefix);
    void addGroup(const std::string& group);    // another name that a user may ask for
    const PWSet<std::string>& getGroups() const { return m_groups; }
    void setHidden();
    bool isHidden() const { return m_hidden; }

private:
    std::string m_name;
    std::string m_description;
    std::string m_configfilePrefix;
    bool m_hidden = false;
    PWSet<std::string> m_groups;
};

}    // namespace pwr
