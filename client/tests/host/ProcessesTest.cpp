#include "FeatureTest.h"
#include "features/Processes.h"

#include "values/Process.h"

namespace {

using test::MS;
using test::Texts;

class ProcessesTest : public test::FeatureTest {
protected:
    ProcessesTest() : FeatureTest("no-idle") {}

    void run(int pid, const std::string& name, int parent, int started, const std::string& state = "S") const
    {
        tree.write("proc/" + std::to_string(pid) + "/stat",
                   std::to_string(pid) + " (" + name + ") " + state + " " + std::to_string(parent) +
                       " 1 1 0 -1 4194304 1 2 3 4 5 6 7 8 20 0 1 0 " + std::to_string(started) + " 9 9 9\n");
    }
    void end(int pid) const { tree.remove("proc/" + std::to_string(pid)); }

    static const pwr::Process* processOf(const test::RecordedPoint& point)
    {
        const pwr::DataHandle* handle = nullptr;
        EXPECT_EQ(0, point.elements.at(0).value.toHandle(handle));
        return dynamic_cast<const pwr::Process*>(handle);
    }
    // "<ticks before the millisecond> <event> <name> <pid>"
    Texts trace(std::size_t first = 0) const
    {
        Texts texts;
        for (std::size_t i = first; i < session.writer.points.size(); ++i) {
            const auto& point = session.writer.points[i];
            const pwr::Process* process = processOf(point);
            const unsigned long long ms = (point.timestamp - test::START + MS - 1) / MS;
            texts.push_back(std::to_string(ms) + "-" + std::to_string(test::START + ms * MS - point.timestamp) + " " +
                            point.elements[0].descriptor + " " + process->getPath() + " " +
                            std::to_string(process->getPid()));
        }
        return texts;
    }
};

TEST_F(ProcessesTest, StartsAndEndsHaveTimesOfTheirOwn)
{
    run(1, "init", 0, 1);
    run(40, "shell", 1, 30);
    run(41, "dead", 1, 30, "Z");
    start<host::Processes>();
    round(100);
    end(40);
    run(50, "late", 1, 900);
    run(60, "parent", 1, 800);
    run(55, "flash", 60, 901, "Z");    // started and ended since the last round
    round(200);
    end(41);
    end(55);
    run(60, "parent", 1, 800, "Z");    // ended, and still listed
    round(300);
    end(60);
    round(400);
    ASSERT_TRUE(finish());
    EXPECT_EQ((Texts{"200-4 Ended shell 40", "200-3 Started parent 60", "200-2 Started late 50",
                     "200-1 Started flash 55", "200-0 Ended flash 55", "300-0 Ended parent 60"}),
              trace());
    const pwr::Process* flash = processOf(session.writer.points[3]);
    EXPECT_EQ(test::START + 200 * MS, flash->getStartTime());
    EXPECT_EQ(test::START + 200 * MS, flash->getEndTime());
    EXPECT_EQ(60, flash->getParentPid());
    const pwr::Process* shell = processOf(session.writer.points[0]);
    EXPECT_EQ(0u, shell->getStartTime());
    EXPECT_EQ(test::START + 200 * MS - 4, shell->getEndTime());
    EXPECT_EQ(0u, processOf(session.writer.points[2])->getEndTime());
    EXPECT_EQ(6u, feature->getPoints());

    const auto started = session.writer.tablesNamed("Processes Summary: Type Count for Started");
    ASSERT_EQ(4u, started.size());
    EXPECT_EQ((Texts{"flash", "1"}), started[1].cells);
    EXPECT_FALSE(session.log.contains("discarded"));
}

TEST_F(ProcessesTest, AnIdThatIsGivenAnewIsAnotherProcess)
{
    run(1, "init", 0, 1);
    run(7, "old", 1, 5);
    start<host::Processes>();
    run(7, "new", 1, 90);
    round(100);
    run(7, "newer", 1, 91);
    round(200);
    run(7, "renamed", 1, 91);    // by itself
    round(300);
    end(7);
    round(400);
    ASSERT_TRUE(finish());
    const int reused = host::Processes::REUSED;
    EXPECT_EQ(
        (Texts{"100-1 Ended old 7", "100-0 Started new " + std::to_string(7 + reused),
               "200-1 Ended new " + std::to_string(7 + reused), "200-0 Started newer " + std::to_string(7 + 2 * reused),
               "400-0 Ended newer " + std::to_string(7 + 2 * reused)}),
        trace());
    EXPECT_EQ(test::START + 100 * MS - 1, processOf(session.writer.points[0])->getEndTime());
}

TEST_F(ProcessesTest, NamesHoldAnythingAndListsOfNonsenseNothing)
{
    run(1, "init", 0, 1);
    start<host::Processes>();
    run(2, "a b) S 9 (c", 1, 5);
    run(3, "\xFF\xC3\xA4", 1, 6);
    run(4, "", 1, 7);
    tree.write("proc/5/stat", "5 (cut) S 1 2 3\n");
    tree.write("proc/6/stat", "no parentheses\n");
    tree.write("proc/8/stat", ") 8 (\n");
    tree.makeUnreadable("proc/9/stat");
    tree.write("proc/007/stat", "7 (seven) S 1 1 1 0 -1 4194304 1 2 3 4 5 6 7 8 20 0 1 0 5 9\n");
    round(100);
    for (const char* pid : {"1", "2", "3", "4"})
        tree.remove(std::string("proc/") + pid);    // nobody is told to have ended: this is no list
    round(200);
    ASSERT_TRUE(finish());
    EXPECT_EQ((Texts{"100-2 Started a b) S 9 (c 2", "100-1 Started ?\xC3\xA4 3", "100-0 Started unnamed 4"}), trace());
}

// Those that came and went meanwhile are told with the first round behind it.
TEST_F(ProcessesTest, ASuspendLosesNoEvent)
{
    run(1, "init", 0, 1);
    run(2, "sleeper", 1, 2);
    start<host::Processes>();
    round(100);
    sleepUntil(3'600'000);
    end(2);
    run(3, "waker", 1, 900);
    round(3'600'100);
    ASSERT_TRUE(finish());
    EXPECT_EQ((Texts{"3600100-1 Ended sleeper 2", "3600100-0 Started waker 3"}), trace());
}

TEST_F(ProcessesTest, WithoutProcessesTheRequirementSaysSo)
{
    machine.load();
    const std::string path = tree.root() + "/proc/*/stat";
    EXPECT_EQ("requires processes: there is no " + path, explain<host::Processes>());
    tree.write("proc/5/stat", "");
    EXPECT_EQ("requires processes: " + path + " can't be read", explain<host::Processes>());
    run(5, "x", 0, 1);
    EXPECT_EQ("", explain<host::Processes>());
}

}    // namespace
