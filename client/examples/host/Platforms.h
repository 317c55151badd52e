#pragma once

#include <string>
#include <utility>
#include <vector>

namespace pwr {
class SystemMetadata;
}

namespace host {

// The properties of the system by which the collector configuration may choose a platform, the one that says most
// first. Each is a type and its value, as the configuration's MODEL lines name and test them:
//
//   FMS      the processor: family, model and stepping in decimal, "6.77.2"
//   CORES    the number of its cores
//   THREADS  the number of its logical processors
//   OS       the type of the operating system: "Linux", "Windows"
std::vector<std::pair<std::string, std::string>> platformSpecifiers(const pwr::SystemMetadata& record);

// The platforms that the loaded configuration knows this system by, in the order of its properties:
// "FMS=HWMON,OS=LINUX". "ALL=ALL", the root, when none fits.
std::string choosePlatforms(const pwr::SystemMetadata& record);

}    // namespace host
