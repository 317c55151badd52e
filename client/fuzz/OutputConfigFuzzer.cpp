// Input: an output configuration file. Invariant: no crash, no leak; a load fails with a reason in the error log or
// succeeds without one; logging everything changes nothing that the queries tell.

#include "config/OutputConfig.h"
#include "plugins/PluginEnvironment.h"
#include "record/SystemMetadata.h"
#include "runtime/Logger.h"
#include "runtime/os/Os.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

class CountingLogger : public Logger {
public:
    void writeOut() override { size += m_buffer.size(); }
    std::size_t size = 0;
};

class SilentConsole : public pwr::os::Console {
public:
    void writeError(const char*) override {}
};

// One file, whatever its path: the input.
class InputFile : public pwr::os::Files {
public:
    InputFile(const std::uint8_t* data, std::size_t size) : m_bytes(data, data + size) {}

    char pathSeparator() const override { return '/'; }
    bool createDirectory(const std::string&, int&) override { return false; }
    int queryDirectory(const std::string&, bool&) override { return ENOENT; }
    int openStream(FILE** stream, const char*, const char*) override
    {
        *stream = fmemopen(m_bytes.data(), m_bytes.size(), "rb");
        return *stream != nullptr ? 0 : errno;
    }
    int reopenStream(FILE**, const char*, const char*, FILE*) override { return ENOENT; }
    int openDescriptor(int&, const char*, int) override { return ENOENT; }
    int duplicateDescriptor(FILE*, FILE*) override { return -1; }

private:
    std::vector<std::uint8_t> m_bytes;
};

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
    CountingLogger errors;
    CountingLogger rest;
    PluginEnvironment environment;
    environment.setErrorLogger(&errors);
    environment.setDebugLogger(&rest);
    environment.setVerbosity(verbosity);
    g_pluginEnvironment = &environment;

    auto* config = pwr::WriterInterfaceConfigFileParser::instance();
    Loaded loaded;
    loaded.result = config->parse({"input", "input"}, pwr::SystemMetadata());
    loaded.hasErrors = errors.size > 0;
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
    g_pluginEnvironment = nullptr;
    return loaded;
}

}    // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) return 0;
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
