#pragma once

#include "metrics/Metric.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// A second, naive account of a metric: keeps all samples, and counts every figure of every table anew from them, in
// whole numbers. Entities, descriptors and values are numbers here, in the order of their ids or sizes; -1 is none.
namespace recount {

using Kind = pwr::Metric::MetricType;

// What a cell must hold: a text, or a figure with `digits` behind the point, a quotient of whole numbers (infinite, or
// no number, when the divisor is 0) or a sum of some. Its `size` is the sum of the addends' magnitudes, which the
// figure falls short of where they have different signs: the library's doubles may be as many roundings of it away as
// they take `steps`.
struct Cell {
    std::string text;
    std::optional<long double> figure;
    long double size = 0;
    int digits = 2;
    std::size_t steps = 4;
};

using Row = std::vector<Cell>;

struct Push {
    std::string title;
    std::optional<Row> cells;    // none: the header
};

struct Sample {
    std::uint64_t timestamp;
    int entity;
    int descriptor;
    std::int64_t value;        // which of Scenario::values; ticks in a residency
    std::uint64_t duration;    // as given; then as the metric works it out
    std::size_t point = 0;     // number of the data point that it went out with
};

using Samples = std::vector<Sample>;

struct Value {
    std::string text;
    std::int64_t halves = 0;    // of a number
    std::string eventName = "";
    bool isHandle = false;
};

// One metric with all that is set up before its first sample.
struct Scenario {
    Kind kind = Kind::SampledValue;
    std::int64_t clockMHz = 1;
    std::uint64_t start = 0;
    std::string units;             // " (bytes)"; empty: no quantity
    std::int64_t perSecond = 0;    // a rate is so many millionths of the amount; 0: no rate form
    bool hasValueGroup = false;
    bool hidesEntities = false;

    struct Name {
        std::string name, qualified;
    };
    std::vector<Name> entities;
    std::vector<int> entitiesInTable;    // numbers in the order of a table's columns
    std::vector<std::string> descriptors;
    std::vector<Value> values;    // ascending
    bool areNumbers = true;
    std::vector<int> finiteSet;
    std::vector<std::pair<int, int>> combinations;

    struct Table {
        std::string type;
        bool isTransposed = false;
        bool suppressesTotal = false;
        bool isHidden = false;
    };
    std::vector<Table> configured;
};

template <typename T>
const T& at(const std::vector<T>& items, std::int64_t index)
{
    return items[static_cast<std::size_t>(index)];
}

const std::vector<std::string>& tableTypes(Kind kind);

// The timing rules.
class Timing {
public:
    explicit Timing(const Scenario& scenario) : m_scenario(scenario) {}
    bool take(Sample sample);
    void flush();
    std::uint64_t sinceLastPoint(int entity, std::uint64_t timestamp) const;

    Samples pushed;

private:
    void push_i(Samples samples);

    const Scenario& m_scenario;
    std::map<std::pair<int, int>, std::uint64_t> m_previous;
    std::map<int, std::uint64_t> m_lastPoint;
    Samples m_buffer;    // of one timestamp
    std::size_t m_points = 0;
};

// The table pushes of a finalize(), in their order.
std::vector<Push> recount(const Scenario& scenario, const Samples& samples);

}    // namespace recount
