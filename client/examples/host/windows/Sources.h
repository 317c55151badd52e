#pragma once

#include "records/QVBuffer.h"

#include <functional>

namespace host {

using TakeItem = std::function<void(const RecordItem&)>;

// Hand the items that records/QVBuffer.h describes for the kind to `take`; none when the system doesn't tell them.
void readSystemTimes(const TakeItem& take);
void readInterfaces(const TakeItem& take);
void readProcessorSpeeds(const TakeItem& take);
void readProcesses(const TakeItem& take);

}    // namespace host
