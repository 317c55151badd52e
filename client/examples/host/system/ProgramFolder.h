#pragma once

#include <string>

namespace host {

// The folder of the program's file, links followed, with a separator behind it; empty when the system doesn't tell.
std::string programFolder();

}    // namespace host
