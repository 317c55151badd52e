#include "metrics/RecountModel.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>
#include <set>
#include <tuple>

namespace recount {

namespace {

// Pairs without a descriptor come before all others.
using Key = std::tuple<bool, int, int>;

Key keyOf(int entity, int descriptor)
{
    return {descriptor >= 0, entity, descriptor};
}

Cell text(const std::string& text)
{
    return {text, {}, 0, 2, 4};
}

Cell count(std::uint64_t number)
{
    return text(std::to_string(number));
}

Cell ratio(std::int64_t numerator, std::int64_t denominator, int digits = 2)
{
    const long double figure = static_cast<long double>(numerator) / static_cast<long double>(denominator);
    return {"", figure, std::fabs(figure), digits, 4};
}

Cell percentage(std::int64_t part, std::int64_t whole, int digits = 2)
{
    return ratio(100 * part, whole, digits);
}

Cell sum(const std::vector<Cell>& cells, std::size_t steps)
{
    Cell all;
    all.steps = steps;
    for (const Cell& cell : cells) {
        all.figure = all.figure.value_or(0) + *cell.figure;
        all.size += cell.size;
    }
    return all;
}

std::int64_t ticksOf(const Samples& samples)
{
    std::int64_t ticks = 0;
    for (const Sample& sample : samples)
        ticks += static_cast<std::int64_t>(sample.duration);
    return ticks;
}

template <typename T>
void addOnce(std::vector<T>& items, const T& item)
{
    if (std::count(items.begin(), items.end(), item) == 0) items.push_back(item);
}

void append(Row& row, const Row& cells)
{
    row.insert(row.end(), cells.begin(), cells.end());
}

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
    Recount(const Scenario& scenario, const Samples& samples)
        : m_scenario(scenario), m_samples(samples), m_clockMHz(samples.empty() ? 0 : scenario.clockMHz)
    {
        for (const Sample& sample : samples) {
            m_pairs[keyOf(sample.entity, sample.descriptor)].push_back(sample);
            m_entities.insert(sample.entity);
            if (sample.descriptor >= 0) m_descriptors.insert(sample.descriptor);
        }
        m_sampledDescriptors = m_descriptors.size();
        for (const Value& value : scenario.values)
            m_valueTexts.push_back(value.text);
        for (const Request& request : chosen_i())
            makeTable_i(request);
    }

    std::vector<Push> pushes;

private:
    using Request = Scenario::Table;
    // The cell of an entity and an item (a value or a state), and of which figure of several.
    using Figure = std::function<Cell(int entity, int item, bool isPercentage)>;

    // Those that the configuration names, in its order, and then the others.
    std::vector<Request> chosen_i() const
    {
        std::vector<Request> chosen = m_scenario.configured;
        const auto find = [&](const std::string& type) {
            return std::find_if(chosen.begin(), chosen.end(), [&](const Request& table) { return table.type == type; });
        };
        for (const std::string& type : tableTypes(m_scenario.kind)) {
            if (find(type) == chosen.end()) chosen.push_back({type});
        }
        if (m_scenario.kind == Kind::SampledDelta) {
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
        const bool isEvent = m_scenario.kind == Kind::TracedEvent;
        const bool isValue = m_scenario.kind == Kind::SampledValue;
        if (type == "SAMPLE-COUNT") return sampleCount_i(isValue, !isEvent, !isEvent);
        if (type == "MIN-MAX-AVG" || type == "MIN-MAX") return minMax_i(type == "MIN-MAX-AVG");
        if (type == "AVERAGE-RATE-TOTAL") return rates_i(request);
        if (type == "TOTAL-DELTA") return addTable_i("M Summary: Total", withTotal_i(false, true));
        if (type == "EVENT-NAME-COUNTS") return eventNames_i();
        if (type == "TOP-TEN-EVENT") return topTen_i();
        if (isValue) return valueTables_i(request);
        if (m_scenario.kind == Kind::SampledResidency) return residency_i(request);
        transitions_i(request);
    }

    void addTable_i(const std::string& title, const std::vector<Row>& rows, bool hasHeader = true)
    {
        if (hasHeader) pushes.push_back({title, {}});
        for (const Row& row : rows)
            pushes.push_back({title, row});
    }

    // What all tables share.

    Samples samples_i(int entity, int descriptor, int value = -1) const
    {
        Samples samples;
        const auto found = m_pairs.find(keyOf(entity, descriptor));
        if (found == m_pairs.end()) return samples;
        std::copy_if(found->second.begin(), found->second.end(), std::back_inserter(samples),
                     [value](const Sample& sample) { return value < 0 || sample.value == value; });
        return samples;
    }

    // The finite set and then the others as they came; without one, ascending.
    std::vector<int> valueList_i(int descriptor) const
    {
        std::vector<int> list = m_scenario.finiteSet;
        for (const Sample& sample : m_samples) {
            if (sample.descriptor == descriptor) addOnce(list, static_cast<int>(sample.value));
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

    std::vector<int> entities_i() const { return {m_entities.begin(), m_entities.end()}; }

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

    // Rows are items and each entity has columns; or, transposed, rows are entities and each figure has its items.
    std::vector<Row> grid_i(bool isTransposed, const std::vector<int>& items, const std::vector<std::string>& names,
                            const std::vector<int>& entities, const std::vector<bool>& figures,
                            const Figure& figure) const
    {
        std::vector<Row> rows;
        for (const int entity : isTransposed ? entities : std::vector<int>()) {
            rows.push_back({text(at(m_scenario.entities, entity).qualified)});
            for (const bool isPercentage : figures) {
                for (const int item : items)
                    rows.back().push_back(figure(entity, item, isPercentage));
            }
        }
        for (const int item : isTransposed ? std::vector<int>() : items) {
            rows.push_back({text(at(names, item))});
            for (const int entity : entities) {
                for (const bool isPercentage : figures)
                    rows.back().push_back(figure(entity, item, isPercentage));
            }
        }
        return rows;
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
        for (const Sample& sample : m_samples) {
            const Key key = keyOf(sample.entity, isPerEntity ? -1 : sample.descriptor);
            if (timestamps.count(key) == 0) addRow(key, sample.entity, sample.descriptor);
            firstDurations.emplace(key, sample.duration);
            addOnce(timestamps[key], sample.timestamp);
        }
        for (const auto& [entity, descriptor] : m_scenario.combinations)
            addRow(keyOf(entity, descriptor), entity, descriptor);

        std::vector<Row> table;
        for (auto& [key, row] : rows) {
            row.push_back(count(timestamps[key].size()));
            if (showsIntervals) append(row, intervals_i(timestamps[key], firstDurations[key]));
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

    std::int64_t halves_i(const Samples& samples) const
    {
        std::int64_t halves = 0;
        for (const Sample& sample : samples)
            halves += at(m_scenario.values, sample.value).halves;
        return halves;
    }

    // Each sample's time in whole microseconds, halves going up.
    std::int64_t microseconds_i(const Samples& samples) const
    {
        std::int64_t sum = 0;
        for (const Sample& sample : samples)
            sum += (2 * static_cast<std::int64_t>(sample.duration) + m_clockMHz) / (2 * m_clockMHz);
        return sum;
    }

    Cell weightedAverage_i(const Samples& samples) const
    {
        const std::int64_t total = 2 * m_clockMHz * microseconds_i(samples);
        std::int64_t weighted = 0;
        std::int64_t size = 0;
        for (const Sample& sample : samples) {
            const std::int64_t term = halves_i({sample}) * static_cast<std::int64_t>(sample.duration);
            weighted += term;
            size += std::abs(term);
        }
        Cell average = ratio(weighted, total);
        average.size = *ratio(size, total).figure;
        average.steps = 8 + samples.size();
        return average;
    }

    void minMax_i(bool withAverages)
    {
        if (!m_scenario.areNumbers) return;
        std::vector<Row> table;
        for (const auto& [key, samples] : m_pairs) {
            const auto byValue = [](const Sample& a, const Sample& b) { return a.value < b.value; };
            const auto extremes = std::minmax_element(samples.begin(), samples.end(), byValue);
            Row row = pair_i(samples.front().entity, samples.front().descriptor);
            row.push_back(text(at(m_valueTexts, extremes.first->value)));
            row.push_back(text(at(m_valueTexts, extremes.second->value)));
            if (withAverages) {
                row.push_back(ratio(halves_i(samples), 2 * static_cast<std::int64_t>(samples.size())));
                row.push_back(weightedAverage_i(samples));
            }
            table.push_back(row);
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
                const Samples all = samples_i(entity, descriptor);
                const Samples some = samples_i(entity, descriptor, value);
                if (isCount) return count(some.size());
                if (some.empty()) return ratio(0, 1, digits);
                if (isTime) return percentage(microseconds_i(some), microseconds_i(all), digits);
                return percentage(static_cast<std::int64_t>(some.size()), static_cast<std::int64_t>(all.size()),
                                  digits);
            };
            std::vector<int> entities = entities_i();
            entities.erase(std::remove_if(entities.begin(), entities.end(),
                                          [&](int entity) { return samples_i(entity, descriptor).empty(); }),
                           entities.end());
            std::vector<Row> table =
                grid_i(request.isTransposed, valueList_i(descriptor), m_valueTexts, entities, {true}, figure);
            if (request.isTransposed && isTime && m_scenario.hidesEntities) {
                for (Row& row : table)
                    row.erase(row.begin());
            }
            addTable_i(title + forDescriptor_i(m_descriptors.size() >= 2, descriptor) +
                           (m_scenario.hasValueGroup ? m_scenario.units : ""),
                       table);
        }
    }

    // Sampled residencies.

    // An entity's time counts once for all states of a data point.
    std::int64_t totalTicks_i(int entity) const
    {
        std::map<std::size_t, std::uint64_t> durations;
        for (const Sample& sample : m_samples) {
            if (sample.entity == entity) durations.emplace(sample.point, sample.duration);
        }
        std::int64_t total = 0;
        for (const auto& point : durations)
            total += static_cast<std::int64_t>(point.second);
        return total;
    }

    void residency_i(const Request& request)
    {
        std::vector<int> states;
        for (const auto& combination : m_scenario.combinations) {
            if (combination.second >= 0) addOnce(states, combination.second);
        }
        for (const Sample& sample : m_samples)
            addOnce(states, sample.descriptor);

        const Figure figure = [&](int entity, int state, bool isPercentage) {
            const Samples samples = samples_i(entity, state);
            if (samples.empty()) return ratio(0, 1);
            std::int64_t ticks = 0;
            for (const Sample& sample : samples)
                ticks += sample.value;
            return isPercentage ? percentage(ticks, totalTicks_i(entity)) : ratio(ticks, m_clockMHz * 1000);
        };
        // Entities of the combinations alone come too late for the columns of the first table, but not for rows.
        const std::vector<int> columns = columns_i();
        addCombinations_i();
        const std::vector<bool> figures = residencyFigures(request.type);
        std::vector<Row> table = grid_i(request.isTransposed, states, m_scenario.descriptors,
                                        request.isTransposed ? entities_i() : columns, figures, figure);
        for (Row& row : table)
            row.resize(std::max(row.size(), 1 + figures.size() * (request.isTransposed ? states.size() : 1)));
        addTable_i(residencyTitle(request.type), table);
    }

    // Deltas.

    Cell total_i(const Samples& samples) const { return ratio(halves_i(samples), 2); }

    Cell rate_i(const Samples& samples) const
    {
        Cell rate = ratio(halves_i(samples) * m_clockMHz * m_scenario.perSecond, 2 * ticksOf(samples));
        rate.steps = 7;
        return rate;
    }

    // A row for each pair, empty for those of the combinations alone, and one of the sums.
    std::vector<Row> withTotal_i(bool hasRates, bool hasTotal) const
    {
        std::map<Key, Samples> pairs = m_pairs;
        for (const auto& [entity, descriptor] : m_scenario.combinations)
            pairs.emplace(keyOf(entity, descriptor), Samples());
        std::vector<Row> table;
        std::vector<Cell> rates;
        std::vector<Cell> totals;
        const auto addRow = [&](Row row, const Cell& rate, const Cell& total) {
            if (hasRates) row.push_back(rate);
            row.push_back(total);
            table.push_back(row);
        };
        for (const auto& [key, samples] : pairs) {
            if (samples.empty()) {
                addRow(Row(pair_i(-1, -1).size()), {}, {});
                continue;
            }
            rates.push_back(rate_i(samples));
            totals.push_back(total_i(samples));
            addRow(pair_i(std::get<1>(key), std::get<2>(key)), rates.back(), totals.back());
        }
        if (hasTotal) addRow(pair_i(-1, -1), sum(rates, 6 + rates.size()), sum(totals, 4));
        return table;
    }

    void rates_i(const Request& request)
    {
        const std::string title = "M Summary: Average Rate and Total";
        if (!request.isTransposed) return addTable_i(title, withTotal_i(true, !request.suppressesTotal));
        const Figure figure = [&](int entity, int state, bool isRate) {
            const Samples samples = samples_i(entity, state);
            if (samples.empty()) return Cell();
            return isRate ? rate_i(samples) : total_i(samples);
        };
        const std::vector<int> states(m_descriptors.begin(), m_descriptors.end());
        addTable_i(title, grid_i(false, states, m_scenario.descriptors, columns_i(), {true, false}, figure));
    }

    // Transitions. The tables are as many as descriptors have samples, but count off those of the combinations too.

    void transitions_i(const Request& request)
    {
        addCombinations_i();
        std::vector<int> tables(m_descriptors.begin(), m_descriptors.end());
        tables.resize(m_sampledDescriptors);
        if (tables.empty()) tables.push_back(-1);
        for (const int descriptor : tables) {
            if (request.type == "TRANSITION-COUNTS") {
                entryCounts_i(descriptor);
            } else {
                transitionTable_i(request, descriptor);
            }
        }
    }

    void entryCounts_i(int descriptor)
    {
        const Figure entries = [&](int entity, int value, bool) {
            return count(samples_i(entity, descriptor, value).size());
        };
        std::vector<Row> table = grid_i(false, valueList_i(descriptor), m_valueTexts, columns_i(), {true}, entries);
        table.push_back({text(m_scenario.values.front().isHandle ? "Total" : "")});
        for (const int entity : columns_i()) {
            std::size_t total = 0;
            for (const int value : valueList_i(descriptor))
                total += samples_i(entity, descriptor, value).size();
            table.back().push_back(count(total));
        }
        addTable_i("M Summary: Entry Counts" + forDescriptor_i(descriptor >= 0, descriptor), table);
    }

    void transitionTable_i(const Request& request, int descriptor)
    {
        const Figure figure = [&](int entity, int value, bool isPercentage) {
            const Samples all = samples_i(entity, descriptor);
            if (all.empty()) return request.isTransposed ? Cell() : ratio(0, 1);
            const std::int64_t ticks = ticksOf(samples_i(entity, descriptor, value));
            return isPercentage ? percentage(ticks, ticksOf(all)) : ratio(ticks, m_clockMHz * 1000);
        };
        addTable_i(residencyTitle(request.type) + forDescriptor_i(descriptor >= 0, descriptor),
                   grid_i(request.isTransposed, valueList_i(descriptor), m_valueTexts,
                          request.isTransposed ? entities_i() : columns_i(), residencyFigures(request.type), figure));
    }

    // Events.

    void eventNames_i()
    {
        addCombinations_i();
        std::set<int> tables = m_descriptors;
        if (m_sampledDescriptors == 0) tables = {-1};
        for (const int descriptor : tables) {
            std::map<std::string, std::map<int, std::size_t>> counts;
            for (const Sample& sample : m_samples) {
                if (sample.descriptor == descriptor)
                    ++counts[at(m_scenario.values, sample.value).eventName][sample.entity];
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
        for (const auto& [key, samples] : m_pairs) {
            std::map<std::int64_t, std::uint64_t> counts;
            for (const Sample& sample : samples)
                ++counts[sample.value];
            std::set<std::pair<std::uint64_t, std::int64_t>> ascending;
            for (const auto& [value, times] : counts)
                ascending.emplace(times, value);
            std::vector<Row> table;
            for (auto top = ascending.rbegin(); top != ascending.rend() && table.size() < 10; ++top)
                table.push_back({text(at(m_valueTexts, top->second)), count(top->first)});
            std::string title = "M Summary: Top 10 Most-Frequent for ";
            title += at(m_scenario.entities, samples.front().entity).name;
            if (samples.front().descriptor >= 0) title += " and " + at(m_scenario.descriptors, std::get<2>(key));
            addTable_i(title, table, false);
        }
    }

    const Scenario& m_scenario;
    const Samples& m_samples;
    const std::int64_t m_clockMHz;    // 0 without a sample: never told
    std::map<Key, Samples> m_pairs;
    std::set<int> m_entities;       // of the samples; combinations join where a table lets them
    std::set<int> m_descriptors;    // likewise
    std::size_t m_sampledDescriptors;
    std::vector<std::string> m_valueTexts;
};

}    // namespace

// In the order of their numbers.
const std::vector<std::string>& tableTypes(Kind kind)
{
    static const std::map<Kind, std::vector<std::string>> types = {
        {Kind::SampledDelta, {"SAMPLE-COUNT", "AVERAGE-RATE-TOTAL", "TOTAL-DELTA"}},
        {Kind::SampledResidency,
         {"SAMPLE-COUNT", "RESIDENCY-PERCENTAGE", "RESIDENCY-MILLISECOND", "RESIDENCY-COMBINED"}},
        {Kind::SampledValue,
         {"SAMPLE-COUNT", "MIN-MAX-AVG", "NUMBER-OF-OCCURENCES", "RELATIVE-FREQUENCY-PERCENTAGE", "MIN-MAX",
          "APPROXIMATED-RESIDENCY"}},
        {Kind::TracedValueTransition,
         {"RESIDENCY-PERCENTAGE", "RESIDENCY-MILLISECOND", "TRANSITION-COUNTS", "RESIDENCY-COMBINED"}},
        {Kind::TracedEvent, {"SAMPLE-COUNT", "EVENT-NAME-COUNTS", "TOP-TEN-EVENT"}},
    };
    return types.at(kind);
}

bool Timing::take(Sample sample)
{
    if (sample.timestamp == 0) return false;
    const bool isReset = sample.duration == pwr::Metric::RESET_DURATION;
    const std::uint64_t given = isReset ? 0 : sample.duration;
    std::uint64_t& previous = m_previous[{sample.entity, sample.descriptor}];
    const bool isFirst = previous == 0;
    if (isFirst) previous = m_lastPoint[sample.entity] = m_scenario.start;
    if (isFirst ? sample.timestamp < previous : sample.timestamp <= previous) return false;
    const std::uint64_t elapsed = sample.timestamp - previous;
    if (given > elapsed) return false;
    previous = sample.timestamp;

    sample.duration = given != 0 ? given : elapsed;
    if (m_scenario.kind == Kind::TracedValueTransition || m_scenario.kind == Kind::TracedEvent) {
        push_i({sample});
        return true;
    }
    if (!m_buffer.empty() && m_buffer.front().timestamp != sample.timestamp) flush();
    if (m_scenario.kind == Kind::SampledResidency) {
        const std::uint64_t since = sinceLastPoint(sample.entity, sample.timestamp);
        sample.duration = given != 0 ? std::min(given, since) : since;
    }
    if (isReset) sample.duration = 0;
    m_buffer.push_back(sample);
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
    bool isValid = true;
    std::map<int, std::pair<std::uint64_t, std::uint64_t>> entities;
    for (const Sample& sample : m_buffer) {
        if (m_scenario.kind != Kind::SampledResidency) break;
        auto& [duration, sum] = entities.emplace(sample.entity, std::make_pair(sample.duration, 0)).first->second;
        isValid = duration == sample.duration;
        if (!isValid) break;
        sum += static_cast<std::uint64_t>(sample.value);
        m_lastPoint[sample.entity] = sample.timestamp;
    }
    for (const auto& entry : entities)
        isValid = isValid && entry.second.second <= entry.second.first;
    if (isValid && !m_buffer.empty()) push_i(m_buffer);
    m_buffer.clear();
}

void Timing::push_i(Samples samples)
{
    for (Sample& sample : samples) {
        sample.point = m_points;
        pushed.push_back(sample);
    }
    ++m_points;
}

std::vector<Push> recount(const Scenario& scenario, const Samples& samples)
{
    return Recount(scenario, samples).pushes;
}

}    // namespace recount
