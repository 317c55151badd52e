#include "FeatureTest.h"
#include "features/CpuFrequency.h"

namespace {

using test::MS;
using test::Texts;

class CpuFrequencyTest : public test::FeatureTest {
protected:
    CpuFrequencyTest() : FeatureTest("no-idle") {}

    std::string file(int cpu) const
    {
        return "sys/devices/system/cpu/cpu" + std::to_string(cpu) + "/cpufreq/scaling_cur_freq";
    }
    void speed(int cpu, int kHz) const { tree.write(file(cpu), std::to_string(kHz) + "\n"); }

    // All that reached the writers, in its order: "2 Thread_0=1000 for 100", in milliseconds and ticks above them.
    Texts trace() const
    {
        Texts texts;
        for (std::size_t i = 0; i < session.writer.points.size(); ++i) {
            const auto& point = session.writer.points[i];
            EXPECT_EQ(1u, point.elements.size());
            texts.push_back(ticks(point.timestamp - test::START) + " " + samples(i).at(0) + " for " +
                            ticks(point.elements.at(0).duration));
        }
        return texts;
    }
    static std::string ticks(unsigned long long ticks)
    {
        return std::to_string(ticks / MS) + (ticks % MS != 0 ? "+" + std::to_string(ticks % MS) : "");
    }
    // The shares of the processor's frequencies.
    std::string shares(const std::string& processor) const
    {
        std::string text;
        const auto rows = session.writer.tablesNamed("CPU frequency Summary: Residency (Percentage)");
        for (std::size_t i = 1; i < rows.size(); ++i)
            text += rows[i].cells[0] + ":" + cellUnder(rows[i], processor) + " ";
        return text;
    }
};

TEST_F(CpuFrequencyTest, EachTransitionTellsWhatWasLeftAndTheEndWhatIsHeld)
{
    speed(0, 1'000'400);
    speed(1, 3'000'000);
    start<host::CpuFrequency>();
    speed(0, 2'049'999);
    round(100);
    speed(0, 1'960'000);    // the same step
    round(200);
    speed(0, 1'000'000);
    round(300);
    round(400);
    ASSERT_TRUE(finish());
    EXPECT_EQ((Texts{"100 Thread_0=1000 for 100", "300 Thread_0=2000 for 200", "400 Thread_0=1000 for 100",
                     "400 Thread_1=3000 for 400"}),
              trace());
    EXPECT_EQ("1000:50.00 2000:50.00 3000:0.00 ", shares("Thread_0"));
    EXPECT_EQ("1000:0.00 2000:0.00 3000:100.00 ", shares("Thread_1"));
    EXPECT_EQ(4u, feature->getSamples());
    EXPECT_EQ(4u, feature->getPoints());
    EXPECT_EQ(4u, machine.record.samplesProduced);
    const auto counts = session.writer.tablesNamed("CPU frequency Summary: Entry Counts");
    ASSERT_EQ(5u, counts.size());
    EXPECT_EQ("1000", counts[1].cells[0]);
    EXPECT_EQ("2", cellUnder(counts[1], "Thread_0"));
    EXPECT_EQ("0", cellUnder(counts[1], "Thread_1"));
}

TEST_F(CpuFrequencyTest, WhatIsFoundInTheLastRoundIsHeldForATick)
{
    speed(0, 1'000'000);
    start<host::CpuFrequency>();
    speed(0, 2'000'000);
    round(100);
    ASSERT_TRUE(finish());
    EXPECT_EQ((Texts{"100 Thread_0=1000 for 100", "100+1 Thread_0=2000 for 0+1"}), trace());
    EXPECT_FALSE(session.log.contains("discarded"));
}

TEST_F(CpuFrequencyTest, ASuspendAndATimeOutOfSightBelongToNoFrequency)
{
    speed(0, 1'000'000);
    speed(1, 3'000'000);
    start<host::CpuFrequency>();
    round(100);
    sleepUntil(3'600'000);
    speed(0, 2'000'000);
    round(3'600'100);
    tree.makeUnreadable(file(1));
    round(3'600'200);
    tree.remove(file(1));
    speed(1, 3'000'000);
    round(3'600'400);
    round(3'600'500);
    ASSERT_TRUE(finish());
    EXPECT_EQ((Texts{"100 Thread_0=1000 for 100", "100 Thread_1=3000 for 100", "3600500 Thread_0=2000 for 400",
                     "3600500 Thread_1=3000 for 100"}),
              trace());    // seen in one moment only: nothing to tell
    EXPECT_EQ("1000:20.00 2000:80.00 3000:0.00 ", shares("Thread_0"));
    EXPECT_EQ("1000:0.00 2000:0.00 3000:100.00 ", shares("Thread_1"));
    EXPECT_FALSE(session.log.contains("discarded"));
}

// A reset before the first round has nothing to tell.
TEST_F(CpuFrequencyTest, ASuspendAtOnceIsHarmless)
{
    speed(0, 1'000'000);
    start<host::CpuFrequency>();
    sleepUntil(60'000);
    round(60'100);
    round(60'200);
    ASSERT_TRUE(finish());
    EXPECT_EQ((Texts{"60200 Thread_0=1000 for 100"}), trace());
}

TEST_F(CpuFrequencyTest, WithoutADriverTheReportedFrequencyCounts)
{
    const auto report = [this](const std::string& first, const std::string& second) {
        tree.write("proc/cpuinfo", "processor\t: 0\nmodel name\t: X 9: y\ncpu MHz\t\t: " + first +
                                       "\n\nprocessor\t: 1\ncpu MHz\t\t: " + second +
                                       "\n\nprocessor\t: 77\ncpu MHz : 5\n\ncpu MHz : 6\n");
    };
    report("1200.041", "2400");
    start<host::CpuFrequency>();
    report("1250.000", "unknown");
    round(100);
    ASSERT_TRUE(finish());
    EXPECT_EQ((Texts{"100 Thread_0=1200 for 100", "100+1 Thread_0=1300 for 0+1"}), trace());
    EXPECT_TRUE(feature->getRemarks().empty());
}

TEST_F(CpuFrequencyTest, NoFrequencyIsARequirementThatFails)
{
    tree.write("proc/cpuinfo", "processor : 0\nBogoMIPS : 5\n");
    machine.load();
    EXPECT_EQ("requires processor frequencies: " + tree.root() + "/proc/cpuinfo can't be read or tells no cpu MHz",
              explain<host::CpuFrequency>());
}

}    // namespace
