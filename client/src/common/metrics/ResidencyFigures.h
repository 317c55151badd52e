#pragma once

#include "runtime/Log.h"

#include <cstdint>
#include <string>
#include <vector>

namespace pwr {

// A figure that a residency table shows for a state of an entity.
enum class ResidencyFigure { PERCENT, MSEC };

// The figures of one table, in the order of its columns.
using ResidencyFigures = std::vector<ResidencyFigure>;

// None for a table that shows something else.
template <typename Summary>
ResidencyFigures residencyFigures(Summary summary)
{
    if (summary == Summary::RESIDENCY_PERCENTAGE) return {ResidencyFigure::PERCENT};
    if (summary == Summary::RESIDENCY_MILLISECOND) return {ResidencyFigure::MSEC};
    if (summary == Summary::RESIDENCY_COMBINED) return {ResidencyFigure::PERCENT, ResidencyFigure::MSEC};
    return {};
}

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

inline double percentage(double part, double whole)
{
    return part / whole * 100.0;
}

inline double residencyValue(ResidencyFigure figure, const Residency& residency, double clockMHz)
{
    if (figure == ResidencyFigure::PERCENT) return percentage(residency.ticks, residency.totalTicks);
    return residency.ticks / (clockMHz * 1000.0);
}

inline void tellResidency(std::uint64_t ticks, std::uint64_t totalTicks, double clockMHz)
{
    QV_LOG_INFO("INFO: timestamp freq=%lf residency=%llu, total duration=%llu\n", clockMHz,
                static_cast<unsigned long long>(ticks), static_cast<unsigned long long>(totalTicks));
}

}    // namespace pwr
