#pragma once

#include <string>
#include <vector>

namespace pwr {
class SystemMetadata;
}

namespace host {

// Fills what the record tells of the program and its command line. With what Machine::describe() fills, no required
// text is empty, so that the record can be read back.
void describeProgram(pwr::SystemMetadata& record, const std::vector<std::string>& arguments, unsigned int intervalMs);

}    // namespace host
