#include "metrics/ThermalSampleHandler.h"

#include "metrics/MetricFixture.h"
#include "plugins/QuorvaneHost.h"

#include <utility>

using namespace pwr;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const char* const MIN_MAX = "Temperature Metrics Summary - Sampled: Min/Max";

class ThermalSampleHandlerTest : public test::MetricFixture {
protected:
    using Point = std::pair<unsigned long long, std::vector<std::string>>;

    ~ThermalSampleHandlerTest() override { QuorvaneHost::destroyThermalSampleHandler(); }

    // The handler knows a plugin by its address alone.
    const MetricPlugin* plugin(std::size_t number) const
    {
        return reinterpret_cast<const MetricPlugin*>(&m_plugins[number]);
    }

    ThermalSampleHandler& handlerOf(const std::vector<const EntityHandle*>& entities)
    {
        ThermalSampleHandler* handler = ThermalSampleHandler::get(system, plugin(0));
        for (const EntityHandle* about : entities)
            EXPECT_EQ(0, handler->addEntity(about));
        return *handler;
    }

    // What the writers got: timestamps with "entity=temperature".
    std::vector<Point> points() const
    {
        std::vector<Point> all;
        for (const test::RecordedPoint& point : session.writer.points) {
            all.emplace_back(point.timestamp, std::vector<std::string>());
            for (const test::RecordedElement& element : point.elements) {
                std::string text;
                element.value.toFormattedString(text);
                all.back().second.push_back(element.entity + "=" + text);
            }
        }
        return all;
    }

    std::size_t shortSweeps() const
    {
        return session.log.count("WARNING: Temperature values were not set for all the entities at ");
    }

    const char m_plugins[2] = {};
    const EntityHandle* m_a = entity("A");
    const EntityHandle* m_b = entity("B");
};

TEST_F(ThermalSampleHandlerTest, SweepStandsOnItsFirstTimestamp)
{
    ThermalSampleHandler& handler = handlerOf({m_a, m_b});
    EXPECT_EQ(0, handler.setTemperature(m_a, 2000, 1, false));
    EXPECT_EQ(0, handler.setTemperature(m_b, 2005, 10, false));
    EXPECT_EQ(0, handler.setTemperature(m_b, 4000, 2, false));    // the order within a sweep is free
    EXPECT_EQ(0, handler.setTemperature(m_a, 4006, 11, false));
    EXPECT_EQ(0, handler.setTemperature(m_a, 6000, 3, false));
    EXPECT_EQ(0, handler.setTemperature(m_b, 6007, 12, false));
    EXPECT_EQ(0, ThermalSampleHandler::release(plugin(0)));
    EXPECT_THAT(points(),
                ElementsAre(Point(2000, {"A=1", "B=10"}), Point(4000, {"B=2", "A=11"}), Point(6000, {"A=3", "B=12"})));
    EXPECT_THAT(durations(), ElementsAre(ElementsAre(1000, 1000), ElementsAre(2000, 2000), ElementsAre(2000, 2000)));
    EXPECT_EQ(DataType::UINT, session.writer.points[0].elements[0].value.getType());
    EXPECT_EQ(0u, shortSweeps());
    EXPECT_EQ("ALL-THERMAL-DATA", session.writer.infos.at(0).tag);
    EXPECT_THAT(rows(MIN_MAX), ElementsAre(ElementsAre("A", "1", "11"), ElementsAre("B", "2", "12")));
}

TEST_F(ThermalSampleHandlerTest, TablesAreFoundByTheFeatureTag)
{
    configure("ALL_TEMP_ALL-THERMAL-DATA_MIN-MAX_TITLE=Heat\n");
    handlerOf({m_a}).setTemperature(m_a, 2000, 41, false);
    EXPECT_EQ(0, ThermalSampleHandler::release(plugin(0)));
    EXPECT_THAT(columns("Heat Summary - Sampled: Min/Max"),
                ElementsAre("", testing::StartsWith("Min ("), testing::StartsWith("Max (")));
}

TEST_F(ThermalSampleHandlerTest, LowOverheadKeepsEachTimestamp)
{
    system.lowOverheadMode = 1;
    ThermalSampleHandler& handler = handlerOf({m_a, m_b});
    handler.setTemperature(m_a, 2000, 40, false);
    handler.setTemperature(m_b, 2005, 50, false);
    handler.setTemperature(m_a, 3000, 41, false);
    handler.setTemperature(m_a, 4000, 42, false);
    ThermalSampleHandler::release(plugin(0));
    EXPECT_THAT(points(), ElementsAre(Point(2000, {"A=40"}), Point(2005, {"B=50"}), Point(3000, {"A=41"}),
                                      Point(4000, {"A=42"})));
    EXPECT_EQ(0u, shortSweeps());
}

TEST_F(ThermalSampleHandlerTest, SweepThatEndsShortIsToldAndItsReadingsStay)
{
    ThermalSampleHandler& handler = handlerOf({m_a, m_b});
    handler.setTemperature(m_a, 2000, 40, false);
    handler.setTemperature(m_a, 3000, 41, false);    // B never reported
    EXPECT_TRUE(session.log.contains("WARNING: Temperature values were not set for all the entities at 2000.\n"));
    handler.setTemperature(m_b, 3005, 51, false);
    handler.setTemperature(m_b, 4000, 52, false);    // B first this time
    handler.setTemperature(m_a, 4005, 42, false);
    EXPECT_EQ(1u, shortSweeps());
    ThermalSampleHandler::release(plugin(0));
    EXPECT_THAT(points(),
                ElementsAre(Point(2000, {"A=40"}), Point(3000, {"A=41", "B=51"}), Point(4000, {"B=52", "A=42"})));
}

TEST_F(ThermalSampleHandlerTest, RefusedReadingHasReportedInItsSweep)
{
    ThermalSampleHandler& handler = handlerOf({m_a, m_b});
    handler.setTemperature(m_a, 3000, 40, false);
    handler.setTemperature(m_b, 3005, 50, false);
    EXPECT_EQ(1, handler.setTemperature(m_a, 2000, 41, false));    // in the past; opens a sweep there
    EXPECT_EQ(1, handler.setTemperature(m_b, 4000, 51, false));    // and takes B along
    EXPECT_EQ(0, handler.setTemperature(m_a, 4005, 42, false));
    EXPECT_EQ(0u, shortSweeps());
    ThermalSampleHandler::release(plugin(0));
    EXPECT_THAT(points(), ElementsAre(Point(3000, {"A=40", "B=50"}), Point(4005, {"A=42"})));
}

TEST_F(ThermalSampleHandlerTest, ResetStandsForNoTimeAndEndsTheSweep)
{
    ThermalSampleHandler& handler = handlerOf({m_a, m_b});
    handler.setTemperature(m_a, 2000, 40, false);
    std::vector<const EntityHandle*> both{m_a, m_b};
    EXPECT_EQ(0, handler.resetTemperatures(both, 3000, 0));
    handler.setTemperature(m_b, 4000, 50, true);
    handler.setTemperature(m_a, 4005, 41, false);
    EXPECT_EQ(0u, shortSweeps());
    ThermalSampleHandler::release(plugin(0));
    EXPECT_THAT(points(),
                ElementsAre(Point(2000, {"A=40"}), Point(3000, {"A=0", "B=0"}), Point(4000, {"B=50", "A=41"})));
    EXPECT_THAT(durations(), ElementsAre(ElementsAre(1000), ElementsAre(0, 0), ElementsAre(0, 1000)));
}

TEST_F(ThermalSampleHandlerTest, ResetStopsAtTheFirstRefusedEntity)
{
    ThermalSampleHandler& handler = handlerOf({m_a, m_b});
    std::vector<const EntityHandle*> unknown{m_a, entity("C"), m_b};
    std::vector<const EntityHandle*> null{nullptr};
    std::vector<const EntityHandle*> late{m_a, m_b};
    EXPECT_EQ(1, handler.resetTemperatures(unknown, 2000, 1));
    EXPECT_EQ(1, handler.resetTemperatures(null, 2000, 1));
    EXPECT_EQ(1, handler.resetTemperatures(late, 2000, 1)) << "A has been there";
    ThermalSampleHandler::release(plugin(0));
    EXPECT_THAT(points(), ElementsAre(Point(2000, {"A=1"})));
}

TEST_F(ThermalSampleHandlerTest, EntitiesMustBeThereAndAreAddedOnce)
{
    ThermalSampleHandler& handler = handlerOf({m_a});
    EXPECT_EQ(1, handler.addEntity(nullptr));
    EXPECT_TRUE(session.log.contains("WARNING: ThermalSampleHandler: please provide a valid entity.\n"));
    EXPECT_EQ(1, handler.addEntity(m_a));
    EXPECT_TRUE(session.log.contains("WARNING: ThermalSampleHandler: Entity A already added\n"));
    EXPECT_EQ(1, handler.setTemperature(nullptr, 2000, 1, false));
    EXPECT_TRUE(session.log.contains(
        "WARNING: ThermalSampleHandler: Please provide a valid entity when setting temperature.\n"));
    EXPECT_EQ(1, handler.setTemperature(m_b, 2000, 1, false));
    EXPECT_TRUE(session.log.contains("WARNING: ThermalSampleHandler: cannot set temperature for an entity that has not "
                                     "been added yet.\n"));
    EXPECT_EQ(0, ThermalSampleHandler::release(plugin(0))) << "nothing was accepted";
    EXPECT_THAT(session.writer.tables, IsEmpty());
}

TEST_F(ThermalSampleHandlerTest, TablesComeWhenTheLastPluginLeaves)
{
    EXPECT_EQ(1, ThermalSampleHandler::release(plugin(0)));
    EXPECT_TRUE(
        session.log.contains("WARNING: Attempt to unregister a plugin from a non-existant ThermalSampleHandler\n"));

    ThermalSampleHandler& handler = handlerOf({m_a});
    EXPECT_EQ(&handler, ThermalSampleHandler::get(system, plugin(0)));
    handler.setTemperature(m_a, 2000, 40, false);
    EXPECT_EQ(1, ThermalSampleHandler::release(plugin(1)));
    EXPECT_TRUE(session.log.contains("WARNING: ThermalSampleHandler: Attempt to unregister a plugin that has not been "
                                     "registered or it may have already been unregistered.\n"));
    EXPECT_EQ(0, ThermalSampleHandler::release(plugin(0)));
    EXPECT_THAT(session.writer.tables, IsEmpty());
    EXPECT_EQ(0, ThermalSampleHandler::release(plugin(0)));
    EXPECT_EQ(6u, session.writer.tableTitles().size());

    // The handler is still the same one.
    EXPECT_EQ(&handler, ThermalSampleHandler::get(system, plugin(1)));
    EXPECT_EQ(0, handler.setTemperature(m_a, 3000, 41, false));
}

// By the host, or together with the entities that it knows.
TEST_F(ThermalSampleHandlerTest, TornDownHandlerMakesWayForANewOne)
{
    for (const auto& tearDown : {QuorvaneHost::destroyThermalSampleHandler, UniqueId::destroy}) {
        handlerOf({m_a}).setTemperature(m_a, 2000, 40, false);
        tearDown();
        tearDown();    // harmless
        EXPECT_EQ(1, ThermalSampleHandler::release(plugin(0)));
        EXPECT_THAT(points(), IsEmpty());
        UniqueId::initialize();
        m_a = entity("A");
        EXPECT_EQ(0, handlerOf({m_a}).setTemperature(m_a, 2000, 40, false)) << "knows nothing of the first";
        QuorvaneHost::destroyThermalSampleHandler();
    }
}

TEST_F(ThermalSampleHandlerTest, WithoutAWriterStreamThereIsNoHandler)
{
    session.log.environment().setWriterStream(nullptr);
    EXPECT_THROW(ThermalSampleHandler::get(system, plugin(0)), const char*);
    EXPECT_EQ(1, ThermalSampleHandler::release(plugin(0)));
    session.log.environment().setWriterStream(session.stream);
}

}    // namespace
