#include "runtime/os/Environment.h"

#include <cstdlib>

namespace pwr::os {

namespace {

class PosixEnvironment : public Environment {
public:
    bool get(const char* name, std::string& value) override
    {
        const char* text = std::getenv(name);
        value = text != nullptr ? text : "";
        return text != nullptr;
    }
};

}    // namespace

Environment& systemEnvironment()
{
    static PosixEnvironment s_environment;
    return s_environment;
}

}    // namespace pwr::os
