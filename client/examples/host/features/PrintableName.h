#pragma once

#include <string>
#include <string_view>

namespace host {

// A name that the system tells, fit for tables and files: what is no UTF-8, and control characters, become "?", one for
// each byte. "unnamed" for an empty one.
std::string printableName(std::string_view bytes);

}    // namespace host
