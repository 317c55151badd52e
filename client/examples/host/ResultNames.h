#pragma once

#include "usage/Option.h"

#include <string>
#include <vector>

namespace host {

// The results that --result names, each with what it is.
std::vector<pwr::usage::Option> resultOptions();

// The first of the names that stands for no result; empty: all do.
std::string findUnknownResult(const std::vector<std::string>& names);

}    // namespace host
