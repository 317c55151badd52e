#include "ConfigFloor.h"

#include "config/InputMsg.h"
#include "config/Operation.h"
#include "config/qv_configfile_parser.h"
#include "plugins/CollectorPlugin.h"
#include "record/Metadata.h"
#include "record/SystemMetadata.h"

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

using namespace pwr;

namespace {

constexpr std::int64_t LINES = 100000;

// Keeps a path and a field, as collectors do.
class FieldOperation : public Operation {
public:
    FieldOperation() : Operation("SYSFS")
    {
        addCategory("PATH");
        addCategory("FIELD");
    }
    FieldOperation(const FieldOperation&) = default;
    ~FieldOperation() override = default;

    int set(const std::string& key, const std::string& value) override
    {
        (key == "PATH" ? m_path : m_field) = value;
        return 0;
    }
    OperationMetadata* getOperationMetadata() const override
    {
        return new OperationMetadata(getName(), getOperation(), 8);
    }
    Operation* clone() const override { return new FieldOperation(*this); }

private:
    std::string m_path;
    std::string m_field;
};

class FieldCollector : public CollectorPlugin {
public:
    FieldCollector() : CollectorPlugin("field")
    {
        addOperation(new FieldOperation);
        addOperation(new CONSTANTOperation("CONSTANT"));
    }
    ~FieldCollector() override = default;

    int startCollection(const std::vector<InputMsg*>&, SystemMetadata&) override { return 0; }
    int stopCollection(CollectionData&) override { return 0; }
    int pauseCollection() override { return 0; }
    int resumeCollection() override { return 0; }
    int getCollectionResults(QVBuffer&) override { return 0; }
    int doImmediateRead(const InputMsg*, Results&) override { return 0; }
};

// A configuration of that many lines: platforms in chains of five, each with features of ten lines. Platforms and
// features grow with it: 200 and 50 for 100,000 lines. Removed at the end.
class ConfigFile : public bench::ConfigPath {
public:
    explicit ConfigFile(std::int64_t lines) : m_linesLeft(lines)
    {
        std::int64_t platforms = 20;
        while (platforms * platforms * 10 / 4 < lines)
            platforms += 20;
        const std::int64_t prefixes = lines / platforms / 10;

        std::ofstream out(path(), std::ios::binary);
        write_i(out, "ALL_MODEL_OS_CONSTANT_VALUE=any");
        for (std::int64_t i = 0; i < platforms; ++i)
            writePlatform_i(out, i, prefixes);
        while (m_linesLeft > 0)
            write_i(out, "ALL_REST_R" + std::to_string(m_linesLeft) + "_CONSTANT_VALUE=1");
        if (!out.flush()) std::abort();
    }

    // The deepest platform of the middle chain, and the processor that selects it.
    const std::string& platform() const { return m_platform; }
    const std::string& processor() const { return m_processor; }

private:
    void writePlatform_i(std::ostream& out, std::int64_t number, std::int64_t prefixes)
    {
        std::string platform = "CHIP" + std::to_string(number / 5);
        for (std::int64_t level = 1; level <= number % 5; ++level)
            platform += "-V" + std::to_string(level);
        const std::string processor = "6." + std::to_string(number % 250 + 1) + "." + std::to_string(number / 250 + 1);
        write_i(out, platform + "_MODEL_FMS_CONSTANT_VALUE=" + processor + ",7.200");
        for (std::int64_t i = 0; i < prefixes; ++i)
            writeFeature_i(out, platform + "_FEATURE" + std::to_string(i), static_cast<char>('0' + number % 5),
                           i == 0 ? 9 : 10);
        if (number % 5 == 4 && (m_platform.empty() || number < 105)) {
            m_platform = platform;
            m_processor = processor;
        }
    }

    // Tags differ from level to level, so that EXTEND adds them all.
    void writeFeature_i(std::ostream& out, const std::string& feature, char level, std::size_t lines)
    {
        static constexpr std::array<const char*, 10> statements = {
            "_CAPABILITY_COMMAND-LINE_VALUE=core-cstate",
            "_CAPABILITY_HELP-STRING_VALUE=Residency of the cores in their C-states",
            "_RESIDENCY@_MSG_READ-WHEN=BEGIN,POLL,END",
            "_RESIDENCY@_MSG_READ-WHICH-CPU=ALL",
            "_RESIDENCY@_SYSFS_PATH=devices/system/cpu/cpu%d/cpuidle/state0/time",
            "_RESIDENCY@_SYSFS_FIELD=1",
            "_RESIDENCY@_CONSTANT_MULTIPLIER=1000",
            "_COUNT_SYSFS_PATH=devices/system/cpu/cpu%d/cpuidle/state0/usage",
            "_RESIDENCY@_MSG_GROUP=COUNT",
            "_INHERIT_MODE_VALUE=EXTEND",
        };
        for (std::size_t i = 0; i < lines; ++i) {
            std::string statement = statements[i];
            std::replace(statement.begin(), statement.end(), '@', level);
            write_i(out, feature + statement);
        }
    }

    void write_i(std::ostream& out, const std::string& line)
    {
        if (m_linesLeft == 0) return;
        out << line << '\n';
        --m_linesLeft;
    }

    std::int64_t m_linesLeft;
    std::string m_platform;
    std::string m_processor;
};

// Written once for each size.
const ConfigFile& fileOf(std::int64_t lines)
{
    static std::map<std::int64_t, std::unique_ptr<ConfigFile>> s_files;
    std::unique_ptr<ConfigFile>& file = s_files[lines];
    if (!file) file = std::make_unique<ConfigFile>(lines);
    return *file;
}

// One value of /proc/self/status in MB; 0 where there is none.
double memoryMB(const std::string& name)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind(name + ":", 0) == 0) return std::strtod(line.c_str() + name.size() + 1, nullptr) / 1024;
    }
    return 0;
}

// From here on the peak is that of what follows.
void resetPeakMemory()
{
    std::ofstream("/proc/self/clear_refs") << 5;
}

// The floor: the same file, each line split into six texts.
void BM_CollectorConfigFloor(benchmark::State& state)
{
    const ConfigFile& file = fileOf(state.range(0));
    for (auto _ : state) {
        if (bench::splitLines(file.path()) != state.range(0)) std::abort();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_CollectorConfigFloor)->Arg(LINES)->Unit(benchmark::kMillisecond);

// Loading a collector configuration costs at most 4 times BM_CollectorConfigFloor, and at most twice as much for each
// line at 1,000,000 lines as at 10,000. `memory_MB` is the peak that the model and its loading add.
void BM_CollectorConfigParse(benchmark::State& state)
{
    const ConfigFile& file = fileOf(state.range(0));
    FieldCollector collector;
    const SystemMetadata system;
    auto* config = QVConfigFileParser::instance();
    config->destroy();
    malloc_trim(0);
    const double before = memoryMB("VmRSS");
    resetPeakMemory();
    for (auto _ : state) {
        if (config->parse({file.path()}, {&collector}, system) != 0) std::abort();
        state.PauseTiming();
        config->destroy();
        malloc_trim(0);    // the next load starts as in a fresh process
        state.ResumeTiming();
    }
    state.counters["memory_MB"] = memoryMB("VmHWM") - before;
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_CollectorConfigParse)->Arg(10000)->Arg(LINES)->Arg(1000000)->Unit(benchmark::kMillisecond);

// A loaded configuration of 100,000 lines.
class Loaded {
public:
    Loaded()
    {
        if (config->parse({file.path()}, {&m_collector}, SystemMetadata()) != 0) std::abort();
    }
    ~Loaded() { config->destroy(); }
    Loaded(const Loaded&) = delete;
    Loaded& operator=(const Loaded&) = delete;

    const ConfigFile& file = fileOf(LINES);
    QVConfigFileParser* config = QVConfigFileParser::instance();

private:
    FieldCollector m_collector;
};

// The messages of one feature, through five levels of EXTEND.
void BM_CollectorConfigGetMessages(benchmark::State& state)
{
    const Loaded loaded;
    const std::string names = "FMS=" + loaded.file.platform();
    std::vector<InputMsg*> messages;
    for (auto _ : state) {
        messages.clear();
        loaded.config->getMessagesFor(messages, names, "FEATURE30", {"POLL"}, CollectionType::NORMAL);
        benchmark::DoNotOptimize(messages.data());
    }
    if (messages.size() != 5) std::abort();
}
BENCHMARK(BM_CollectorConfigGetMessages)->Unit(benchmark::kMicrosecond);

// Which of 200 platforms a processor is.
void BM_CollectorConfigGetPlatformName(benchmark::State& state)
{
    const Loaded loaded;
    const std::pair<std::string, std::string> specifier = {"FMS", loaded.file.processor()};
    std::string name;
    for (auto _ : state) {
        loaded.config->getPlatformName(name, specifier);
        benchmark::DoNotOptimize(name.data());
    }
    if (name != loaded.file.platform()) std::abort();
}
BENCHMARK(BM_CollectorConfigGetPlatformName)->Unit(benchmark::kMicrosecond);

}    // namespace
