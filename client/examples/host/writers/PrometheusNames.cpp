#include "writers/PrometheusNames.h"

#include "writers/Text.h"

#include <cstddef>

namespace host {

namespace {

constexpr std::size_t LONGEST_STEM = 120;

const struct {
    const char* unit;
    const char* base;
    double factor;
} UNITS[] = {
    {"%", "ratio", 0.01},
    {"Hz", "hertz", 1},
    {"kHz", "hertz", 1e3},
    {"MHz", "hertz", 1e6},
    {"GHz", "hertz", 1e9},
    {"s", "seconds", 1},
    {"sec", "seconds", 1},
    {"ms", "seconds", 1e-3},
    {"msec", "seconds", 1e-3},
    {"us", "seconds", 1e-6},
    {"ns", "seconds", 1e-9},
    {"bytes", "bytes", 1},
    {"B", "bytes", 1},
    {"KB", "bytes", 1e3},
    {"MB", "bytes", 1e6},
    {"GB", "bytes", 1e9},
    {"MB/s", "bytes_per_second", 1e6},
    {"mW", "watts", 1e-3},
    {"W", "watts", 1},
    {"uJ", "joules", 1e-6},
    {"mJ", "joules", 1e-3},
    {"J", "joules", 1},
    {"Ops/sec", "operations_per_second", 1},
    {"OpsCount", "operations", 1},
    {"oC", "celsius", 1},
    {"mV", "volts", 1e-3},
    {"V", "volts", 1},
    {"mA", "amperes", 1e-3},
    {"A", "amperes", 1},
    {"RPM", "revolutions_per_minute", 1},
    {"rpm", "revolutions_per_minute", 1},
};

// A word with single "_" between its parts, none at its ends.
std::string snakeCase(const std::string& text)
{
    std::string word;
    for (const char c : text) {
        if (c != '_' || (!word.empty() && word.back() != '_')) word += c;
    }
    if (word.ends_with('_')) word.pop_back();
    return word;
}

std::string withUnit(const std::string& stem, const std::string& unit)
{
    return unit.empty() || stem.ends_with("_" + unit) ? stem : stem + "_" + unit;
}

}    // namespace

BaseUnit baseUnitOf(const std::string& unit)
{
    for (const auto& row : UNITS) {
        if (unit == row.unit) return {row.base, row.factor};
    }
    return {unit.empty() ? "" : snakeCase(plainWord(unit, '_', LONGEST_STEM)), 1};
}

std::string familyStem(const std::string& metric)
{
    return snakeCase("quorvane_" + plainWord(metric, '_', LONGEST_STEM));
}

std::string gaugeName(const std::string& stem, const std::string& unit)
{
    const std::string name = withUnit(stem, unit);
    for (const char* end : {"_total", "_count", "_sum", "_bucket", "_info"}) {
        if (name.ends_with(end)) return name + "_value";
    }
    return name;
}

std::string counterName(const std::string& stem, const std::string& unit)
{
    const std::string bare = stem.ends_with("_total") ? stem.substr(0, stem.size() - 6) : stem;
    return withUnit(bare, unit) + "_total";
}

}    // namespace host
