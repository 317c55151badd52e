#pragma once

#include <string>
#include <vector>

namespace pwr {

// A figure that a residency table shows for a state of an entity.
enum class ResidencyFigure { PERCENT, MSEC };

// The figures of one table, in the order of its columns.
using ResidencyFigures = std::vector<ResidencyFigure>;

// The time spent in a state, and in all states together.
struct Residency {
    double ticks;
    double totalTicks;
};

inline std::string residencyTitle(const std::string& base, const ResidencyFigures& figures)
{
    const char* kind = figures.front() == ResidencyFigure::PERCENT ? " (Percentage)" : " (Time)";
    return base + " Summary: Residency" + (figures.size() > 1 ? " (Percentage and Time)" : kind);
}

inline std::string residencyColumn(const std::string& name, ResidencyFigure figure)
{
    return name + (figure == ResidencyFigure::PERCENT ? " (%)" : " (msec)");
}

inline double residencyValue(ResidencyFigure figure, const Residency& residency, double clockMHz)
{
    if (figure == ResidencyFigure::PERCENT) return residency.ticks / residency.totalTicks * 100.0;
    return residency.ticks / (clockMHz * 1000.0);
}

}    // namespace pwr
