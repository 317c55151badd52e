#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

// A second, naive account of a metric: keeps all samples, and counts every figure of every table anew from them, in
// whole numbers. Entities, descriptors and values are numbers here, in the order of their ids or sizes; -1 is none.
namespace recount {

// An exact fraction. The library's doubles may differ by as many roundings as it takes steps on the way; `size` is the
// sum of the addends' magnitudes, which the numerator falls short of where they have different signs.
struct Fraction {
    std::int64_t numerator = 0;
    std::int64_t denominator = 1;
    std::int64_t size = 0;
    int steps = 4;
};

// What a cell must hold: a text, or a figure (a sum of fractions) with `digits` behind the point.
struct Cell {
    std::string text;
    std::vector<Fraction> figure;
    int digits = 2;
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
    std::int64_t value;    // which of Scenario::values; ticks in a residency
    std::uint64_t given;
};

struct Element {
    int entity;
    int descriptor;
    std::int64_t value;
    std::uint64_t duration;
};

struct Point {
    std::uint64_t timestamp = 0;
    std::vector<Element> elements;
};

enum class Kind { DELTA, RESIDENCY, VALUE, TRANSITION, EVENT };

const std::vector<std::string>& tableTypes(Kind kind);

struct Value {
    std::string text;
    std::int64_t halves = 0;    // of a number
    std::string eventName;
    bool isHandle = false;
};

// One metric with all that is set up before its first sample.
struct Scenario {
    Kind kind = Kind::VALUE;
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

// The timing rules.
class Timing {
public:
    explicit Timing(const Scenario& scenario) : m_scenario(scenario) {}
    bool take(const Sample& sample);
    void flush();
    std::uint64_t sinceLastPoint(int entity, std::uint64_t timestamp) const;

    std::vector<Point> points;    // as they were pushed

private:
    const Scenario& m_scenario;
    std::map<std::pair<int, int>, std::uint64_t> m_previous;
    std::map<int, std::uint64_t> m_lastPoint;
    Point m_buffer;
};

// The table pushes of a finalize(), in their order.
std::vector<Push> recount(const Scenario& scenario, const std::vector<Point>& points);

}    // namespace recount
