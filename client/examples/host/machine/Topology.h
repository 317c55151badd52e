#pragma once

#include <string>
#include <vector>

namespace host {

class SystemTree;

// Where one logical processor stands, in the system's own numbers; -1: the system tells none.
struct ProcessorPlace {
    int processor = 0;
    int package = 0;
    int die = -1;
    int cluster = -1;    // cores that share a cache below the package's
    int core = 0;
};

// What SystemMetadata::buildTopology takes.
struct TopologyText {
    std::string text;
    unsigned long long coresPerModule = 0;
};

// Reads the processors below /sys/devices/system/cpu, ascending. One that is off line is passed over; one whose place
// can't be read too, with a line in `remarks`. Where no processor tells its place each is a core of its own.
std::vector<ProcessorPlace> readPlaces(const SystemTree& tree, std::vector<std::string>& remarks);

// Dies are told only when some package has several. Clusters become modules when one has several cores: the cores of
// each package are then renumbered so that the number divided by the cores per module is the module.
TopologyText makeTopologyText(const std::vector<ProcessorPlace>& places);

}    // namespace host
