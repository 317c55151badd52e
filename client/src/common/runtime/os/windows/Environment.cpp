#include "runtime/os/Environment.h"

#include <stdlib.h>
#include <utility>

namespace pwr::os {

namespace {

class WindowsEnvironment : public Environment {
public:
    bool get(const char* name, std::string& value) override
    {
        value.clear();
        std::size_t required = 0;
        getenv_s(&required, nullptr, 0, name);    // some run-times call the missing buffer too small
        if (required == 0) return false;
        std::string text(required, '\0');
        if (getenv_s(&required, text.data(), text.size(), name) != 0 || required == 0) return false;
        text.resize(required - 1);    // without the end mark
        value = std::move(text);
        return true;
    }
};

}    // namespace

Environment& systemEnvironment()
{
    static WindowsEnvironment s_environment;
    return s_environment;
}

}    // namespace pwr::os
