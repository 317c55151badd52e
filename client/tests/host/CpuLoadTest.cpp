#include "FeatureTest.h"
#include "features/CpuLoad.h"

namespace {

using test::Texts;

class CpuLoadTest : public test::FeatureTest {
protected:
    CpuLoadTest() : FeatureTest("no-idle") {}

    void stat(const std::string& lines) const { tree.write("proc/stat", "cpu 9 9 9 9\n" + lines + "intr 5 0 0\n"); }
};

TEST_F(CpuLoadTest, LoadIsTheBusyShareInWholePercent)
{
    start<host::CpuLoad>();
    // 100 ticks each: 10 + 5 + 12 + 1 + 2 + 3 of them busy; waiting is idle, guests are users already.
    stat("cpu0 1010 5 2012 90057 1010 1 2 3 500 500\ncpu1 1000 0 2001 90199 1000 0 0 0 0 0\n");
    round(100);
    stat("cpu0 1010 5 2012 90057 1010 1 2 3 500 500\ncpu1 1001 0 2001 90398 1000 0 0 0 0 0\n");
    round(200);
    ASSERT_TRUE(finish());
    ASSERT_EQ(2u, session.writer.points.size());
    EXPECT_EQ((Texts{"Thread_0=33", "Thread_1=1"}), samples(0));    // 1 of 200 is nearer to 1 than to 0
    EXPECT_EQ((Texts{"Thread_1=1"}), samples(1));
    EXPECT_EQ(3u, feature->getSamples());
}

TEST_F(CpuLoadTest, AnUnchangedFileGivesNoSampleAndTheNextSpeaksOfTheWholeTime)
{
    start<host::CpuLoad>();
    round(100);
    EXPECT_EQ(0u, feature->getPoints());
    stat("cpu0 1003 0 2000 90007 1000 0 0 0 0 0\n");
    round(200);
    ASSERT_TRUE(finish());
    ASSERT_EQ(1u, session.writer.points.size());
    EXPECT_EQ((Texts{"Thread_0=30"}), samples(0));
    EXPECT_EQ(200 * test::MS, session.writer.points[0].elements[0].duration);
    EXPECT_EQ(1u, feature->getPoints());
}

TEST_F(CpuLoadTest, TimesThatStepBackCountAsNone)
{
    start<host::CpuLoad>();
    stat("cpu0 1004 0 2000 89990 990 0 0 0\n");    // idle times may
    round(100);
    stat("cpu0 0 0 0 0 0 0 0 0\n");    // all do after a time off line
    round(200);
    stat("cpu0 1 0 0 3 0 0 0 0\n");
    round(300);
    ASSERT_TRUE(finish());
    ASSERT_EQ(2u, session.writer.points.size());
    EXPECT_EQ((Texts{"Thread_0=100"}), samples(0));
    EXPECT_EQ((Texts{"Thread_0=25"}), samples(1));
}

TEST_F(CpuLoadTest, ProcessorsComeAndGoAndLinesOfNonsenseAreSkipped)
{
    start<host::CpuLoad>();
    stat("cpu1 1000 0 2010 90010 1000 0 0 0\ncpu7 1 1 1 1\ncpu 5 5 5 5\ncpux 1 2 3 4\ncpu-1 2 3 4 5\ncpu0 5 6 7\n");
    round(100);
    stat("cpu0 1001 0 2000 90001 1000 0 0 0\ncpu1 1000 0 2010 90010 1000 0 0 0\ncpu7 2 2 2 2\n");    // 7 has no place
    round(200);
    tree.makeUnreadable("proc/stat");
    round(300);
    ASSERT_TRUE(finish());
    ASSERT_EQ(2u, session.writer.points.size());
    EXPECT_EQ((Texts{"Thread_1=50"}), samples(0));
    EXPECT_EQ((Texts{"Thread_0=50"}), samples(1));
}

TEST_F(CpuLoadTest, WithoutAChangeThereIsNoTable)
{
    start<host::CpuLoad>();
    round(100);
    EXPECT_FALSE(finish());
    EXPECT_TRUE(session.writer.tables.empty());
}

TEST_F(CpuLoadTest, ASuspendIsNobodysTimeAndTheBaselineBehindItCounts)
{
    start<host::CpuLoad>();
    stat("cpu0 1050 0 2000 90050 1000 0 0 0\n");
    round(100);
    sleepUntil(3'600'000);
    stat("cpu0 9999 0 2000 90050 1000 0 0 0\n");    // whatever happened
    round(3'600'100);
    stat("cpu0 9999 0 2000 90050 1000 0 0 0\ncpu1 1000 0 2001 90398 1000 0 0 0\n");
    round(3'600'200);
    stat("cpu0 9999 0 2010 90090 1000 0 0 0\ncpu1 1000 0 2002 90399 1000 0 0 0\n");
    round(3'600'300);
    ASSERT_TRUE(finish());
    ASSERT_EQ(2u, session.writer.points.size());
    EXPECT_EQ((Texts{"Thread_0=50"}), samples(0));
    EXPECT_EQ((Texts{"Thread_0=20", "Thread_1=50"}), samples(1));
    EXPECT_EQ(200u, duration(1));    // since the baseline, not since the sample before
    EXPECT_EQ(100 * test::MS, session.writer.points[1].elements[1].duration);
}

TEST_F(CpuLoadTest, AFileWithoutProcessorsIsNoSource)
{
    machine.load();
    const std::string path = tree.root() + "/proc/stat";
    for (const char* text : {"", "cpu 1 2 3 4\n", "cpu0", "cpu0 1 2 3"}) {
        tree.write("proc/stat", text);
        EXPECT_EQ("requires processor times: " + path + " can't be read or tells no cpu*", explain<host::CpuLoad>())
            << text;
    }
    tree.write("proc/stat", "cpu0 1 2 3 4");
    EXPECT_EQ("", explain<host::CpuLoad>());
    tree.remove("proc/stat");
    EXPECT_EQ("requires processor times: there is no " + path, explain<host::CpuLoad>());
}

// The configuration of machines with very many cores: the total line, and the columns of every machine.
TEST_F(CpuLoadTest, AllProcessorsTogetherAreOneEntity)
{
    tree.write("proc/stat", "cpu 100 0 100 800 100 0 0 0 70 70\ncpu0 1 1 1 1\n");
    start<host::CpuLoad>("CORES=MANY");
    tree.write("proc/stat", "cpu 110 0 110 870 110 0 0 0 99 99\ncpu0 9 9 9 9\n");
    round(100);
    ASSERT_TRUE(finish());
    ASSERT_EQ(1u, session.writer.points.size());
    EXPECT_EQ((Texts{"CPU=20"}), samples(0));
}

TEST(WholePercentTest, PercentIsRoundedAndStaysInItsRange)
{
    EXPECT_EQ(33u, host::CpuLoad::wholePercent(1, 3));
    EXPECT_EQ(67u, host::CpuLoad::wholePercent(2, 3));
    EXPECT_EQ(0u, host::CpuLoad::wholePercent(-1, 3));
    EXPECT_EQ(100u, host::CpuLoad::wholePercent(4, 3));
}

}    // namespace
