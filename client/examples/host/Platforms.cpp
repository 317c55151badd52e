#include "Platforms.h"

#include "config/qv_configfile_parser.h"
#include "record/SystemMetadata.h"

namespace host {

std::vector<std::pair<std::string, std::string>> platformSpecifiers(const pwr::SystemMetadata& record)
{
    const pwr::FMS& fms = record.fms;
    const pwr::TopTree& topology = record.getCPUTopology();
    return {{"FMS", std::to_string(fms.family) + "." + std::to_string(fms.model) + "." + std::to_string(fms.stepping)},
            {"CORES", std::to_string(topology.getNumCores())},
            {"THREADS", std::to_string(topology.getNumThreads())},
            {"OS", record.osType}};
}

std::string choosePlatforms(const pwr::SystemMetadata& record)
{
    const pwr::QVConfigFileParser* config = pwr::QVConfigFileParser::instance();
    std::string names;
    for (const auto& specifier : platformSpecifiers(record)) {
        std::string name;
        config->getPlatformName(name, specifier);
        if (!name.empty()) names += (names.empty() ? "" : ",") + specifier.first + "=" + name;
    }
    return names.empty() ? "ALL=ALL" : names;
}

}    // namespace host
