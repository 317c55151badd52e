#pragma once

#include <string>
#include <vector>

namespace host {

// Where the host's own files stand: in `config` beside the program (whose folder ends in a separator), else beside the
// program itself.

// The host's own output configuration. Empty when it is nowhere.
std::string findOutputConfig(const std::string& programFolder);

// The folder of the host's own collector configuration, with a separator behind it: the first that holds some. Empty
// when there is none.
std::string findCollectorConfig(const std::string& programFolder);

// The collector configuration files of a folder: all "*.conf" in the order of their names but the output configuration,
// which is "output.conf" and the file `outputConfig` (may be empty).
std::vector<std::string> listCollectorConfig(const std::string& folder, const std::string& outputConfig);

// Whether it can be read and is no folder.
bool isReadableFile(const std::string& path);

}    // namespace host
