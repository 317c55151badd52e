#include "writers/Scale.h"
#include "writers/Svg.h"
#include "writers/Text.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <numeric>

namespace host {

namespace {

// Time in the unit that suits the span.
struct TimeUnit {
    const char* name;
    double ns;
};

TimeUnit timeUnitFor(double spanNs)
{
    if (spanNs >= 3 * 3600e9) return {"hours", 3600e9};
    if (spanNs >= 5 * 60e9) return {"minutes", 60e9};
    if (spanNs >= 1e9) return {"seconds", 1e9};
    return spanNs >= 1e6 ? TimeUnit{"milliseconds", 1e6} : TimeUnit{"microseconds", 1e3};
}

double endOf(const ThinnedSeries& series)
{
    return series.getPieces().empty() ? 0 : series.timeOf(series.getPieces().back());
}

double beginOf(const ThinnedSeries& series)
{
    return series.getPieces().empty() ? 0 : series.timeOf(series.getPieces().front());
}

// What a chart over time covers.
struct Frame {
    Scale time;
    Scale value;
    TimeUnit unit;
};

Scale timeScale(double begin, double end, const TimeUnit& unit, double from, double to)
{
    const double shown = begin < end * 0.1 ? 0 : begin;    // the start of the run, where it is near
    return {shown / unit.ns, std::max(end, shown + 1) / unit.ns, from, to, false};
}

void appendAxes(std::string& out, const Frame& frame, const std::string& unit)
{
    for (const double mark : frame.value.getMarks()) {
        const double y = frame.value.at(mark);
        out += "<path class=\"grid\" d=\"";
        appendPlace(out, 'M', {LEFT, y});
        appendPlace(out, 'L', {RIGHT, y});
        out += "\"/>";
        appendLabel(out, {LEFT - 8, y + 4}, "end", frame.value.text(mark));
    }
    for (const double mark : frame.time.getMarks())
        appendLabel(out, {frame.time.at(mark), BOTTOM + 20}, "middle", frame.time.text(mark));
    appendLabel(out, {(LEFT + RIGHT) / 2, BOTTOM + 38}, "middle dim", frame.unit.name);
    if (!unit.empty()) appendLabel(out, {4, TOP - 18}, "dim", unit);
}

// From which the page's script tells the value below the pointer.
void appendReadout(std::string& out, const Frame& frame, const std::string& unit)
{
    const auto append = [&out](const char* name, double value) {
        out += name;
        appendNumber(out, value);
        out += '"';
    };
    append(" data-x0=\"", frame.time.getLow());
    append(" data-x1=\"", frame.time.getHigh());
    append(" data-y0=\"", frame.value.getLow());
    append(" data-y1=\"", frame.value.getHigh());
    out += " data-time=\"";
    out += frame.unit.name;
    out += "\" data-plot=\"";
    for (const double edge : {LEFT, RIGHT, TOP, BOTTOM}) {
        appendNumber(out, edge);
        out += ' ';
    }
    out += "\" data-unit=\"";
    appendHtml(out, unit);
    out += '"';
}

void appendBand(std::string& out, const ThinnedSeries& series, const Frame& frame, const std::string& colour)
{
    out += "<path class=\"band " + colour + "\" d=\"";
    char command = 'M';
    const auto& pieces = series.getPieces();
    for (const ThinnedSeries::Piece& piece : pieces) {
        appendPlace(out, command, {frame.time.at(series.timeOf(piece) / frame.unit.ns), frame.value.at(piece.max)});
        command = 'L';
    }
    for (auto piece = pieces.rbegin(); piece != pieces.rend(); ++piece)
        appendPlace(out, command, {frame.time.at(series.timeOf(*piece) / frame.unit.ns), frame.value.at(piece->min)});
    out += "Z\"/>";
}

void appendStroke(std::string& out, const ThinnedSeries& series, const Frame& frame, const std::string& colour,
                  const std::string& name)
{
    out += "<path class=\"stroke " + colour + "\" data-name=\"";
    appendHtml(out, name);
    out += "\" d=\"";
    char command = 'M';
    for (const ThinnedSeries::Piece& piece : series.getPieces()) {
        appendPlace(out, command, {frame.time.at(series.timeOf(piece) / frame.unit.ns), frame.value.at(piece.mean())});
        command = 'L';
    }
    out += "h0\"/>";    // a single point shows too
}

void appendEnd(std::string& out, const ChartLine& line, const Frame& frame, bool isMax, const ChartHead& head,
               const std::string& colour)
{
    const auto& pieces = line.series->getPieces();
    const auto less = [isMax](const ThinnedSeries::Piece& a, const ThinnedSeries::Piece& b) {
        return isMax ? a.max < b.max : a.min > b.min;
    };
    const auto piece = std::max_element(pieces.begin(), pieces.end(), less);
    if (piece == pieces.end()) return;
    const double value = isMax ? piece->max : piece->min;
    const Place place{frame.time.at(line.series->timeOf(*piece) / frame.unit.ns), frame.value.at(value)};
    out += "<circle class=\"dot " + colour + "\" r=\"3.5\"";
    appendAttribute(out, "cx", place.x);
    appendAttribute(out, "cy", place.y);
    out += '>';
    appendTip(out, line.name + ": " + (isMax ? "maximum " : "minimum ") + withUnit(value, head.unit));
    out += "</circle>";
}

Frame frameOf(const std::vector<ChartLine>& lines, const std::string& unit, double left, double right, double top,
              double bottom)
{
    double begin = -1;
    double end = 0;
    double low = lines.empty() ? 0 : lines.front().min;
    double high = lines.empty() ? 1 : lines.front().max;
    for (const ChartLine& line : lines) {
        begin = begin < 0 ? beginOf(*line.series) : std::min(begin, beginOf(*line.series));
        end = std::max(end, endOf(*line.series));
        low = std::min(low, line.min);
        high = std::max(high, line.max);
    }
    // Where zero is near it shows; percentages show all that they can be.
    if (low > 0 && low < high / 2) low = 0;
    if (unit == "%" && low >= 0 && high <= 100) {
        low = 0;
        high = 100;
    }
    const TimeUnit time = timeUnitFor(end);
    return {timeScale(std::max(begin, 0.0), end, time, left, right), Scale(low, high, bottom, top, true), time};
}

std::string rangeText(const ChartLine& line, const std::string& unit)
{
    return rounded(line.min) + " \xE2\x80\xA6 " + rounded(line.max) + ", avg " + withUnit(line.mean, unit);
}

// The amounts of each state at each moment, in the pieces of the coarsest series.
class StackedAmounts {
public:
    explicit StackedAmounts(std::vector<ThinnedSeries> series)
    {
        for (const ThinnedSeries& one : series)
            m_shift = std::max(m_shift, one.getShift());
        for (std::size_t i = 0; i < series.size(); ++i) {
            series[i].coarsen(m_shift);
            for (const ThinnedSeries::Piece& piece : series[i].getPieces()) {
                std::vector<double>& amounts = m_amounts[piece.index];
                amounts.resize(series.size());
                amounts[i] = piece.sum;
            }
        }
    }

    double beginNs() const { return m_amounts.empty() ? 0 : timeOf_i(m_amounts.begin()->first); }
    double endNs() const { return m_amounts.empty() ? 0 : timeOf_i(m_amounts.rbegin()->first); }

    // The upper edge of the first `count` states: in steps, since an amount speaks of the time before its moment.
    std::vector<Place> edge(std::size_t count, const Frame& frame) const
    {
        std::vector<Place> places;
        double from = frame.time.at(frame.time.getLow());
        for (const auto& [index, amounts] : m_amounts) {
            const auto end = amounts.begin() + static_cast<std::ptrdiff_t>(count);
            const double sum = std::accumulate(amounts.begin(), amounts.end(), 0.0);
            const double part = std::accumulate(amounts.begin(), end, 0.0);
            const double to = frame.time.at(timeOf_i(index) / frame.unit.ns);
            const double y = frame.value.at(sum > 0 ? 100 * part / sum : 0);
            places.push_back({from, y});
            places.push_back({to, y});
            from = to;
        }
        return places;
    }

private:
    double timeOf_i(std::uint64_t index) const
    {
        return std::ldexp(static_cast<double>(index) + 0.5, static_cast<int>(m_shift));
    }

    unsigned int m_shift = 0;
    std::map<std::uint64_t, std::vector<double>> m_amounts;    // by the piece's index
};

void appendArea(std::string& out, std::vector<Place> upper, const std::vector<Place>& lower, const std::string& colour,
                const std::string& name)
{
    upper.insert(upper.end(), lower.rbegin(), lower.rend());
    out += "<path class=\"fill " + colour + "\" d=\"";
    char command = 'M';
    for (const Place& place : upper) {
        appendPlace(out, command, place);
        command = 'L';
    }
    out += "Z\">";
    appendTip(out, name);
    out += "</path>";
}

}    // namespace

void appendLineChart(std::string& out, const ChartHead& head, const std::vector<ChartLine>& lines)
{
    const Frame frame = frameOf(lines, head.unit, LEFT, RIGHT, TOP, BOTTOM);
    beginChart(out, head, "line", PLOT_HEIGHT);
    appendReadout(out, frame, head.unit);
    out += '>';
    appendAxes(out, frame, head.unit);
    std::vector<LegendItem> items;
    for (std::size_t i = 0; i < lines.size(); ++i)
        appendBand(out, *lines[i].series, frame, colourClass(i));
    for (std::size_t i = 0; i < lines.size(); ++i) {
        appendStroke(out, *lines[i].series, frame, colourClass(i), lines[i].name);
        items.push_back({lines[i].name, rangeText(lines[i], head.unit)});
    }
    for (std::size_t i = 0; i < lines.size(); ++i) {
        appendEnd(out, lines[i], frame, true, head, colourClass(i));
        appendEnd(out, lines[i], frame, false, head, colourClass(i));
    }
    out += "</svg></div>";
    appendLegend(out, items);
    out += "</figure>\n";
}

void appendSmallCharts(std::string& out, const ChartHead& head, const std::vector<ChartLine>& lines)
{
    constexpr std::size_t COLUMNS = 4;
    constexpr double CELL_HEIGHT = 84;
    constexpr double CELL_WIDTH = WIDTH / static_cast<double>(COLUMNS);
    constexpr std::size_t CHARACTERS = 29;    // that fit above one
    const std::size_t rows = (lines.size() + COLUMNS - 1) / COLUMNS;
    beginChart(out, head, "small", static_cast<double>(rows) * CELL_HEIGHT);
    out += '>';
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const double left = static_cast<double>(i % COLUMNS) * CELL_WIDTH;
        const double top = static_cast<double>(i / COLUMNS) * CELL_HEIGHT;
        const double right = left + CELL_WIDTH - 14;
        const Frame shared = frameOf(lines, head.unit, left, right, top + 22, top + CELL_HEIGHT - 12);
        out += "<g>";
        appendTip(out, lines[i].name + ": " + rangeText(lines[i], head.unit));
        appendBox(out, "field", {left, top + 20}, CELL_WIDTH - 14, CELL_HEIGHT - 30);
        out += "/>";
        appendBand(out, *lines[i].series, shared, "k0");
        appendStroke(out, *lines[i].series, shared, "k0", lines[i].name);
        const std::string most = withUnit(lines[i].max, head.unit);
        const std::size_t room = CHARACTERS - std::min(most.size(), CHARACTERS / 2);
        appendLabel(out, {left + 1, top + 14}, "name", shortened(lines[i].name, room));
        appendLabel(out, {right - 1, top + 14}, "end dim", most);
        out += "</g>";
    }
    out += "</svg></div></figure>\n";
}

void appendShareArea(std::string& out, const ChartHead& head, const std::vector<std::string>& states,
                     const std::vector<ThinnedSeries>& series)
{
    const StackedAmounts amounts(series);
    const TimeUnit unit = timeUnitFor(amounts.endNs());
    const Frame frame{timeScale(amounts.beginNs(), amounts.endNs(), unit, LEFT, RIGHT),
                      Scale(0, 100, BOTTOM, TOP, true), unit};
    beginChart(out, head, "area", PLOT_HEIGHT);
    out += '>';
    for (std::size_t i = 0; i < states.size(); ++i)
        appendArea(out, amounts.edge(i + 1, frame), amounts.edge(i, frame), colourClass(i), states[i]);
    appendAxes(out, frame, "%");
    out += "</svg></div></figure>\n";
}

}    // namespace host
