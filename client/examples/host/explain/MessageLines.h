#pragma once

#include "explain/OriginPage.h"

#include <map>
#include <string>
#include <vector>

namespace pwr {
class InputMsg;
}

namespace host {

// Says of single messages what the configuration made of their statements: direction, triggers of both groups,
// attributes, and the settings of each operation. The messages are the parser's, the page is not owned.
class MessageLines {
public:
    using Statement = pwr::ConfigOrigins::Statement;
    using Statements = std::vector<const Statement*>;    // of one message, in their order; never empty

    // Asks the configuration for the triggers of each message of the prefix.
    MessageLines(OriginPage& page, const std::vector<const pwr::InputMsg*>& messages, const std::string& platforms,
                 const std::string& prefix);

    bool isTaken(const Statements& message) const;
    void tell(const Statements& message);

    static std::string tagOf(const Statements& message);
    static bool isSetting(const Statement& statement);    // of an operation

private:
    struct Triggers {
        std::string normal;
        std::string maxDetail;
    };

    const pwr::InputMsg* find_i(const Statements& message) const;
    void tellTriggers_i(const pwr::InputMsg& message, const Statements& statements);
    void tellGroup_i(const std::string& group, const std::string& triggers, const pwr::InputMsg& message,
                     const Statements& lines);
    void tellOperations_i(const Statements& statements);

    OriginPage& m_page;
    std::map<std::string, const pwr::InputMsg*> m_messages;    // by full name
    std::map<const pwr::InputMsg*, Triggers> m_triggers;
};

}    // namespace host
