// Input: an output configuration file. Invariant: no crash, no leak; a load fails with a reason in the error log or
// succeeds without one; logging everything changes nothing that the queries tell.

#include "InputFile.h"

#include "config/OutputConfig.h"
#include "record/SystemMetadata.h"

#include <cstdint>
#include <cstdlib>
#include <deque>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

struct Loaded {
    bool hasErrors = false;
    int result = 0;
    std::deque<std::string> features;
    std::deque<std::string> prefixes;
    std::vector<std::deque<std::string>> metrics;
    std::vector<std::deque<std::string>> tables;    // of the metrics that have an order
    std::vector<std::string> titles;
    bool operator==(const Loaded&) const = default;
};

// Every table of the metric is there.
void askForTables(Loaded& loaded, const std::string& metric, const std::string& feature)
{
    const auto* config = pwr::WriterInterfaceConfigFileParser::instance();
    std::deque<std::string> tables;
    config->getTableOrderForMetric(tables, metric, feature);
    for (const std::string& table : tables) {
        pwr::TableInfo info;
        if (!config->getTableInfoFor(info, metric, feature, table) || info.isEmpty()) std::abort();
        info.getTableTitle(loaded.titles.emplace_back());
    }
    loaded.tables.push_back(std::move(tables));
}

Loaded load(unsigned short verbosity)
{
    const LoggedEnvironment environment(verbosity);
    auto* config = pwr::WriterInterfaceConfigFileParser::instance();
    Loaded loaded;
    loaded.result = config->parse({"input", "input"}, pwr::SystemMetadata());
    loaded.hasErrors = !environment.errors.text.empty();
    config->getFeatureOrder(loaded.features);
    config->getAllFeaturePrefixes(loaded.prefixes);
    const std::set<std::string> features(loaded.prefixes.begin(), loaded.prefixes.end());
    for (const std::string& feature : features) {
        std::deque<std::string>& metrics = loaded.metrics.emplace_back();
        config->getMetricOrderForFeature(metrics, feature);
        for (const std::string& metric : metrics)
            askForTables(loaded, metric, feature);
    }
    config->destroy();
    return loaded;
}

}    // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) return 0;    // no memory file has no bytes
    InputFile file(data, size);
    SilentConsole console;
    pwr::os::current().files = &file;
    pwr::os::current().console = &console;

    const Loaded quiet = load(1);
    if (quiet.hasErrors != (quiet.result != 0)) std::abort();
    if (!(load(4) == quiet)) std::abort();
    for (const std::string& feature : quiet.features) {
        if (feature.empty()) std::abort();
    }
    return 0;
}
