#include "ConfigFloor.h"

#include "config/OutputConfig.h"
#include "record/SystemMetadata.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>

using namespace pwr;

namespace {

constexpr std::int64_t LINES = 100000;

// A file of that many settings, eight for each table and four tables for each metric; removed at the end.
class ConfigFile : public bench::ConfigPath {
public:
    ConfigFile()
    {
        std::ofstream out(path(), std::ios::binary);
        for (std::int64_t i = 0; i < LINES; ++i) {
            writeLine_i(out, i);
        }
        if (!out.flush()) std::abort();
    }

private:
    static void writeLine_i(std::ostream& out, std::int64_t i)
    {
        static constexpr std::array<const char*, 8> keys = {
            "TABLE=YES",
            "TITLE=Core C-State Summary: Residency (Percentage and Time)",
            "TRANSPOSE=NO",
            "PRE-TABLE-TEXT=Residencies are those of the hardware.",
            "POST-TABLE-TEXT=C0 is what is left of the time.",
            "STATES=C0,C1,C6",
            "ATTRIBUTES=UNITS",
            "SUPPRESS-TOTAL=NO",
        };
        static constexpr std::array<const char*, 4> tables = {"SAMPLE-COUNT", "MIN-MAX-AVG", "RESIDENCY", "HISTOGRAM"};
        const std::int64_t table = i / 8;
        const std::int64_t metric = table / 4;
        out << "ALL_FEATURE-" << metric / 10 << "_METRIC-" << metric % 10 << '_'
            << tables[static_cast<std::size_t>(table % 4)] << '_' << keys[static_cast<std::size_t>(i % 8)] << '\n';
    }
};

// The floor: the same file, each line split into six texts.
void BM_OutputConfigFloor(benchmark::State& state)
{
    const ConfigFile file;
    for (auto _ : state) {
        if (bench::splitLines(file.path()) != LINES) std::abort();
    }
    state.SetItemsProcessed(state.iterations() * LINES);
}
BENCHMARK(BM_OutputConfigFloor)->Unit(benchmark::kMillisecond);

// Reading a line of output configuration and keeping what it says costs at most 4 times BM_OutputConfigFloor.
void BM_OutputConfigParse(benchmark::State& state)
{
    const ConfigFile file;
    const SystemMetadata system;
    auto* config = WriterInterfaceConfigFileParser::instance();
    for (auto _ : state) {
        if (config->parse({file.path()}, system) != 0) std::abort();
    }
    config->destroy();
    state.SetItemsProcessed(state.iterations() * LINES);
}
BENCHMARK(BM_OutputConfigParse)->Unit(benchmark::kMillisecond);

}    // namespace
