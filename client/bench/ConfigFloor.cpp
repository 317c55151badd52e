#include "ConfigFloor.h"

#include <benchmark/benchmark.h>

#include <array>
#include <fstream>
#include <random>

namespace bench {

ConfigPath::ConfigPath()
{
    const std::string name = "quorvane_bench_" + std::to_string(std::random_device{}()) + ".conf";
    m_path = (std::filesystem::temp_directory_path() / name).string();
}

std::int64_t splitLines(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::string line;
    std::int64_t count = 0;
    for (; std::getline(in, line); ++count) {
        std::array<std::string, 6> fields;
        std::size_t begin = 0;
        for (std::size_t i = 0; i < 5; ++i) {
            const std::size_t end = line.find(i < 4 ? '_' : '=', begin);
            fields[i] = line.substr(begin, end - begin);
            begin = end + 1;
        }
        fields[5] = line.substr(begin);
        benchmark::DoNotOptimize(fields.data());
        benchmark::ClobberMemory();
    }
    return count;
}

}    // namespace bench
