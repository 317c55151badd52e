#pragma once

#include <string>
#include <vector>

namespace pwr {
class SystemMetadata;
}

namespace host {

// What stands in front of the results, line by line: about the tool, the collection and the hardware. It tells when the
// collection ended, so it is made then.
std::vector<std::string> resultHead(const pwr::SystemMetadata& record, bool isPostProcessed);

// Puts the lines, each as one quoted cell, and an empty line in front of a file of comma-separated values. Returns the
// empty text, or what failed; the file then stays as it was.
std::string putHeadInFront(const std::string& path, const std::vector<std::string>& head);

}    // namespace host
