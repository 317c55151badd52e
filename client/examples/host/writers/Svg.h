#pragma once

#include "writers/Charts.h"

#include <cstddef>
#include <string>
#include <vector>

namespace host {

// The pieces that charts are drawn with. All operations append SVG to `out`; texts are escaped here.

// Units of the drawings, which the page stretches to its width.
constexpr double WIDTH = 960;
constexpr double LEFT = 80;    // room for the texts of marks
constexpr double RIGHT = 936;
constexpr double TOP = 30;
constexpr double BOTTOM = 236;
constexpr double PLOT_HEIGHT = 280;

// From left and top.
struct Place {
    double x;
    double y;
};

void appendCoordinate(std::string& out, double value);
void appendAttribute(std::string& out, const char* name, double value);
void appendPlace(std::string& out, char command, Place place);    // a step of a path
void appendLabel(std::string& out, Place place, const char* kind, const std::string& text);
void appendBox(std::string& out, const std::string& classes, Place corner, double width,
               double height);    // not closed
void appendTip(std::string& out, const std::string& text);

// A figure with its caption and the svg element up to its attributes; "</svg></div>" ends that.
void beginChart(std::string& out, const ChartHead& head, const char* kind, double height);

struct LegendItem {
    std::string name;
    std::string text;
};
void appendLegend(std::string& out, const std::vector<LegendItem>& items);

std::string colourClass(std::size_t index);
std::string shortened(const std::string& name, std::size_t mostCharacters = 26);    // the end of a name says most
std::string rounded(double value);
std::string withUnit(double value, const std::string& unit);
std::string percent(double share);

}    // namespace host
