#pragma once

#include "usage/Option.h"

#include <map>
#include <string>
#include <vector>

namespace pwr::usage {

// The contents of the tables of UsageText: what the tool's options are. A new option is a new entry in the source.

std::map<std::string, std::vector<Option>> makeCategories();
std::map<std::string, std::vector<Option>> makeFeatureOptions();

// The IP names that a chip offers, by its code name.
std::map<std::string, std::vector<std::string>> makeTcssIps();

}    // namespace pwr::usage
