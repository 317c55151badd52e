#pragma once

#include "usage/Option.h"

#include <cstddef>
#include <string>
#include <vector>

namespace host {

// Width in characters of the console; 80 without one.
std::size_t consoleWidth();

// All options from the tool's description, those that only this host has, the results that --result can name, and
// features, in lines below `width` characters. No word is broken: very narrow consoles get longer lines.
std::string helpText(std::size_t width, const std::vector<pwr::usage::Option>& results);

}    // namespace host
