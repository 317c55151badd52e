#pragma once

#include "writers/ThinnedSeries.h"

#include <string>
#include <vector>

namespace host {

// Charts as inline SVG. Each operation appends one <figure class="chart">. Colours are numbers: the page's style gives
// them, for light, dark and paper. Names are plain texts; they are escaped here.

constexpr int COLOURS = 12;

struct ChartHead {
    std::string title;
    std::string note;    // small, below the title; may be empty
    std::string unit;    // may be empty
};

struct ChartLine {
    std::string name;
    const ThinnedSeries* series = nullptr;
    double min = 0;
    double mean = 0;
    double max = 0;
};

// Values over time: a line through the means, a band from minimum to maximum, and both ends marked.
void appendLineChart(std::string& out, const ChartHead& head, const std::vector<ChartLine>& lines);

// Many small ones on one scale, each with its name and range.
void appendSmallCharts(std::string& out, const ChartHead& head, const std::vector<ChartLine>& lines);

struct ChartShares {
    std::string name;
    std::vector<double> amounts;    // of each state
};

// A full bar for each row, divided by its amounts. `total` is the legend's.
void appendShareBars(std::string& out, const ChartHead& head, const std::vector<std::string>& states,
                     const std::vector<ChartShares>& rows, const ChartShares& total);

// The shares over time, stacked: the piece of each state is its amount there.
void appendShareArea(std::string& out, const ChartHead& head, const std::vector<std::string>& states,
                     const std::vector<ThinnedSeries>& series);

struct ChartBar {
    std::string name;
    double value = 0;
    double min = 0;    // where the range is not shown, both are the value
    double max = 0;
};

// In the order given.
void appendBars(std::string& out, const ChartHead& head, const std::vector<ChartBar>& bars);

// The names without the leading parts of their paths that all share.
std::vector<std::string> withoutSharedPath(std::vector<std::string> names);

// At most four significant digits.
void appendRounded(std::string& out, double value);

}    // namespace host
