#include "config/Triggers.h"

#include "config/pw_utils.h"

#include <array>
#include <string_view>

namespace pwr {

namespace {

struct WhenEntry {
    std::string_view trigger;
    qv_when_type when;
};

constexpr std::array<WhenEntry, 6> WHEN_TABLE = {{
    {"BEGIN", qv_when_type::BEGIN},
    {"END", qv_when_type::END},
    {"POLL", qv_when_type::POLL},
    {"NOTIFIER", qv_when_type::NOTIFIER},
    {"TRACEPOINT", qv_when_type::TRACEPOINT},
    {"", qv_when_type::END},
}};

}    // namespace

int getWhenTypeForTrigger(const std::string& trigger)
{
    for (const WhenEntry& entry : WHEN_TABLE) {
        if (entry.trigger == trigger) return static_cast<int>(entry.when);
    }
    return static_cast<int>(qv_when_type::END);
}

unsigned char getTriggerMask(const PWSet<std::string>& triggers)
{
    unsigned int mask = 0;
    for (const std::string& trigger : triggers)
        mask |= 1U << getWhenTypeForTrigger(trigger);
    return static_cast<unsigned char>(mask);
}

int getCPUMaskFromString(const std::string& cpu)
{
    if (cpu == "ALL") return -2;
    if (cpu == "ANY") return -1;
    return isNumber(cpu) ? static_cast<int>(extract_number_i(cpu)) : -3;
}

}    // namespace pwr
