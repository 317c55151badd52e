#include "writers/Scale.h"
#include "writers/Svg.h"

#include <algorithm>
#include <numeric>

namespace host {

namespace {

constexpr double ROW = 26;
constexpr double NAME_WIDTH = 208;    // left of the bars
constexpr double CHARACTER = 7.6;     // a wide one
constexpr double LEAST_NAMED = 54;    // the width of a part that has room for its share

// Of the amounts; 1 where there is nothing.
double sumOf(const ChartShares& row)
{
    const double sum = std::accumulate(row.amounts.begin(), row.amounts.end(), 0.0);
    return sum > 0 ? sum : 1;
}

double heightOf(std::size_t rows)
{
    return static_cast<double>(rows) * ROW + 8;
}

void appendShareRow(std::string& out, const ChartShares& row, const std::vector<std::string>& states, double y)
{
    const double sum = sumOf(row);
    double x = NAME_WIDTH;
    out += "<g>";
    appendLabel(out, {NAME_WIDTH - 10, y + 16}, "end name", shortened(row.name));
    for (std::size_t i = 0; i < row.amounts.size(); ++i) {
        const double share = row.amounts[i] / sum;
        const double width = share * (RIGHT - NAME_WIDTH);
        if (share <= 0) continue;
        appendBox(out, "fill " + colourClass(i), {x, y}, width, ROW - 5);
        out += '>';
        appendTip(out, row.name + ", " + states[i] + ": " + percent(share));
        out += "</rect>";
        if (width > LEAST_NAMED) appendLabel(out, {x + width / 2, y + 15}, "middle inside", percent(share));
        x += width;
    }
    out += "</g>";
}

void appendBar(std::string& out, const ChartBar& bar, const Scale& scale, const std::string& unit, double y)
{
    const double from = scale.at(std::min(bar.value, 0.0));
    const double to = scale.at(std::max(bar.value, 0.0));
    out += "<g>";
    appendTip(out, bar.name + ": " + withUnit(bar.value, unit));
    appendLabel(out, {NAME_WIDTH - 10, y + 16}, "end name", shortened(bar.name));
    appendBox(out, "fill k0", {from, y}, std::max(to - from, 1.0), ROW - 6);
    out += " rx=\"2\"/>";
    if (bar.max > bar.min) {
        out += "<path class=\"whisker\" d=\"";
        appendPlace(out, 'M', {scale.at(bar.min), y + (ROW - 6) / 2});
        appendPlace(out, 'L', {scale.at(bar.max), y + (ROW - 6) / 2});
        out += "\"/>";
    }
    appendLabel(out, {scale.at(std::max({bar.max, bar.value, 0.0})) + 8, y + 15}, "value", withUnit(bar.value, unit));
    out += "</g>";
}

}    // namespace

void appendShareBars(std::string& out, const ChartHead& head, const std::vector<std::string>& states,
                     const std::vector<ChartShares>& rows, const ChartShares& total)
{
    beginChart(out, head, "shares", heightOf(rows.size()));
    out += '>';
    double y = 4;
    for (const ChartShares& row : rows) {
        appendShareRow(out, row, states, y);
        y += ROW;
    }
    out += "</svg></div>";
    std::vector<LegendItem> items;
    for (std::size_t i = 0; i < states.size(); ++i)
        items.push_back({states[i], percent(total.amounts[i] / sumOf(total))});
    appendLegend(out, items);
    out += "</figure>\n";
}

void appendBars(std::string& out, const ChartHead& head, const std::vector<ChartBar>& bars)
{
    double low = 0;
    double high = 0;
    std::size_t longest = 0;    // of the texts behind the bars
    for (const ChartBar& bar : bars) {
        low = std::min({low, bar.min, bar.value});
        high = std::max({high, bar.max, bar.value});
        longest = std::max(longest, withUnit(bar.value, head.unit).size());
    }
    const double room = std::min(8 + static_cast<double>(longest) * CHARACTER, (RIGHT - NAME_WIDTH) / 2);
    const Scale scale(low, high, NAME_WIDTH, RIGHT - room, false);
    beginChart(out, head, "bars", heightOf(bars.size()));
    out += '>';
    double y = 4;
    for (const ChartBar& bar : bars) {
        appendBar(out, bar, scale, head.unit, y);
        y += ROW;
    }
    out += "</svg></div></figure>\n";
}

}    // namespace host
