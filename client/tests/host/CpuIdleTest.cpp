#include "FeatureTest.h"
#include "features/CpuIdle.h"

namespace {

using test::Texts;

class CpuIdleTest : public test::FeatureTest {
protected:
    explicit CpuIdleTest(const std::string& name = "four-cores") : FeatureTest(name) {}

    // Ticks of POLL, C1, C6 and Active.
    static Texts states(const std::string& poll, const std::string& c1, const std::string& c6,
                        const std::string& active)
    {
        return {"Thread_0/POLL=" + poll, "Thread_0/C1=" + c1, "Thread_0/C6=" + c6, "Thread_0/Active=" + active};
    }
};

TEST_F(CpuIdleTest, ActiveIsWhatIdleLeavesAndEveryStateIsSentEveryRound)
{
    start<host::CpuIdle>();
    tree.setIdle(0, 1, 100'000 + 30'000);
    tree.setIdle(0, 2, 5'000'000 + 20'000);
    round(100);
    round(250);
    ASSERT_TRUE(finish());
    ASSERT_EQ(2u, session.writer.points.size());
    EXPECT_EQ(states("0", "30000000", "20000000", "50000000"), samples(0, "Thread_0"));
    EXPECT_EQ(states("0", "0", "0", "150000000"), samples(1, "Thread_0"));
    EXPECT_EQ(8u * 4u, samples(0).size());
    EXPECT_EQ(64u, feature->getSamples());
    EXPECT_EQ(2u, feature->getPoints());
}

TEST_F(CpuIdleTest, TimeBookedLateIsCarriedAndNoPointIsLost)
{
    start<host::CpuIdle>();
    tree.setIdle(0, 2, 5'000'000 + 250'000);    // slept through, booked at once
    for (const unsigned long long ms : {100U, 200U, 300U, 400U})
        round(ms);
    ASSERT_TRUE(finish());
    ASSERT_EQ(4u, session.writer.points.size());
    EXPECT_EQ(states("0", "0", "100000000", "0"), samples(0, "Thread_0"));
    EXPECT_EQ(states("0", "0", "100000000", "0"), samples(1, "Thread_0"));
    EXPECT_EQ(states("0", "0", "50000000", "50000000"), samples(2, "Thread_0"));
    EXPECT_EQ(states("0", "0", "0", "100000000"), samples(3, "Thread_0"));
    EXPECT_FALSE(session.log.contains("discarded"));
}

TEST_F(CpuIdleTest, StatesThatDoNotFitTogetherTakeTheirTimeInOrder)
{
    start<host::CpuIdle>();
    tree.setIdle(0, 1, 100'000 + 80'000);
    tree.setIdle(0, 2, 5'000'000 + 70'000);
    round(100);
    tree.setIdle(0, 1, 100'000 + 90'000);
    round(200);
    ASSERT_TRUE(finish());
    EXPECT_EQ(states("0", "80000000", "20000000", "0"), samples(0, "Thread_0"));
    EXPECT_EQ(states("0", "10000000", "50000000", "40000000"), samples(1, "Thread_0"));
}

TEST_F(CpuIdleTest, CountersThatBeginAnewOrRunWildSpoilNoPoint)
{
    start<host::CpuIdle>();
    tree.setIdle(0, 1, 40);    // was off line
    round(100);
    tree.setIdle(0, 1, 40 + 10'000);
    round(200);
    tree.setIdle(0, 0, 18'446'744'073'709'551'615ULL);
    tree.setIdle(0, 2, 18'446'744'073'709'551'615ULL);
    round(300);
    tree.setIdle(0, 0, 0);
    round(400);
    ASSERT_TRUE(finish());
    ASSERT_EQ(4u, session.writer.points.size());
    EXPECT_EQ(states("0", "0", "0", "100000000"), samples(0, "Thread_0"));
    EXPECT_EQ(states("0", "10000000", "0", "90000000"), samples(1, "Thread_0"));
    EXPECT_EQ(states("100000000", "0", "0", "0"), samples(2, "Thread_0"));
    EXPECT_EQ(states("100000000", "0", "0", "0"), samples(3, "Thread_0"));
}

TEST_F(CpuIdleTest, AProcessorThatCanNotBeReadInARoundCatchesUp)
{
    start<host::CpuIdle>();
    const std::string file = "sys/devices/system/cpu/cpu0/cpuidle/state1/time";
    tree.makeUnreadable(file);
    round(100);
    tree.remove(file);
    tree.setIdle(0, 1, 100'000 + 150'000);
    round(200);
    ASSERT_TRUE(finish());
    ASSERT_EQ(2u, session.writer.points.size());
    EXPECT_TRUE(samples(0, "Thread_0").empty());
    EXPECT_EQ(4u, samples(0, "Thread_1").size());
    EXPECT_EQ(states("0", "150000000", "0", "50000000"), samples(1, "Thread_0"));
    EXPECT_EQ(200 * test::MS, session.writer.points[1].elements[0].duration);
}

TEST_F(CpuIdleTest, TablesTellEveryAnnouncedState)
{
    start<host::CpuIdle>();
    tree.setIdle(0, 2, 5'000'000 + 25'000);
    round(100);
    ASSERT_TRUE(finish());
    const auto rows = session.writer.tablesNamed("CPU idle states Summary: Residency (Percentage)");
    ASSERT_EQ(5u, rows.size());    // the layout, and a row for each state
    const Texts names{"Active", "POLL", "C1", "C6"};
    const Texts figures{"75.00", "0.00", "0.00", "25.00"};
    for (std::size_t i = 0; i < names.size(); ++i) {
        EXPECT_EQ(names[i], rows[i + 1].cells[0]);
        EXPECT_EQ(figures[i], cellUnder(rows[i + 1], "Thread_0")) << names[i];
    }
}

class CpuIdleOfModulesTest : public CpuIdleTest {
protected:
    CpuIdleOfModulesTest() : CpuIdleTest("modules") {}
};

TEST_F(CpuIdleOfModulesTest, StatesOfOneNameStayApart)
{
    tree.write("sys/devices/system/cpu/cpu0/cpuidle/state2/time", "0\n");    // one without a name
    tree.write("sys/devices/system/cpu/cpu0/cpuidle/state3/time", "0\n");
    tree.write("sys/devices/system/cpu/cpu0/cpuidle/state3/name", "Active\n");
    start<host::CpuIdle>();
    round(10);
    ASSERT_TRUE(finish());
    EXPECT_EQ((Texts{"Thread_0/C1=0", "Thread_0/C1 (state1)=0", "Thread_0/state2=0", "Thread_0/Active (state3)=0",
                     "Thread_0/Active=10000000"}),
              samples(0, "Thread_0"));
    EXPECT_EQ("CPU/Package_0/Module_0/Core_0/Thread_0", session.writer.points[0].elements[0].entity);
}

class CpuIdleOfUnreadableTest : public CpuIdleTest {
protected:
    CpuIdleOfUnreadableTest() : CpuIdleTest("unreadable") {}
};

TEST_F(CpuIdleOfUnreadableTest, AProcessorWithAnUnreadableStateIsLeftOutWithANote)
{
    start<host::CpuIdle>();
    const std::string file = tree.root() + "/sys/devices/system/cpu/cpu1/cpuidle/state1/time";
    EXPECT_EQ((Texts{"processor 1 is left out, since " + file + " can't be read"}), feature->getRemarks());
    round(10);
    ASSERT_TRUE(finish());
    EXPECT_EQ((Texts{"Thread_0/C1=0", "Thread_0/C2=0", "Thread_0/Active=10000000", "Thread_2/C1=0", "Thread_2/C2=0",
                     "Thread_2/Active=10000000"}),
              samples(0));
    ASSERT_EQ(1u, session.writer.infos.size());
    EXPECT_TRUE(session.writer.infos[0].hasNotes);
}

TEST_F(CpuIdleTest, ASuspendIsNobodysTimeAndTheBaselineBehindItCounts)
{
    start<host::CpuIdle>();
    tree.setIdle(0, 2, 5'000'000 + 250'000);    // 150 ms of it are still to be told
    round(100);
    sleepUntil(3'600'000);
    tree.setIdle(0, 1, 3'600'000'000);    // whatever happened
    tree.setIdle(0, 2, 40);
    round(3'600'100);
    tree.setIdle(0, 1, 3'600'000'000 + 30'000);
    round(3'600'200);
    ASSERT_TRUE(finish());
    ASSERT_EQ(3u, session.writer.points.size());
    EXPECT_EQ(states("0", "0", "100000000", "0"), samples(0, "Thread_0"));
    EXPECT_EQ(states("0", "0", "0", "0"), samples(1, "Thread_0"));
    EXPECT_EQ(0u, duration(1));
    EXPECT_EQ(states("0", "30000000", "0", "70000000"), samples(2, "Thread_0"));
    EXPECT_EQ(100u, duration(2));
    EXPECT_EQ(3u, feature->getPoints());
    EXPECT_FALSE(session.log.contains("discarded"));
}

TEST_F(CpuIdleTest, AProcessorThatCanNotBeReadBehindASuspendHasItsBaselineLater)
{
    start<host::CpuIdle>();
    const std::string file = "sys/devices/system/cpu/cpu0/cpuidle/state1/time";
    round(100);
    sleepUntil(10'000);
    tree.makeUnreadable(file);
    round(10'100);
    tree.remove(file);
    tree.setIdle(0, 1, 100'000 + 5'000'000);
    round(10'200);
    tree.setIdle(0, 1, 100'000 + 5'040'000);
    round(10'300);
    ASSERT_TRUE(finish());
    EXPECT_TRUE(samples(1, "Thread_0").empty());
    EXPECT_EQ(states("0", "0", "0", "0"), samples(2, "Thread_0"));
    EXPECT_EQ(states("0", "40000000", "0", "60000000"), samples(3, "Thread_0"));
    EXPECT_FALSE(session.log.contains("discarded"));
}

}    // namespace
