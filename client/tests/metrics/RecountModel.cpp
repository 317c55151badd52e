#include "metrics/RecountModel.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <limits>
#include <numeric>
#include <set>

namespace recount {

namespace {

constexpr std::uint64_t RESET = std::numeric_limits<std::uint64_t>::max();

// Pairs without a descriptor come before all others.
using Key = std::tuple<bool, int, int>;
using Elements = std::vector<Element>;

Key keyOf(int entity, int descriptor)
{
    return {descriptor >= 0, entity, descriptor};
}

Cell text(const std::string& text)
{
    return {text, {}, 0};
}

Cell count(std::uint64_t number)
{
    return text(std::to_string(number));
}

Cell ratio(std::int64_t numerator, std::int64_t denominator, int digits = 2)
{
    return {"", {{numerator, denominator, std::abs(numerator)}}, digits};
}

Cell percentage(std::int64_t part, std::int64_t whole, int digits = 2)
{
    return ratio(100 * part, whole, digits);
}

std::int64_t ticksOf(const Elements& elements)
{
    std::int64_t ticks = 0;
    for (const Element& element : elements)
        ticks += static_cast<std::int64_t>(element.duration);
    return ticks;
}

template <typename T>
const T& at(const std::vector<T>& items, std::int64_t index)
{
    return items[static_cast<std::size_t>(index)];
}

template <typename T>
void addOnce(std::vector<T>& items, const T& item)
{
    if (std::count(items.begin(), items.end(), item) == 0) items.push_back(item);
}

// In the order of their numbers.
const std::map<Kind, std::vector<std::string>> TABLE_TYPES = {
    {Kind::DELTA, {"SAMPLE-COUNT", "AVERAGE-RATE-TOTAL", "TOTAL-DELTA"}},
    {Kind::RESIDENCY, {"SAMPLE-COUNT", "RESIDENCY-PERCENTAGE", "RESIDENCY-MILLISECOND", "RESIDENCY-COMBINED"}},
    {Kind::VALUE,
     {"SAMPLE-COUNT", "MIN-MAX-AVG", "NUMBER-OF-OCCURENCES", "RELATIVE-FREQUENCY-PERCENTAGE", "MIN-MAX",
      "APPROXIMATED-RESIDENCY"}},
    {Kind::TRANSITION, {"RESIDENCY-PERCENTAGE", "RESIDENCY-MILLISECOND", "TRANSITION-COUNTS", "RESIDENCY-COMBINED"}},
    {Kind::EVENT, {"SAMPLE-COUNT", "EVENT-NAME-COUNTS", "TOP-TEN-EVENT"}},
};

const char* residencyTitle(const std::string& type)
{
    if (type == "RESIDENCY-PERCENTAGE") return "M Summary: Residency (Percentage)";
    return type == "RESIDENCY-MILLISECOND" ? "M Summary: Residency (Time)"
                                           : "M Summary: Residency (Percentage and Time)";
}

// True: the percentage.
std::vector<bool> residencyFigures(const std::string& type)
{
    if (type == "RESIDENCY-COMBINED") return {true, false};
    return {type == "RESIDENCY-PERCENTAGE"};
}

class Recount {
public:
    Recount(const Scenario& scenario, const std::vector<Point>& points)
        : m_scenario(scenario), m_points(points), m_clockMHz(points.empty() ? 0 : scenario.clockMHz)
    {
        for (const Point& point : points) {
            for (const Element& element : point.elements) {
                m_pairs[keyOf(element.entity, element.descriptor)].push_back(element);
                m_entities.insert(element.entity);
                if (element.descriptor >= 0) m_descriptors.insert(element.descriptor);
            }
        }
        m_sampledDescriptors = m_descriptors.size();
        for (const Request& request : chosen_i())
            makeTable_i(request);
    }

    std::vector<Push> pushes;

private:
    using Request = Scenario::Table;
    // The cell of an entity and an item (a value or a state), and of which figure of several.
    using Figure = std::function<Cell(int entity, int item, bool isPercentage)>;

    // Those that the configuration names, in its order, and then the others.
    std::vector<Scenario::Table> chosen_i() const
    {
        std::vector<Request> chosen = m_scenario.configured;
        const auto find = [&](const std::string& type) {
            return std::find_if(chosen.begin(), chosen.end(), [&](const Request& table) { return table.type == type; });
        };
        for (const std::string& type : tableTypes(m_scenario.kind)) {
            if (find(type) == chosen.end()) chosen.push_back({type});
        }
        if (m_scenario.kind == Kind::DELTA) {
            const auto rate = find("AVERAGE-RATE-TOTAL");
            const auto total = find("TOTAL-DELTA");
            if (rate->isHidden || m_scenario.perSecond != 0) {
                total->isHidden = true;
            } else if (total->isHidden) {
                *rate = {"TOTAL-DELTA"};
            } else {
                rate->isHidden = true;
            }
        }
        chosen.erase(std::remove_if(chosen.begin(), chosen.end(), [](const Request& table) { return table.isHidden; }),
                     chosen.end());
        return chosen;
    }

    void makeTable_i(const Request& request)
    {
        const std::string& type = request.type;
        const bool isEvent = m_scenario.kind == Kind::EVENT;
        if (type == "SAMPLE-COUNT") return sampleCount_i(m_scenario.kind == Kind::VALUE, !isEvent, !isEvent);
        if (type == "MIN-MAX-AVG" || type == "MIN-MAX") return minMax_i(type == "MIN-MAX-AVG");
        if (type == "AVERAGE-RATE-TOTAL") return rates_i(request);
        if (type == "TOTAL-DELTA") return totals_i();
        if (type == "EVENT-NAME-COUNTS") return eventNames_i();
        if (type == "TOP-TEN-EVENT") return topTen_i();
        if (m_scenario.kind == Kind::VALUE) return valueTables_i(request);
        if (m_scenario.kind == Kind::RESIDENCY) return residency_i(request);
        transitions_i(request);
    }

    void addTable_i(const std::string& title, const std::vector<Row>& rows, bool hasHeader = true)
    {
        if (hasHeader) pushes.push_back({title, {}});
        for (const Row& row : rows)
            pushes.push_back({title, row});
    }

    // What all tables share.

    Elements elements_i(int entity, int descriptor, int value = -1) const
    {
        Elements elements;
        const auto found = m_pairs.find(keyOf(entity, descriptor));
        if (found == m_pairs.end()) return elements;
        std::copy_if(found->second.begin(), found->second.end(), std::back_inserter(elements),
                     [value](const Element& element) { return value < 0 || element.value == value; });
        return elements;
    }

    // The finite set and then the others as they came; without one, ascending.
    std::vector<int> valueList_i(int descriptor) const
    {
        std::vector<int> list = m_scenario.finiteSet;
        for (const Point& point : m_points) {
            for (const Element& element : point.elements) {
                if (element.descriptor == descriptor) addOnce(list, static_cast<int>(element.value));
            }
        }
        if (m_scenario.finiteSet.empty()) std::sort(list.begin(), list.end());
        return list;
    }

    std::vector<int> columns_i() const
    {
        std::vector<int> ordered;
        for (const int entity : m_scenario.entitiesInTable) {
            if (m_entities.count(entity) != 0) ordered.push_back(entity);
        }
        return ordered;
    }

    void addCombinations_i()
    {
        for (const auto& [entity, descriptor] : m_scenario.combinations) {
            m_entities.insert(entity);
            if (descriptor >= 0) m_descriptors.insert(descriptor);
        }
    }

    std::string forDescriptor_i(bool isNamed, int descriptor) const
    {
        return isNamed ? " for " + at(m_scenario.descriptors, descriptor) : "";
    }

    std::vector<Row> itemRows_i(const std::vector<int>& items, const std::vector<std::string>& texts,
                                const std::vector<int>& entities, const std::vector<bool>& figures,
                                const Figure& figure) const
    {
        std::vector<Row> rows;
        for (std::size_t i = 0; i < items.size(); ++i) {
            rows.push_back({text(texts[i])});
            for (const int entity : entities) {
                for (const bool isPercentage : figures)
                    rows.back().push_back(figure(entity, items[i], isPercentage));
            }
        }
        return rows;
    }

    std::vector<Row> entityRows_i(const std::vector<int>& items, const std::vector<int>& entities, bool areNamed,
                                  const std::vector<bool>& figures, const Figure& figure) const
    {
        std::vector<Row> rows;
        for (const int entity : entities) {
            rows.emplace_back();
            if (areNamed) rows.back().push_back(text(at(m_scenario.entities, entity).qualified));
            for (const bool isPercentage : figures) {
                for (const int item : items)
                    rows.back().push_back(figure(entity, item, isPercentage));
            }
        }
        return rows;
    }

    std::vector<std::string> valueTexts_i(const std::vector<int>& values) const
    {
        std::vector<std::string> texts;
        for (const int value : values)
            texts.push_back(at(m_scenario.values, value).text);
        return texts;
    }

    Row pair_i(int entity, int descriptor) const
    {
        Row row{text(entity >= 0 ? at(m_scenario.entities, entity).qualified : "Total")};
        if (m_sampledDescriptors != 0)
            row.push_back(text(descriptor >= 0 ? at(m_scenario.descriptors, descriptor) : ""));
        return row;
    }

    // Sample counts.

    void sampleCount_i(bool isSampled, bool showsIntervals, bool isPerEntity)
    {
        std::map<Key, std::vector<std::uint64_t>> timestamps;
        std::map<Key, std::uint64_t> firstDurations;
        std::map<Key, Row> rows;
        std::set<std::string> names;
        const auto addRow = [&](const Key& key, int entity, int descriptor) {
            if (isPerEntity && !names.insert(at(m_scenario.entities, entity).qualified).second) return;
            const Row row = pair_i(entity, descriptor);
            rows.emplace(key, isPerEntity ? Row{row.front()} : row);
        };
        for (const Point& point : m_points) {
            for (const Element& element : point.elements) {
                const Key key = keyOf(element.entity, isPerEntity ? -1 : element.descriptor);
                if (timestamps.count(key) == 0) addRow(key, element.entity, element.descriptor);
                firstDurations.emplace(key, element.duration);
                addOnce(timestamps[key], point.timestamp);
            }
        }
        for (const auto& [entity, descriptor] : m_scenario.combinations)
            addRow(keyOf(entity, descriptor), entity, descriptor);

        std::vector<Row> table;
        for (auto& [key, row] : rows) {
            row.push_back(count(timestamps[key].size()));
            const Row intervals = intervals_i(timestamps[key], firstDurations[key]);
            if (showsIntervals) row.insert(row.end(), intervals.begin(), intervals.end());
            table.push_back(row);
        }
        addTable_i(std::string("M Summary") + (isSampled ? " - Sampled" : "") + ": Total Samples Received", table);
    }

    Row intervals_i(const std::vector<std::uint64_t>& timestamps, std::uint64_t firstDuration) const
    {
        std::vector<std::int64_t> intervals;
        for (std::size_t i = 1; i < timestamps.size(); ++i)
            intervals.push_back(static_cast<std::int64_t>(timestamps[i] - timestamps[i - 1]));
        if (intervals.empty()) intervals.push_back(static_cast<std::int64_t>(firstDuration));
        const auto ms = [&](std::int64_t ticks, std::size_t of) {
            return ratio(ticks, m_clockMHz * 1000 * static_cast<std::int64_t>(of));
        };
        const auto extremes = std::minmax_element(intervals.begin(), intervals.end());
        const std::int64_t sum = std::accumulate(intervals.begin(), intervals.end(), std::int64_t{0});
        return {ms(*extremes.first, 1), ms(*extremes.second, 1), ms(sum, intervals.size())};
    }

    // Sampled values.

    std::int64_t halves_i(const Elements& elements) const
    {
        std::int64_t halves = 0;
        for (const Element& element : elements)
            halves += at(m_scenario.values, element.value).halves;
        return halves;
    }

    // Each sample's time in whole microseconds, halves going up.
    std::int64_t microseconds_i(const Elements& elements) const
    {
        std::int64_t sum = 0;
        for (const Element& element : elements)
            sum += (2 * static_cast<std::int64_t>(element.duration) + m_clockMHz) / (2 * m_clockMHz);
        return sum;
    }

    void minMax_i(bool withAverages)
    {
        if (!m_scenario.areNumbers) return;
        std::vector<Row> table;
        for (const auto& [key, elements] : m_pairs) {
            const auto byValue = [](const Element& a, const Element& b) { return a.value < b.value; };
            const auto extremes = std::minmax_element(elements.begin(), elements.end(), byValue);
            table.push_back(pair_i(elements.front().entity, elements.front().descriptor));
            table.back().push_back(text(at(m_scenario.values, extremes.first->value).text));
            table.back().push_back(text(at(m_scenario.values, extremes.second->value).text));
            if (!withAverages) continue;
            Fraction weighted{0, 2 * m_clockMHz * microseconds_i(elements), 0, 8 + static_cast<int>(elements.size())};
            for (const Element& element : elements) {
                const std::int64_t term = halves_i({element}) * static_cast<std::int64_t>(element.duration);
                weighted.numerator += term;
                weighted.size += std::abs(term);
            }
            table.back().push_back(ratio(halves_i(elements), 2 * static_cast<std::int64_t>(elements.size())));
            table.back().push_back({"", {weighted}, 2});
        }
        addTable_i(std::string("M Summary - Sampled: ") + (withAverages ? "Min/Max/Avg" : "Min/Max"), table);
    }

    void valueTables_i(const Request& request)
    {
        const bool isCount = request.type == "NUMBER-OF-OCCURENCES";
        const bool isTime = request.type == "APPROXIMATED-RESIDENCY";
        const std::string title = isCount  ? "M Summary - Sampled: Counts"
                                  : isTime ? "M Summary - Sampled: Residency (Percentage)"
                                           : "M Summary - Sampled: Sample Distribution";
        const int digits = isTime && request.isTransposed ? 1 : 2;
        std::set<int> descriptors = m_descriptors;
        if (descriptors.empty()) descriptors.insert(-1);
        for (const int descriptor : descriptors) {
            const Figure figure = [&](int entity, int value, bool) {
                const Elements all = elements_i(entity, descriptor);
                const Elements some = elements_i(entity, descriptor, value);
                if (isCount) return count(some.size());
                if (some.empty()) return ratio(0, 1, digits);
                if (isTime) return percentage(microseconds_i(some), microseconds_i(all), digits);
                return percentage(static_cast<std::int64_t>(some.size()), static_cast<std::int64_t>(all.size()),
                                  digits);
            };
            std::vector<int> entities;
            std::copy_if(m_entities.begin(), m_entities.end(), std::back_inserter(entities),
                         [&](int entity) { return !elements_i(entity, descriptor).empty(); });
            const std::vector<int> list = valueList_i(descriptor);
            const bool areNamed = !isTime || !m_scenario.hidesEntities;
            addTable_i(title + forDescriptor_i(m_descriptors.size() >= 2, descriptor) +
                           (m_scenario.hasValueGroup ? m_scenario.units : ""),
                       request.isTransposed ? entityRows_i(list, entities, areNamed, {true}, figure)
                                            : itemRows_i(list, valueTexts_i(list), entities, {true}, figure));
        }
    }

    // Sampled residencies.

    void residency_i(const Request& request)
    {
        std::vector<int> states;
        for (const auto& combination : m_scenario.combinations)
            addOnce(states, combination.second);
        for (const Point& point : m_points) {
            for (const Element& element : point.elements)
                addOnce(states, element.descriptor);
        }
        states.erase(std::remove(states.begin(), states.end(), -1), states.end());
        std::vector<std::string> texts;
        for (const int state : states)
            texts.push_back(at(m_scenario.descriptors, state));

        const Figure figure = [&](int entity, int state, bool isPercentage) {
            const Elements elements = elements_i(entity, state);
            std::int64_t ticks = 0;
            for (const Element& element : elements)
                ticks += element.value;
            if (elements.empty()) return ratio(0, 1);
            if (!isPercentage) return ratio(ticks, m_clockMHz * 1000);
            std::int64_t total = 0;
            for (const Point& point : m_points) {
                const auto first = std::find_if(point.elements.begin(), point.elements.end(),
                                                [&](const Element& element) { return element.entity == entity; });
                if (first != point.elements.end()) total += static_cast<std::int64_t>(first->duration);
            }
            return percentage(ticks, total);
        };
        // Entities of the combinations alone come too late for the columns of the first table, but not for rows.
        const std::vector<int> columns = columns_i();
        addCombinations_i();
        const std::vector<int> entities(m_entities.begin(), m_entities.end());
        const std::vector<bool> figures = residencyFigures(request.type);
        std::vector<Row> table = request.isTransposed ? entityRows_i(states, entities, true, figures, figure)
                                                      : itemRows_i(states, texts, columns, figures, figure);
        for (Row& row : table)
            row.resize(std::max(row.size(), 1 + figures.size() * (request.isTransposed ? states.size() : 1)));
        addTable_i(residencyTitle(request.type), table);
    }

    // Deltas.

    Cell total_i(const std::vector<Elements>& of) const
    {
        Cell cell;
        for (const Elements& elements : of)
            cell.figure.push_back(ratio(halves_i(elements), 2).figure.front());
        return cell;
    }

    Cell rate_i(const std::vector<Elements>& of) const
    {
        Cell cell;
        for (const Elements& elements : of) {
            const std::int64_t amount = halves_i(elements) * m_clockMHz * m_scenario.perSecond;
            cell.figure.push_back(ratio(amount, 2 * ticksOf(elements)).figure.front());
            cell.figure.back().steps = 6 + static_cast<int>(of.size());
        }
        return cell;
    }

    // A row for each pair, empty for those of the combinations alone, and one of the sums.
    std::vector<Row> withTotal_i(const std::function<Row(const std::vector<Elements>&)>& figures, bool hasTotal) const
    {
        std::map<Key, Elements> pairs = m_pairs;
        for (const auto& [entity, descriptor] : m_scenario.combinations)
            pairs.emplace(keyOf(entity, descriptor), Elements());
        std::vector<Row> table;
        std::vector<Elements> all;
        const auto addRow = [&](int entity, int descriptor, const std::vector<Elements>& of) {
            table.push_back(pair_i(entity, descriptor));
            const Row cells = figures(of);
            table.back().insert(table.back().end(), cells.begin(), cells.end());
        };
        for (const auto& [key, elements] : pairs) {
            addRow(std::get<1>(key), std::get<2>(key), {elements});
            if (elements.empty()) {
                table.back() = Row(table.back().size());
            } else {
                all.push_back(elements);
            }
        }
        if (hasTotal) addRow(-1, -1, all);
        return table;
    }

    void rates_i(const Request& request)
    {
        const std::string title = "M Summary: Average Rate and Total";
        const auto figures = [this](const std::vector<Elements>& of) { return Row{rate_i(of), total_i(of)}; };
        if (!request.isTransposed) return addTable_i(title, withTotal_i(figures, !request.suppressesTotal));
        const std::vector<int> states(m_descriptors.begin(), m_descriptors.end());
        std::vector<std::string> texts;
        for (const int state : states)
            texts.push_back(at(m_scenario.descriptors, state));
        const Figure figure = [&](int entity, int state, bool isRate) {
            const Elements elements = elements_i(entity, state);
            return elements.empty() ? Cell() : figures({elements})[isRate ? 0 : 1];
        };
        addTable_i(title, itemRows_i(states, texts, columns_i(), {true, false}, figure));
    }

    void totals_i()
    {
        const auto figures = [this](const std::vector<Elements>& of) { return Row{total_i(of)}; };
        addTable_i("M Summary: Total", withTotal_i(figures, true));
    }

    // Transitions. The tables are as many as descriptors have samples, but count off those of the combinations too.

    void transitions_i(const Request& request)
    {
        addCombinations_i();
        std::vector<int> tables(m_descriptors.begin(), m_descriptors.end());
        tables.resize(m_sampledDescriptors);
        if (tables.empty()) tables.push_back(-1);
        for (const int descriptor : tables)
            transitionTable_i(request, descriptor);
    }

    void transitionTable_i(const Request& request, int descriptor)
    {
        const std::string suffix = forDescriptor_i(descriptor >= 0, descriptor);
        const std::vector<int> list = valueList_i(descriptor);
        if (request.type == "TRANSITION-COUNTS") {
            const Figure entries = [&](int entity, int value, bool) {
                std::size_t sum = 0;
                for (const int each : value >= 0 ? std::vector<int>{value} : list)
                    sum += elements_i(entity, descriptor, each).size();
                return count(sum);
            };
            std::vector<int> rows = list;
            rows.push_back(-1);
            std::vector<std::string> texts = valueTexts_i(list);
            texts.push_back(m_scenario.values.front().isHandle ? "Total" : "");
            return addTable_i("M Summary: Entry Counts" + suffix,
                              itemRows_i(rows, texts, columns_i(), {true}, entries));
        }
        const Figure figure = [&](int entity, int value, bool isPercentage) {
            const Elements all = elements_i(entity, descriptor);
            if (all.empty()) return request.isTransposed ? Cell() : ratio(0, 1);
            const std::int64_t ticks = ticksOf(elements_i(entity, descriptor, value));
            return isPercentage ? percentage(ticks, ticksOf(all)) : ratio(ticks, m_clockMHz * 1000);
        };
        const std::vector<int> entities(m_entities.begin(), m_entities.end());
        const std::vector<bool> figures = residencyFigures(request.type);
        addTable_i(residencyTitle(request.type) + suffix,
                   request.isTransposed ? entityRows_i(list, entities, true, figures, figure)
                                        : itemRows_i(list, valueTexts_i(list), columns_i(), figures, figure));
    }

    // Events.

    void eventNames_i()
    {
        addCombinations_i();
        std::set<int> tables = m_descriptors;
        if (m_sampledDescriptors == 0) tables = {-1};
        for (const int descriptor : tables) {
            std::map<std::string, std::map<int, std::size_t>> counts;
            for (const auto& [key, elements] : m_pairs) {
                for (const Element& element : elements) {
                    if (element.descriptor == descriptor)
                        ++counts[at(m_scenario.values, element.value).eventName][element.entity];
                }
            }
            std::vector<Row> table;
            for (auto& [name, ofEntity] : counts) {
                table.push_back({text(name)});
                for (const int entity : columns_i())
                    table.back().push_back(count(ofEntity[entity]));
            }
            addTable_i("M Summary: Type Count" + forDescriptor_i(m_sampledDescriptors >= 2, descriptor), table);
        }
    }

    void topTen_i()
    {
        for (const auto& [key, elements] : m_pairs) {
            std::map<std::int64_t, std::uint64_t> counts;
            for (const Element& element : elements)
                ++counts[element.value];
            std::set<std::pair<std::uint64_t, std::int64_t>> ascending;
            for (const auto& [value, times] : counts)
                ascending.emplace(times, value);
            std::vector<Row> table;
            for (auto top = ascending.rbegin(); top != ascending.rend() && table.size() < 10; ++top)
                table.push_back({text(at(m_scenario.values, top->second).text), count(top->first)});
            std::string title = "M Summary: Top 10 Most-Frequent for ";
            title += at(m_scenario.entities, elements.front().entity).name;
            if (elements.front().descriptor >= 0) {
                title += " and " + at(m_scenario.descriptors, elements.front().descriptor);
            }
            addTable_i(title, table, false);
        }
    }

    const Scenario& m_scenario;
    const std::vector<Point>& m_points;
    const std::int64_t m_clockMHz;    // 0 without a point: never told
    std::map<Key, Elements> m_pairs;
    std::set<int> m_entities;       // of the samples; combinations join where a table lets them
    std::set<int> m_descriptors;    // likewise
    std::size_t m_sampledDescriptors;
};

}    // namespace

const std::vector<std::string>& tableTypes(Kind kind)
{
    return TABLE_TYPES.at(kind);
}

bool Timing::take(const Sample& sample)
{
    if (sample.timestamp == 0) return false;
    const bool isTraced = m_scenario.kind == Kind::TRANSITION || m_scenario.kind == Kind::EVENT;
    const std::uint64_t given = sample.given == RESET ? 0 : sample.given;
    std::uint64_t& previous = m_previous[{sample.entity, sample.descriptor}];
    const bool isFirst = previous == 0;
    if (isFirst) previous = m_lastPoint[sample.entity] = m_scenario.start;
    if (isFirst ? sample.timestamp < previous : sample.timestamp <= previous) return false;
    const std::uint64_t elapsed = sample.timestamp - previous;
    if (given > elapsed) return false;
    previous = sample.timestamp;

    Element element{sample.entity, sample.descriptor, sample.value, given != 0 ? given : elapsed};
    if (isTraced) {
        points.push_back({sample.timestamp, {element}});
        return true;
    }
    if (m_buffer.timestamp != sample.timestamp) flush();
    if (m_scenario.kind == Kind::RESIDENCY) {
        const std::uint64_t since = sinceLastPoint(sample.entity, sample.timestamp);
        element.duration = given != 0 ? std::min(given, since) : since;
    }
    if (sample.given == RESET) element.duration = 0;
    m_buffer.timestamp = sample.timestamp;
    m_buffer.elements.push_back(element);
    return true;
}

std::uint64_t Timing::sinceLastPoint(int entity, std::uint64_t timestamp) const
{
    const auto found = m_lastPoint.find(entity);
    return timestamp - (found != m_lastPoint.end() ? found->second : m_scenario.start);
}

// A residency point whose durations differ within an entity, or whose states fill more than its duration, is dropped.
void Timing::flush()
{
    bool isValid = !m_buffer.elements.empty();
    std::map<int, std::pair<std::uint64_t, std::uint64_t>> entities;
    for (const Element& element : m_buffer.elements) {
        if (m_scenario.kind != Kind::RESIDENCY) break;
        auto& [duration, sum] = entities.emplace(element.entity, std::make_pair(element.duration, 0)).first->second;
        isValid = duration == element.duration;
        if (!isValid) break;
        sum += static_cast<std::uint64_t>(element.value);
        m_lastPoint[element.entity] = m_buffer.timestamp;
    }
    for (const auto& entry : entities)
        isValid = isValid && entry.second.second <= entry.second.first;
    if (isValid) points.push_back(m_buffer);
    m_buffer.elements.clear();
}

std::vector<Push> recount(const Scenario& scenario, const std::vector<Point>& points)
{
    return Recount(scenario, points).pushes;
}

}    // namespace recount
