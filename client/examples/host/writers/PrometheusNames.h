#pragma once

#include <string>

namespace host {

// The names by which an engine that reads the Prometheus text format finds the host's metrics: small letters with "_",
// base units, "quorvane_" in front.

struct BaseUnit {
    std::string name;     // "joules"; empty: none
    double factor = 1;    // a value in the unit asked for, times this
};

// "mJ" is 0.001 joules, "%" is 0.01 of a ratio. A unit that is not known stays, made a word.
BaseUnit baseUnitOf(const std::string& unit);

// "CPU load" is "quorvane_cpu_load".
std::string familyStem(const std::string& metric);

// The stem with its unit, once, and what marks a counter. A gauge never ends as only other kinds may.
std::string gaugeName(const std::string& stem, const std::string& unit);
std::string counterName(const std::string& stem, const std::string& unit);

}    // namespace host
