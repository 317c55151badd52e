#include "machine/TreeMachine.h"

#include "collector/TreeCollector.h"
#include "machine/Topology.h"

#include "config/pw_utils.h"
#include "record/SystemMetadata.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <sstream>

namespace host {

namespace {

const std::string FREQUENCY_FOLDER = "/sys/devices/system/cpu/cpu0/cpufreq";

// What stands behind the separator in the first line with this key; empty without one.
std::string valueOf(const std::string& text, const std::string& key, char separator)
{
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line)) {
        const std::size_t at = line.find(separator);
        if (at != std::string::npos && pwr::LineReader::trim(line.substr(0, at)) == key)
            return pwr::LineReader::trim(line.substr(at + 1));
    }
    return {};
}

// The leading number; 0 without one.
template <typename T>
T numberIn(const std::string& text)
{
    T value{};
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

}    // namespace

bool TreeMachine::describe(pwr::SystemMetadata& record, std::vector<std::string>& remarks) const
{
    record.hostName = textOr_i("/proc/sys/kernel/hostname", "unknown");
    record.osName = osName_i();
    record.osType = textOr_i("/proc/sys/kernel/ostype", "Unknown");
    record.osVersion = textOr_i("/proc/sys/kernel/osrelease", "Unknown");
    describeProcessor_i(record);

    const TopologyText topology = makeTopologyText(readPlaces(m_tree, remarks));
    record.buildTopology(topology.text, topology.coresPerModule);
    return record.getCPUTopology().getNumThreads() > 0;
}

std::unique_ptr<Collector> TreeMachine::makeCollector(MachineClock& clock) const
{
    return std::make_unique<TreeCollector>(m_tree, clock);
}

std::string TreeMachine::textOr_i(const std::string& path, const std::string& fallback) const
{
    std::string text;
    return m_tree.readText(path, text) && !text.empty() ? text : fallback;
}

std::string TreeMachine::osName_i() const
{
    std::string name = valueOf(textOr_i("/etc/os-release", ""), "PRETTY_NAME", '=');
    pwr::LineReader::strip(name, '"');
    return name.empty() ? textOr_i("/proc/sys/kernel/ostype", "Unknown") : name;
}

void TreeMachine::describeProcessor_i(pwr::SystemMetadata& record) const
{
    readCpuinfo_i(record);
    if (m_tree.isThisMachine()) askProcessor(record);
    readFrequencies_i(record);
}

// A recorded machine can't be asked by instruction: its own words count.
void TreeMachine::readCpuinfo_i(pwr::SystemMetadata& record) const
{
    const std::string text = textOr_i("/proc/cpuinfo", "");
    const std::string name = valueOf(text, "model name", ':');
    record.platformName = name.empty() ? "Unknown" : name;
    record.fms.family = static_cast<std::uint8_t>(numberIn<unsigned int>(valueOf(text, "cpu family", ':')));
    record.fms.model = static_cast<std::uint8_t>(numberIn<unsigned int>(valueOf(text, "model", ':')));
    record.fms.stepping = static_cast<std::uint8_t>(numberIn<unsigned int>(valueOf(text, "stepping", ':')));
    record.cpuFreqMHz = numberIn<float>(valueOf(text, "cpu MHz", ':'));
}

// The files hold kHz.
void TreeMachine::readFrequencies_i(pwr::SystemMetadata& record) const
{
    const struct {
        const char* file;
        float* target;
    } rows[] = {{"/base_frequency", &record.cpuFreqMHz},
                {"/cpuinfo_min_freq", &record.lfmFreqMHz},
                {"/cpuinfo_max_freq", &record.hfmFreqMHz}};
    for (const auto& row : rows) {
        std::uint64_t kHz = 0;
        if (m_tree.readNumber(FREQUENCY_FOLDER + row.file, kHz)) *row.target = static_cast<float>(kHz) / 1000.0F;
    }
}

}    // namespace host
