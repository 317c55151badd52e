#pragma once

#include "Host.h"
#include "features/Features.h"

#include <string>
#include <vector>

namespace host {

// Says what the loaded configuration makes of the features that answer to a name, on this machine: the platforms and
// why they are this machine's, capabilities, messages with triggers and operations, and in which file and line each of
// them stands. A feature that is not offered is explained, too. `params` are those that the plugins get. Returns the
// exit status; any other than EXIT_GOOD comes with a line on the console's errors.
int explainFeatures(const std::string& name, const std::vector<Feature>& features, const pwr::SystemMetadata& record,
                    const Plugin::Params& params, const Console& console);

}    // namespace host
