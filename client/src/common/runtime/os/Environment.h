#pragma once

#include <string>

namespace pwr::os {

// The variables of the process.
class Environment {
public:
    virtual ~Environment() = default;

    // False, with `value` empty, when the variable is not set.
    virtual bool get(const char* name, std::string& value) = 0;
};

Environment& systemEnvironment();

}    // namespace pwr::os
