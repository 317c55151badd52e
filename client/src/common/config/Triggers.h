#pragma once

#include "runtime/Export.h"
#include "values/PWSet.h"

#include <cstdint>
#include <string>

namespace pwr {

// What a message does.
enum class QVOpCommand : std::uint32_t {
    READ = 0,
    WRITE = 1,
    UNDECIDED = 2,    // until its first trigger
};

// The triggers that the kernel driver knows.
enum class qv_when_type : std::uint32_t { BEGIN = 0, POLL = 1, NOTIFIER = 2, TRACEPOINT = 3, END = 4 };

// The driver's number of a trigger name; that of "END" for any other text, so also for "INIT", "FINI" and
// "REQUIREMENTS".
QUORVANE_API int getWhenTypeForTrigger(const std::string& trigger);

// One bit per trigger, 1 << number; 0 for none.
QUORVANE_API unsigned char getTriggerMask(const PWSet<std::string>& triggers);

// "ALL" is -2, "ANY" -1, a number itself (see extract_number_i), anything else -3.
QUORVANE_API int getCPUMaskFromString(const std::string& cpu);

}    // namespace pwr
