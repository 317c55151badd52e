#include "machine/Topology.h"

#include "machine/SystemTree.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <set>
#include <tuple>
#include <utility>

namespace host {

namespace {

const std::string CPU_FOLDER = "/sys/devices/system/cpu";
constexpr int NO_CLUSTER = 65535;    // what the system writes where there is none

// Package, die, cluster, and the core where it stands in no cluster: such a core is a module of its own.
using Module = std::tuple<int, int, int, int>;

Module moduleOf(const ProcessorPlace& place)
{
    return {place.package, place.die, place.cluster, place.cluster < 0 ? place.core : -1};
}

// -1 where the file is missing, which older systems leave out, or tells none. False for what can't be read.
bool readId(const SystemTree& tree, const std::string& path, int& id)
{
    std::int64_t value = 0;
    if (!tree.readNumber(path, value) || value > std::numeric_limits<int>::max()) return false;
    id = value < 0 ? -1 : static_cast<int>(value);
    return true;
}

bool readPlace(const SystemTree& tree, const std::string& folder, ProcessorPlace& place, std::string& unreadable)
{
    for (const auto& [file, id] : {std::pair{"/physical_package_id", &place.package}, {"/core_id", &place.core}}) {
        if (readId(tree, folder + file, *id)) continue;
        unreadable = tree.realPath(folder + file);
        return false;
    }
    readId(tree, folder + "/die_id", place.die);
    readId(tree, folder + "/cluster_id", place.cluster);
    if (place.package < 0) place.package = 0;
    if (place.core < 0) place.core = place.processor;
    if (place.cluster == NO_CLUSTER) place.cluster = -1;
    return true;
}

std::vector<ProcessorPlace> coresOfTheirOwn(const std::vector<int>& processors)
{
    std::vector<ProcessorPlace> places;
    for (const int processor : processors) {
        ProcessorPlace place;
        place.processor = place.core = processor;
        places.push_back(place);
    }
    return places;
}

bool hasSeveralDies(const std::vector<ProcessorPlace>& places)
{
    std::map<int, std::set<int>> dies;
    for (const ProcessorPlace& place : places) {
        if (place.die >= 0) dies[place.package].insert(place.die);
    }
    return std::any_of(dies.begin(), dies.end(), [](const auto& package) { return package.second.size() > 1; });
}

std::map<Module, std::set<int>> coresOfModules(const std::vector<ProcessorPlace>& places)
{
    std::map<Module, std::set<int>> modules;
    for (const ProcessorPlace& place : places)
        modules[moduleOf(place)].insert(place.core);
    return modules;
}

// The new numbers of the cores, by module and old number; they begin anew in each package.
std::map<std::pair<Module, int>, std::size_t> renumber(const std::map<Module, std::set<int>>& modules, std::size_t size)
{
    std::map<std::pair<Module, int>, std::size_t> numbers;
    int package = -1;
    std::size_t module = 0;
    for (const auto& [key, cores] : modules) {
        module = std::get<0>(key) == package ? module + 1 : 0;
        package = std::get<0>(key);
        std::size_t next = module * size;
        for (const int core : cores)
            numbers[{key, core}] = next++;
    }
    return numbers;
}

}    // namespace

std::vector<ProcessorPlace> readPlaces(const SystemTree& tree, std::vector<std::string>& remarks)
{
    const std::vector<int> processors = tree.numberedEntries(CPU_FOLDER, "cpu");
    std::vector<ProcessorPlace> places;
    bool isTold = false;
    for (const int processor : processors) {
        const std::string folder = CPU_FOLDER + "/cpu" + std::to_string(processor) + "/topology";
        if (!tree.isFolder(folder)) continue;
        isTold = true;
        ProcessorPlace place;
        place.processor = processor;
        std::string unreadable;
        if (readPlace(tree, folder, place, unreadable)) {
            places.push_back(place);
        } else {
            remarks.push_back("processor " + std::to_string(processor) + " is left out, since " + unreadable +
                              " can't be read");
        }
    }
    return isTold ? places : coresOfTheirOwn(processors);
}

TopologyText makeTopologyText(const std::vector<ProcessorPlace>& places)
{
    const std::map<Module, std::set<int>> modules = coresOfModules(places);
    std::size_t size = 0;
    for (const auto& [key, cores] : modules)
        size = std::max(size, cores.size());

    TopologyText topology;
    topology.coresPerModule = size > 1 ? size : 0;
    const bool tellsDies = size <= 1 && hasSeveralDies(places);
    const auto numbers = renumber(modules, size);
    for (const ProcessorPlace& place : places) {
        const std::size_t core = size > 1 ? numbers.at({moduleOf(place), place.core}) : std::size_t(place.core);
        if (!topology.text.empty()) topology.text += ' ';
        topology.text += std::to_string(place.processor) + ' ' + std::to_string(place.package) + ' ' +
                         std::to_string(core) + ' ' + std::to_string(tellsDies ? place.die : -1);
    }
    return topology;
}

}    // namespace host
