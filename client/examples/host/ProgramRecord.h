#pragma once

#include <string>
#include <vector>

class Plugin;
namespace pwr {
class SystemMetadata;
}

namespace host {

// Fills what the record tells of the program and its command line. With what Machine::describe() fills, no required
// text is empty, so that the record can be read back.
void describeProgram(pwr::SystemMetadata& record, const std::vector<std::string>& arguments, unsigned int intervalMs);

// Gives the plugin a number of its own for the run, which the record tells.
void enroll(Plugin& plugin, pwr::SystemMetadata& record);

}    // namespace host
