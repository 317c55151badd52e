#include "writers/Picture.h"

#include "writers/Text.h"

#include "metrics/Metric.h"
#include "values/EntityHandle.h"
#include "values/Handles.h"
#include "values/Quantity.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

constexpr std::size_t MAX_LINES = 6;    // in one chart: more can't be told apart
constexpr std::size_t TOP = 10;
constexpr double MOST_TICKS = 1e200;    // sums of them are finite

}    // namespace

// Events are counted by the tables: a number for each value of a timeline would have no bound.
std::unique_ptr<Picture> Picture::make(const pwr::Metric& metric, const Reading& first)
{
    using Type = pwr::Metric::MetricType;
    const ValueInfo info = valueInfoOf(metric);
    const Type type = metric.getMetricType();
    if (type == Type::TracedEvent) return nullptr;
    if (type == Type::SampledResidency || !first.isNumber())
        return std::make_unique<SharePicture>(type == Type::SampledResidency);
    if (type != Type::SampledDelta) return std::make_unique<ValuePicture>(info.name, info.unit, false, 1);
    const pwr::Quantity* rate = nullptr;
    double factor = 1;
    if (metric.getQuantity() != nullptr && metric.getQuantity()->getRateConversion(rate, factor) == 0 &&
        rate != nullptr) {
        return std::make_unique<ValuePicture>(rate->toQuantityString(), rate->toUnitsString(), true, factor);
    }
    return std::make_unique<ValuePicture>(info.name + " rate", info.unit + "/s", true, 1);
}

ValuePicture::ValuePicture(const std::string& name, const std::string& unit, bool isRate, double factor)
    : m_name(name), m_unit(unit == "oC" ? "\xC2\xB0"
                                          "C"
                                        : unit),
      m_isRate(isRate), m_factor(factor)
{
    m_all.name = "all";
    m_all.isDrawn = true;
}

void ValuePicture::Line::add(std::uint64_t atNs, double value, double by)
{
    min = weight > 0 ? std::min(min, value) : value;
    max = weight > 0 ? std::max(max, value) : value;
    sum += value * by;
    weight += by;
    if (isDrawn) series.add(atNs, value, by);
}

ChartLine ValuePicture::Line::toChart(const std::string& shownName) const
{
    const double mean = ThinnedSeries::Piece{0, min, max, sum, weight}.mean();
    return {shownName, &series, min, mean, max};
}

void ValuePicture::take(const pwr::DataElement& element, const Reading& reading, std::uint64_t atNs,
                        std::uint64_t durationNs)
{
    const double seconds = static_cast<double>(durationNs) * 1e-9;
    if (m_isRate && seconds <= 0) return;
    const double value = m_isRate ? reading.real / seconds * m_factor : reading.real;
    if (!reading.isNumber() || !std::isfinite(value)) {
        ++m_leftOut;
        return;
    }
    Line& line = *m_bySeries.get(element, [&] {
        m_lines.push_back(std::make_unique<Line>());
        Line& made = *m_lines.back();
        made.name = qualifiedNameOf(element.getEntity());
        if (element.getDescriptor() != nullptr) made.name += " " + element.getDescriptor()->getName();
        made.isDrawn = m_lines.size() <= MAX_DRAWN;
        return &made;
    });
    const double weight = seconds > 0 ? seconds : 1e-9;
    line.add(atNs, value, weight);
    m_all.add(atNs, value, weight);
}

void ValuePicture::draw(std::string& out) const
{
    std::vector<std::string> names;
    for (const auto& line : m_lines)
        names.push_back(line->name);
    names = withoutSharedPath(names);
    std::vector<ChartLine> charts;
    for (std::size_t i = 0; i < m_lines.size(); ++i)
        charts.push_back(m_lines[i]->toChart(names[i]));
    if (charts.empty()) {
        if (m_leftOut > 0) out += "<p class=\"note\">" + noteOn_i(0) + "</p>\n";
        return;
    }
    drawLines_i(out, charts);
    if (charts.size() > 2) drawTopTen_i(out, charts);
}

void ValuePicture::drawLines_i(std::string& out, const std::vector<ChartLine>& lines) const
{
    const std::string title = m_name + " over time";
    if (lines.size() <= MAX_LINES) {
        appendLineChart(out, {title, noteOn_i(lines.size()), m_unit}, lines);
        return;
    }
    appendLineChart(out,
                    {title,
                     "The mean of all " + std::to_string(lines.size()) + ", from minimum to maximum." +
                         (m_leftOut > 0 ? " " + noteOn_i(lines.size()) : ""),
                     m_unit},
                    {m_all.toChart("all")});
    const std::size_t drawn = std::min(lines.size(), MAX_DRAWN);
    appendSmallCharts(out, {m_name + " of each", noteOn_i(drawn), m_unit},
                      {lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(drawn)});
}

std::string ValuePicture::noteOn_i(std::size_t drawn) const
{
    std::string note;
    if (drawn < m_lines.size()) {
        note = "The first " + std::to_string(drawn) + " of " + std::to_string(m_lines.size()) +
               " are drawn; the tables have all. ";
    }
    if (m_leftOut > 0) note += "Values that are no finite numbers are not drawn: " + std::to_string(m_leftOut) + ".";
    return note;
}

void ValuePicture::drawTopTen_i(std::string& out, std::vector<ChartLine> lines) const
{
    std::stable_sort(lines.begin(), lines.end(),
                     [](const ChartLine& a, const ChartLine& b) { return a.mean > b.mean; });
    lines.resize(std::min(lines.size(), TOP));
    std::vector<ChartBar> bars;
    for (const ChartLine& line : lines)
        bars.push_back({line.name, line.mean, line.min, line.max});
    const std::string title = m_lines.size() > TOP ? "Top ten by average" : "By average";
    appendBars(out, {title, "The thin line reaches from minimum to maximum.", m_unit}, bars);
}

void SharePicture::take(const pwr::DataElement& element, const Reading& reading, std::uint64_t atNs,
                        std::uint64_t durationNs)
{
    std::string state;
    double amount = static_cast<double>(durationNs);
    if (m_isResidency) {
        state = nameOf(element.getDescriptor());
        amount =
            std::isfinite(reading.real) ? std::clamp(reading.real, 0.0, MOST_TICKS) : 0;    // only shares are drawn
    } else {
        appendReading(state, reading);
    }
    const std::size_t index = stateOf_i(state.empty() ? "(no value)" : state);
    m_totals[index] += amount;
    m_series[index].add(atNs, amount, 1);
    ChartShares& row = rowOf_i(element.getEntity());
    row.amounts.resize(m_states.size());
    row.amounts[index] += amount;
}

std::size_t SharePicture::stateOf_i(const std::string& name)
{
    const auto found = m_stateIndexes.find(name);
    if (found != m_stateIndexes.end()) return found->second;
    if (m_states.size() == MAX_STATES) {
        m_states.back() = "all others";
        return MAX_STATES - 1;
    }
    m_stateIndexes.emplace(name, m_states.size());
    m_states.push_back(name);
    m_series.emplace_back();
    m_totals.push_back(0);
    return m_states.size() - 1;
}

// The row of all that are not drawn is kept apart, and left out in the end.
ChartShares& SharePicture::rowOf_i(const pwr::EntityHandle* entity)
{
    const auto [entry, isNew] = m_rowIndexes.try_emplace(entity, std::min(m_rowIndexes.size(), MAX_DRAWN));
    if (isNew && entry->second == m_rows.size()) m_rows.push_back({qualifiedNameOf(entity), {}});
    return m_rows[entry->second];
}

void SharePicture::draw(std::string& out) const
{
    std::vector<ChartShares> rows(m_rows.begin(),
                                  m_rows.begin() + static_cast<std::ptrdiff_t>(std::min(m_rows.size(), MAX_DRAWN)));
    std::vector<std::string> names;
    for (const ChartShares& row : rows)
        names.push_back(row.name);
    names = withoutSharedPath(names);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i].name = names[i];
        rows[i].amounts.resize(m_states.size());
    }
    if (rows.empty()) return;
    const std::string note = m_rowIndexes.size() > rows.size()
                                 ? "The first " + std::to_string(rows.size()) + " of " +
                                       std::to_string(m_rowIndexes.size()) + " are drawn; the tables have all."
                                 : "";
    appendShareBars(out, {"Share of the time", note, ""}, m_states, rows, {"", m_totals});
    appendShareArea(out, {"Shares over time, all together", "", ""}, m_states, m_series);
}

}    // namespace host
