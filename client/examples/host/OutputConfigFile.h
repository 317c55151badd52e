#pragma once

#include <string>

namespace host {

// The host's own output configuration: where it stands in the sources, else in `config` beside the program (whose
// folder ends in a separator), else beside the program itself. Empty when it is nowhere.
std::string findOutputConfig(const std::string& programFolder);

// Whether it can be read and is no folder.
bool isReadableFile(const std::string& path);

}    // namespace host
