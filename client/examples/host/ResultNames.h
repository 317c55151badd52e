#pragma once

#include "modules/Modules.h"

#include "usage/Option.h"

#include <string>
#include <vector>

namespace host {

// What --result can name: the host's own results and the writers that modules brought.

// Each with what it is.
std::vector<pwr::usage::Option> resultOptions(const std::vector<ModuleWriter>& brought);

// What is wrong with the first of the names that stands for no result; empty: all stand for one.
std::string findResultFault(const std::vector<std::string>& names, const std::vector<ModuleWriter>& brought);

}    // namespace host
