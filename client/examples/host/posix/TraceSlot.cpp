#include "system/TraceSlot.h"

#include <unistd.h>

namespace host {

// Sessions live in the process: all may have the same names.
TraceSlot::TraceSlot() = default;

TraceSlot::~TraceSlot() = default;

unsigned int ownProcessId()
{
    return static_cast<unsigned int>(getpid());
}

}    // namespace host
