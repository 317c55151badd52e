#include "plugins/PluginEnvironment.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <utility>

namespace {

using Events = std::map<unsigned long long, unsigned int>;
using Ticks = std::pair<unsigned long long, unsigned long long>;

constexpr id_config_t ID{1, 2, 3};

PluginEnvironment& filled(PluginEnvironment& environment, const Events& events)
{
    for (const auto& [tsc, state] : events)
        environment.addSystemStateEvent(tsc, state);
    return environment;
}

TEST(SystemStateTest, EventsAreKeptByTick)
{
    PluginEnvironment environment;
    environment.removeLastSystemStateEvent();
    filled(environment, {{300, 1}, {100, 4}});
    environment.addSystemStateEvent(200, 5);
    environment.addSystemStateEvent(100, 2);    // overwrites
    EXPECT_EQ((Events{{100, 2}, {200, 5}, {300, 1}}), environment.getSystemStateEvents());
    environment.removeLastSystemStateEvent();
    EXPECT_EQ((Events{{100, 2}, {200, 5}}), environment.getSystemStateEvents());
}

// A message at tick 100, then one at `tsc`.
TEST(SystemStateTest, MessageFollowsAResetWhenAnEventLiesBetween)
{
    const struct {
        Events events;
        unsigned long long tsc;
        bool isReset;
        unsigned long long state;    // as it was before an event exactly at the tick
    } cases[] = {
        {{}, 200, false, 0},
        {{{99, 1}}, 200, false, 0},
        {{{99, 3}}, 200, false, 0},
        {{{100, 3}}, 200, true, 3},
        {{{150, 1}}, 200, true, 1},
        {{{150, 4}, {160, 1}}, 200, true, 1},
        {{{150, 4}, {160, 2}, {300, 1}}, 200, true, 2},
        {{{200, 4}}, 200, true, 1},
        {{{201, 4}}, 200, false, 0},
        {{{50, 4}}, 200, true, 4},    // asleep: every message
        {{{50, 5}}, 200, true, 5},
        {{{50, 5}, {90, 1}}, 200, false, 0},
        {{{50, 4}, {70, 1}}, 60, true, 4},    // older than the one before: no range, but asleep then
        {{{70, 2}}, 60, false, 0},
        {{{100, 3}}, 100, true, 1},    // the same tick again
        {{{UINT64_MAX, 3}}, UINT64_MAX, true, 1},
    };
    for (const auto& c : cases) {
        PluginEnvironment environment;
        environment.checkAndRecordReset(ID, 100);
        filled(environment, c.events);
        EXPECT_EQ(c.isReset, environment.checkAndRecordReset(ID, c.tsc)) << testing::PrintToString(c.events);
        EXPECT_EQ(c.state, environment.isSystemReset(1, 2, 3, c.tsc)) << testing::PrintToString(c.events);
        EXPECT_EQ(c.isReset, environment.checkResetOccurred());
    }
}

TEST(SystemStateTest, FirstMessageOfAnIdentityIsNeverAReset)
{
    PluginEnvironment environment;
    environment.addSystemStateEvent(50, 4);
    const id_config_t identities[] = {{1, 2, 3}, {0, 2, 3}, {1, 0, 3}, {1, 2, 0}};
    for (const id_config_t& id : identities)
        EXPECT_FALSE(environment.checkAndRecordReset(id, 100));
    EXPECT_FALSE(environment.checkResetOccurred());
    EXPECT_TRUE(environment.checkAndRecordReset({1, 0, 3}, 110)) << "the first one was noted";
    EXPECT_EQ(4u, environment.isSystemReset(1, 0, 3, 110));
    EXPECT_EQ(0u, environment.isSystemReset(1, 2, 3, 110));
    EXPECT_EQ(0u, environment.isSystemReset(1, 0, 3, 111));
}

TEST(SystemStateTest, EachMessageIsMeasuredFromTheOneBefore)
{
    PluginEnvironment environment;
    filled(environment, {{150, 4}, {160, 1}});
    environment.checkAndRecordReset(ID, 100);
    EXPECT_TRUE(environment.checkAndRecordReset(ID, 200));
    EXPECT_FALSE(environment.checkAndRecordReset(ID, 300));
    EXPECT_FALSE(environment.checkAndRecordReset(ID, 120)) << "late, between no events";
    EXPECT_TRUE(environment.checkAndRecordReset(ID, 300)) << "measured from the late one";
}

TEST(SystemStateTest, StateZeroCannotBeToldFromNoReset)
{
    PluginEnvironment environment;
    environment.checkAndRecordReset(ID, 100);
    environment.addSystemStateEvent(150, 0);
    EXPECT_TRUE(environment.checkAndRecordReset(ID, 200));
    EXPECT_TRUE(environment.checkResetOccurred());
    EXPECT_EQ(0u, environment.isSystemReset(1, 2, 3, 200));
}

TEST(SystemStateTest, LastResetIsTheChangeToTheNormalState)
{
    const struct {
        Events events;
        unsigned long long tsc;
        Ticks ticks;
    } cases[] = {
        {{}, 150, {0, 0}},
        {{{100, 1}}, 0, {0, 0}},
        {{{100, 1}}, 500, {0, 0}},
        {{{100, 2}, {200, 1}}, 150, {100, 200}},
        {{{100, 2}, {200, 1}}, 500, {100, 200}},
        {{{100, 2}, {200, 1}}, 200, {100, 200}},
        {{{100, 2}, {200, 1}}, 99, {0, 0}},     // the oldest is the next one
        {{{100, 1}, {200, 4}}, 500, {0, 0}},    // back to the oldest
        {{{100, 4}, {200, 1}, {300, 5}, {400, 1}}, 250, {100, 200}},
        {{{100, 4}, {200, 1}, {300, 5}, {400, 1}}, 300, {300, 400}},
        {{{100, 4}, {200, 1}, {300, 5}, {400, 4}}, 999, {100, 200}},
    };
    for (const auto& c : cases) {
        PluginEnvironment environment;
        EXPECT_EQ(c.ticks, filled(environment, c.events).getLastResetEvent(c.tsc))
            << testing::PrintToString(c.events) << " at " << c.tsc;
    }
}

}    // namespace
