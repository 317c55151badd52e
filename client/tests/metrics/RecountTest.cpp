#include "metrics/MetricFixture.h"
#include "metrics/RecountModel.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <random>
#include <tuple>

using namespace pwr;
using recount::at;
using recount::Kind;
using recount::Scenario;

namespace {

constexpr int RUNS = 600;    // of each kind

bool isShown(const recount::Cell& cell, const std::string& text, const Data& value)
{
    if (!cell.figure.has_value()) return text == cell.text;
    const long double exact = *cell.figure;
    if (std::isinf(exact)) return text == (exact > 0 ? "inf" : "-inf");
    // Addends that come to 0 may be a rounding away from it, and no longer 0 / 0.
    if (std::isnan(exact))
        return text.find("nan") != std::string::npos ||
               (std::isinf(cell.size) && text.find("inf") != std::string::npos);

    // The double is some roundings of 2^-53 away; a long double is 2^11 times nearer to the fraction.
    const long double leeway = std::ldexp(static_cast<long double>(cell.steps) * cell.size, -53);
    double real = 0;
    if (value.getType() == DataType::REAL && (value.toReal(real) != 0 || std::fabs(real - exact) > leeway))
        return false;
    const std::size_t point = text.find('.');
    if (point == std::string::npos || text.size() - point - 1 != static_cast<std::size_t>(cell.digits)) return false;
    const long double unit = std::pow(10.0L, -cell.digits);
    const auto shown = static_cast<long double>(std::stoll(std::string(text).erase(point, 1))) * unit;
    return std::fabs(shown - exact) <= unit / 2 * (1 + std::ldexp(1.0L, -50)) + leeway;
}

// Makes up metrics and their samples, the same ones each time, and compares all their tables with the recount.
class RecountTest : public test::MetricFixture, public testing::WithParamInterface<Kind> {
protected:
    RecountTest()
    {
        const EntityHandle* parent = entity("zed");
        m_entities = {parent, entity("abe", parent), entity("mid"), entity("zed"), entity("end")};
        for (const char* name : {"C6", "A", "B"})
            m_descriptors.push_back(descriptor(name));
        for (const char* name : {"off", "idle", "on", "boost"})
            m_states.push_back(descriptor(name));
        for (unsigned number = 0; number < 14; ++number) {    // more than a top ten, of fewer names
            EventDescription description(number % 3 == 0 ? "start" : "event" + std::to_string(number % 5), "");
            description.addAttributeValue(Attribute::get(AttributeType::IRQ), Data(number));
            m_events.push_back(Event::create(description));
        }
    }

    void recountRuns(Kind kind)
    {
        for (int number = 0; number < RUNS && !HasFailure(); ++number) {
            SCOPED_TRACE("run " + std::to_string(number));
            m_random.seed(static_cast<unsigned>(number));
            session.writer.clear();
            session.log.clear();
            const Scenario scenario = makeScenario_i(kind);
            recount::Timing timing(scenario);
            auto metric = makeMetric_i(scenario);
            feed_i(*metric, scenario, timing);
            timing.flush();
            if (metric->isEmpty()) {
                EXPECT_EQ(1, metric->finalize());
                continue;
            }
            EXPECT_EQ(0, metric->finalize());
            comparePoints_i(scenario, timing.pushed);
            compareTables_i(recount::recount(scenario, timing.pushed));
            checkExtremes_i();
            if (kind == Kind::TracedValueTransition) checkPercentages_i();
        }
        EXPECT_GT(m_figures, 20 * RUNS);
        EXPECT_GT(m_refused, RUNS);
    }

private:
    std::uint64_t below_i(std::uint64_t limit) { return m_random() % limit; }
    bool isOneIn_i(std::uint64_t count) { return below_i(count) == 0; }
    template <typename T>
    const T& anyOf_i(const std::vector<T>& items)
    {
        return items[below_i(items.size())];
    }

    Scenario makeScenario_i(Kind kind)
    {
        Scenario scenario;
        scenario.kind = kind;
        scenario.clockMHz = anyOf_i<std::int64_t>({1, 25, 1000, 2400});
        scenario.start = anyOf_i<std::uint64_t>({0, 1, 50'000});
        scenario.hasValueGroup = isOneIn_i(2);
        scenario.hidesEntities = isOneIn_i(2);
        for (const EntityHandle* about : m_entities)
            scenario.entities.push_back({about->getName(), about->getQualifiedName()});
        for (const DataDescriptor* what : m_descriptors)
            scenario.descriptors.push_back(what->getName());
        scenario.entitiesInTable = {0, 1, 2, 3, 4};
        std::sort(scenario.entitiesInTable.begin(), scenario.entitiesInTable.end(),
                  [this](int a, int b) { return std::less<>()(at(m_entities, a), at(m_entities, b)); });
        chooseQuantity_i(scenario);
        chooseValues_i(scenario);
        chooseParticipants_i(scenario);
        if (isOneIn_i(5)) chooseTables_i(scenario.kind);    // writes a file
        scenario.configured = m_configured;
        return scenario;
    }

    void chooseQuantity_i(Scenario& scenario)
    {
        const std::vector<std::pair<const Quantity*, std::int64_t>> quantities = {
            {nullptr, 0}, {Quantity::power(), 0}, {Quantity::data(), 1}, {Quantity::energy(), 1'000'000}};
        std::tie(m_quantity, scenario.perSecond) = anyOf_i(quantities);
        if (m_quantity != nullptr) scenario.units = " (" + m_quantity->toUnitsString() + ")";
    }

    void chooseValues_i(Scenario& scenario)
    {
        m_values.clear();
        const std::uint64_t type = below_i(scenario.kind == Kind::SampledDelta ? 3 : 5);
        scenario.areNumbers = type < 3;
        if (scenario.areNumbers) chooseNumbers_i(scenario, type);
        if (type == 3) {
            for (const char* name : {"boost", "idle", "off", "on"})
                addValue_i(scenario, {name}, Data(name));
        }
        if (type == 4 && scenario.kind == Kind::TracedEvent) {
            for (const Event* event : m_events)
                addValue_i(scenario, {event->getName(), 0, event->getName(), true}, Data(*event));
        } else if (type == 4) {
            for (const DataDescriptor* state : m_states)
                addValue_i(scenario, {state->getName(), 0, "", true}, Data(*state));
            for (std::uint64_t i = mayHaveFiniteSet_i(scenario) ? below_i(4) : 0; i > 0; --i)
                scenario.finiteSet.push_back(static_cast<int>(below_i(m_states.size())));
        }
    }

    static bool mayHaveFiniteSet_i(const Scenario& scenario)
    {
        return scenario.kind == Kind::SampledValue || scenario.kind == Kind::TracedValueTransition;
    }

    // Ascending: signed, unsigned, or real with a half.
    void chooseNumbers_i(Scenario& scenario, std::uint64_t type)
    {
        long long number = type == 0 ? -60 : 0;
        for (std::uint64_t count = 1 + below_i(14); count > 0; --count) {
            number += static_cast<long long>(1 + below_i(30));
            const std::string text = std::to_string(number);
            if (type == 0) addValue_i(scenario, {text, 2 * number}, Data(number));
            if (type == 1) addValue_i(scenario, {text, 2 * number}, Data(static_cast<unsigned long long>(number)));
            if (type == 2) {
                addValue_i(scenario, {text + ".5", 2 * number + 1}, Data(static_cast<double>(number) + 0.5));
            }
        }
    }

    void addValue_i(Scenario& scenario, const recount::Value& value, const Data& data)
    {
        scenario.values.push_back(value);
        m_values.push_back(data);
    }

    // Which entities and descriptors have samples, and which pairs are promised.
    void chooseParticipants_i(Scenario& scenario)
    {
        m_sampledEntities = {static_cast<int>(below_i(m_entities.size()))};
        for (int about = 0; about < static_cast<int>(m_entities.size()); ++about) {
            if (isOneIn_i(2) && about != m_sampledEntities.front()) m_sampledEntities.push_back(about);
        }
        m_sampledDescriptors.clear();
        m_lastTimes.clear();
        for (int what = 0; what < static_cast<int>(m_descriptors.size()); ++what) {
            if (isOneIn_i(2)) m_sampledDescriptors.push_back(what);
        }
        const bool mayMix = scenario.kind != Kind::SampledValue && scenario.kind != Kind::SampledResidency;
        if (scenario.kind == Kind::SampledResidency && m_sampledDescriptors.empty()) m_sampledDescriptors = {1};
        if (m_sampledDescriptors.empty() || (mayMix && isOneIn_i(4))) m_sampledDescriptors.push_back(-1);
        for (std::uint64_t i = isOneIn_i(2) ? 0 : 1 + below_i(4); i > 0; --i) {
            scenario.combinations.emplace_back(below_i(m_entities.size()), static_cast<int>(below_i(4)) - 1);
        }
    }

    void chooseTables_i(Kind kind)
    {
        std::vector<std::string> types = recount::tableTypes(kind);
        std::string statements;
        m_configured.clear();
        for (std::size_t i = types.size(); i > 1; --i)
            std::swap(types[i - 1], types[below_i(i)]);
        for (const std::string& type : types) {
            if (isOneIn_i(2)) continue;
            const Scenario::Table table{type, isOneIn_i(2), isOneIn_i(2), isOneIn_i(6)};
            const std::string prefix = "ALL_FEAT_BOX_" + type;
            statements += prefix + "_TABLE=" + (table.isHidden ? "NO" : "YES") + "\n";
            if (table.isTransposed) statements += prefix + "_TRANSPOSE=YES\n";
            if (table.suppressesTotal) statements += prefix + "_SUPPRESS-TOTAL=YES\n";
            m_configured.push_back(table);
        }
        configure(statements);
    }

    std::unique_ptr<Metric> makeMetric_i(const Scenario& scenario)
    {
        system.qvaClockFreqMHz = static_cast<float>(scenario.clockMHz);
        system.startTSC = scenario.start;
        auto metric = makeMetric(scenario.kind, m_quantity);
        if (scenario.hasValueGroup) metric->setValueGroupInfo(FieldDescription("Value", ""));
        metric->setSuppressEntityInfoInSummary(scenario.hidesEntities);
        std::vector<const DataDescriptor*> finiteSet;
        for (const int value : scenario.finiteSet)
            finiteSet.push_back(at(m_states, value));
        EXPECT_EQ(0, metric->setFiniteSetValues(finiteSet));
        std::vector<Metric::EntityDescCombo> combinations;
        for (const auto& [about, what] : scenario.combinations)
            combinations.push_back({at(m_entities, about), descriptor_i(what)});
        EXPECT_EQ(0, metric->setEntityDescriptorCombinations(combinations));
        return metric;
    }

    const DataDescriptor* descriptor_i(int what) const { return what >= 0 ? at(m_descriptors, what) : nullptr; }

    // An entity's time never goes back, but for samples that are refused; other entities may lag behind.
    void feed_i(Metric& metric, const Scenario& scenario, recount::Timing& timing)
    {
        const std::uint64_t step = anyOf_i<std::uint64_t>({3, 40, 3000, 100'000});
        std::uint64_t now = scenario.start + below_i(3) - (scenario.start > 1 && isOneIn_i(4) ? 2 : 0);
        std::map<int, std::uint64_t> times;
        for (std::uint64_t rounds = 1 + below_i(25); rounds > 0; --rounds) {
            now += 1 + below_i(step);
            for (const int about : m_sampledEntities) {
                if (isOneIn_i(4)) continue;
                std::uint64_t& time = times[about];
                time = std::max(time, isOneIn_i(8) && now > step ? now - below_i(step) : now);
                feedEntity_i(metric, scenario, timing, about, time, step);
            }
        }
    }

    void feedEntity_i(Metric& metric, const Scenario& scenario, recount::Timing& timing, int about, std::uint64_t now,
                      std::uint64_t step)
    {
        const bool isReset = isOneIn_i(12);
        const bool isResidency = scenario.kind == Kind::SampledResidency;
        for (const int what : m_sampledDescriptors) {
            if (isOneIn_i(isResidency ? 12 : 4)) continue;
            recount::Sample sample{now, about, what, static_cast<std::int64_t>(below_i(scenario.values.size())), 0};
            if (isOneIn_i(isResidency ? 60 : 5)) sample.duration = below_i(2 * step);
            if (isReset) sample.duration = Metric::RESET_DURATION;
            const std::uint64_t last = m_lastTimes[{about, what}];
            if (last > 3 && isOneIn_i(20)) sample.timestamp = isOneIn_i(4) ? 0 : last - below_i(3);
            if (isResidency) {
                const std::uint64_t room = isReset || now < scenario.start ? 0 : timing.sinceLastPoint(about, now);
                const std::uint64_t share = isOneIn_i(80) ? 2 * room : room / m_sampledDescriptors.size();
                sample.value = static_cast<std::int64_t>(below_i(share + 1));
            }
            feedSample_i(metric, timing, sample);
            if (isOneIn_i(20)) feedSample_i(metric, timing, sample);    // a second one of the same time
        }
    }

    void feedSample_i(Metric& metric, recount::Timing& timing, const recount::Sample& sample)
    {
        const bool isTaken = timing.take(sample);
        if (isTaken) m_lastTimes[{sample.entity, sample.descriptor}] = sample.timestamp;
        m_refused += isTaken ? 0 : 1;

        DataElement element(at(m_entities, sample.entity), descriptor_i(sample.descriptor));
        if (metric.getMetricType() == Type::SampledResidency) {
            element.setValue(static_cast<std::uint64_t>(sample.value));
        } else {
            element.setValue(at(m_values, sample.value));
        }
        EXPECT_EQ(isTaken ? 0 : 1, metric.setData(sample.timestamp, element, sample.duration));
    }

    void comparePoints_i(const Scenario& scenario, const recount::Samples& expected) const
    {
        const std::vector<test::RecordedPoint>& points = session.writer.points;
        std::size_t count = 0;
        for (std::size_t i = 0; i < points.size(); ++i) {
            for (const test::RecordedElement& element : points[i].elements) {
                ASSERT_LT(count, expected.size());
                const recount::Sample& sample = expected[count++];
                ASSERT_EQ(sample.point, i);
                ASSERT_EQ(sample.timestamp, points[i].timestamp);
                ASSERT_EQ(at(scenario.entities, sample.entity).qualified, element.entity);
                ASSERT_EQ(sample.descriptor >= 0 ? at(scenario.descriptors, sample.descriptor) : "",
                          element.descriptor);
                ASSERT_EQ(sample.duration, element.duration);
            }
        }
        ASSERT_EQ(expected.size(), count);
    }

    void compareTables_i(const std::vector<recount::Push>& expected)
    {
        const std::vector<test::RecordedTable>& tables = session.writer.tables;
        ASSERT_EQ(expected.size(), tables.size());
        for (std::size_t i = 0; i < expected.size(); ++i) {
            ASSERT_EQ(expected[i].title, tables[i].title);
            ASSERT_EQ(!expected[i].cells.has_value(), isHeader_i(tables[i])) << tables[i].title;
            if (isHeader_i(tables[i])) continue;
            const recount::Row& row = *expected[i].cells;
            ASSERT_EQ(row.size(), tables[i].cells.size()) << tables[i].title;
            for (std::size_t at = 0; at < row.size(); ++at) {
                ASSERT_TRUE(isShown(row[at], tables[i].cells[at], tables[i].values[at]))
                    << tables[i].title << ", push " << i << ", cell " << at << ": " << tables[i].cells[at];
            }
            m_figures += static_cast<int>(row.size());
        }
    }

    static bool isHeader_i(const test::RecordedTable& push) { return push.type == TableMessageType::TABLE_LAYOUT; }

    // What no metric may break, seen in the tables alone.

    void checkExtremes_i() const
    {
        for (const test::RecordedTable& table : session.writer.tablesNamed("M Summary - Sampled: Min/Max/Avg")) {
            if (isHeader_i(table)) continue;
            const std::size_t at = table.cells.size() - 4;
            EXPECT_LE(std::stod(table.cells[at]), real_i(table.values[at + 2]));
            EXPECT_GE(std::stod(table.cells[at + 1]), real_i(table.values[at + 2]));
        }
    }

    static double real_i(const Data& value)
    {
        double real = std::nan("");
        value.toReal(real);
        return real;
    }

    // An entity's values fill its time. One that has several rows or columns counts once.
    void checkPercentages_i() const
    {
        std::map<std::pair<std::string, std::size_t>, std::map<std::string, double>> shares;
        for (std::size_t i = 0; i < session.writer.tables.size(); ++i) {
            const test::RecordedTable& push = session.writer.tables[i];
            if (isHeader_i(push) || push.title.rfind(test::PERCENTAGE, 0) != 0) continue;
            for (std::size_t cell = 1; cell < push.cells.size(); ++cell) {
                if (push.cells[cell].empty()) continue;
                const bool isTransposed = push.columns[cell].find(" (%)") != std::string::npos;
                auto& ofEntity = shares[{push.title, isTransposed ? i : cell}];
                ofEntity[isTransposed ? push.columns[cell] : push.cells[0]] = real_i(push.values[cell]);
            }
        }
        for (const auto& [about, ofValues] : shares) {
            double sum = 0;
            for (const auto& [value, share] : ofValues)
                sum += share;
            EXPECT_TRUE(std::isnan(sum) || sum == 0 || std::fabs(sum - 100) < 1e-9) << about.first << ": " << sum;
        }
    }

    std::mt19937 m_random;
    std::vector<const EntityHandle*> m_entities;
    std::vector<const DataDescriptor*> m_descriptors;
    std::vector<const DataDescriptor*> m_states;
    std::vector<const Event*> m_events;
    std::vector<Scenario::Table> m_configured;

    // Of the run under way.
    const Quantity* m_quantity = nullptr;
    std::vector<Data> m_values;
    std::vector<int> m_sampledEntities;
    std::vector<int> m_sampledDescriptors;
    std::map<std::pair<int, int>, std::uint64_t> m_lastTimes;

    int m_figures = 0;
    int m_refused = 0;
};

TEST_P(RecountTest, EveryFigureOfEveryTable)
{
    recountRuns(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Metrics, RecountTest,
                         testing::Values(Kind::SampledDelta, Kind::SampledResidency, Kind::SampledValue,
                                         Kind::TracedValueTransition, Kind::TracedEvent));

}    // namespace
