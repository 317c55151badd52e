#include "Collection.h"
#include "modules/CollectorTeam.h"

#include "records/QVBuffer.h"
#include "support/FakeCollector.h"
#include "support/LogCapture.h"

#include "config/InputMsg.h"
#include "record/CollectionData.h"
#include "record/SystemMetadata.h"

#include <gtest/gtest.h>

namespace {

// Starts the run at a tick of its own and hands in a record with that tick whenever it is asked.
class Member : public test::FakeCollector {
public:
    Member(const std::string& uuid, unsigned long long tick) : FakeCollector(uuid), m_tick(tick) {}

    int startCollection(const std::vector<pwr::InputMsg*>& messages, pwr::SystemMetadata& system) override
    {
        started = messages;
        system.startTSC = m_tick;
        system.qvaClockFreqMHz = static_cast<float>(m_tick);
        return result;
    }
    int stopCollection(CollectionData& summary) override
    {
        summary = {m_tick, m_tick + 1, 0, 0, 0, 0, "", ""};
        ++stops;
        return 0;
    }
    int continuousCollectionTick() override
    {
        ++ticks;
        return result;
    }
    bool getContinuousResult(QVBuffer& buffer, CollectionData&) override { return getCollectionResults(buffer) == 0; }
    int getCollectionResults(QVBuffer& buffer) override
    {
        buffer.clear();
        buffer.beginRecord(m_tick, {1, 1, 1});
        buffer.endRecord();
        return 0;
    }

    std::vector<pwr::InputMsg*> started;
    int ticks = 0;
    int stops = 0;

private:
    unsigned long long m_tick;
};

class CollectorTeamTest : public testing::Test {
protected:
    static std::vector<unsigned long long> ticksOf(const QVBuffer& buffer)
    {
        std::vector<unsigned long long> ticks;
        std::size_t offset = 0;
        while (const qv_driver_msg* message = buffer.next(offset))
            ticks.push_back(message->tsc);
        return ticks;
    }

    test::LogCapture m_log{1};
    pwr::SystemMetadata m_system;
    Member m_own{"own", 100};
    Member m_second{"second", 200};
    Member m_third{"third", 300};
    host::CollectorTeam m_team{m_own, {&m_second, &m_third}, m_system};
};

TEST_F(CollectorTeamTest, AMessageGoesToTheLastThatOffersItsKindHere)
{
    m_own.provide("SHARED");
    m_own.provide("MINE");
    m_second.provide("SHARED");
    m_third.provideUnavailable("SHARED");
    m_third.provide("ITS");
    const struct {
        std::vector<std::string> kinds;
        const Member* receiver;
    } cases[] = {
        {{"SHARED"}, &m_second}, {{"MINE"}, &m_own},     {{"ITS"}, &m_third}, {{"CONSTANT", "ITS"}, &m_third},
        {{"CONSTANT"}, nullptr}, {{"UNKNOWN"}, nullptr}, {{}, nullptr},
    };
    for (const auto& c : cases) {
        pwr::InputMsg message("M");
        for (const std::string& kind : c.kinds)
            message.addOperation(new test::FakeOperation(kind));
        EXPECT_EQ(c.receiver != nullptr, m_team.canCollectMessage(&message));
        EXPECT_EQ(0, m_team.startCollection({&message}, m_system));
        for (const Member* member : {&m_own, &m_second, &m_third})
            EXPECT_EQ(member == c.receiver ? 1u : 0u, member->started.size());
    }
    EXPECT_FALSE(m_team.canCollectMessage(nullptr));
}

TEST_F(CollectorTeamTest, TheHostsCollectorGivesStartAndBeat)
{
    EXPECT_EQ(0, m_team.startCollection({}, m_system));
    EXPECT_EQ(100u, m_system.startTSC);
    EXPECT_EQ(100.0F, m_system.qvaClockFreqMHz);
    m_second.result = 1;    // knows no rounds
    EXPECT_EQ(0, m_team.continuousCollectionTick());
    QVBuffer buffer;
    CollectionData summary;
    EXPECT_TRUE(m_team.getContinuousResult(buffer, summary));
    EXPECT_EQ((std::vector<unsigned long long>{100, 200, 300}), ticksOf(buffer));
    m_own.result = 1;    // no round now, for nobody
    EXPECT_EQ(1, m_team.continuousCollectionTick());
    EXPECT_EQ(1, m_third.ticks);
    EXPECT_EQ(0, m_team.stopCollection(summary));
    EXPECT_EQ(101u, summary.getStopTimestamp());
    EXPECT_EQ(0, m_team.getCollectionResults(buffer));
    EXPECT_EQ((std::vector<unsigned long long>{100, 200, 300}), ticksOf(buffer));
}

TEST_F(CollectorTeamTest, WhatWasStartedIsStopped)
{
    {
        host::Collection unfinished(m_system, m_team, {});
        EXPECT_EQ(nullptr, unfinished.begin({}));
    }
    EXPECT_EQ(3, m_own.stops + m_second.stops + m_third.stops);
    m_second.result = 5;    // refuses its messages
    EXPECT_EQ(&m_team, host::Collection(m_system, m_team, {}).begin({}));
    EXPECT_EQ("ERROR: the collector second refused its messages\n", m_log.errors());
    EXPECT_EQ(4, m_own.stops + m_second.stops + m_third.stops);
}

}    // namespace
