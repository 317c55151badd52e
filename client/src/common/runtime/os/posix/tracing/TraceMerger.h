#pragma once

#include <string>
#include <vector>

namespace pwr::os::trace {

// Writes the events of all `inputs` into one file at `output`, in time order; events of the same time in the order of
// the inputs. Lost events are added up. Inputs may be cut; of a damaged one the events before the damage are merged,
// and the result is 1392. Any other failure leaves no output, or an empty one: 87 without inputs or when `output` is
// one of them, 13 for an input that is no trace file or is timed by another clock, else what the system tells.
unsigned long mergeTraceFiles(const std::string& output, const std::vector<std::string>& inputs);

}    // namespace pwr::os::trace
