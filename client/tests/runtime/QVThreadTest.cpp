#include "runtime/QVThread.h"

#include "support/CommandActor.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>

namespace {

using pwr::QVThread;
using test::CommandActor;

constexpr char NOT_READ[] = "WARNING: couldn't read response message header!\nWARNING: couldn't read response!\n";
constexpr unsigned long long MAX_PAYLOAD_BYTES = 0x100000;

int g_exits = 0;

void countExit()
{
    ++g_exits;
}

class QVThreadTest : public testing::Test {
protected:
    QVThreadTest() { g_exits = 0; }

    void start()
    {
        ASSERT_EQ(0, m_thread->init());
        ASSERT_EQ(0, m_thread->start());
    }

    test::LogCapture m_log{2};
    CommandActor m_actor;
    std::unique_ptr<QVThread> m_thread = std::make_unique<QVThread>(m_actor, &countExit);
};

TEST_F(QVThreadTest, GoesFromCreatedToDeadAndNotBack)
{
    EXPECT_EQ(-1, m_thread->start());
    EXPECT_EQ(-1, m_thread->kill());
    m_actor.initResult = 5;
    EXPECT_EQ(-1, m_thread->init());
    EXPECT_EQ(-1, m_thread->start());
    m_actor.initResult = 0;
    EXPECT_EQ(0, m_thread->init());
    EXPECT_EQ(0, m_thread->init());
    EXPECT_FALSE(m_thread->isRunning());
    EXPECT_EQ(0, m_thread->start());
    EXPECT_TRUE(m_thread->isRunning());
    EXPECT_EQ(-1, m_thread->start());
    EXPECT_EQ(-1, m_thread->init());
    EXPECT_EQ(77, m_thread->kill());
    EXPECT_TRUE(m_thread->isDead());
    EXPECT_FALSE(m_thread->isRunning());
    EXPECT_EQ(-1, m_thread->kill());
    EXPECT_EQ(-1, m_thread->start());
    EXPECT_EQ(0, m_thread->timedJoin(1));
    EXPECT_EQ(0, m_thread->join());
    EXPECT_EQ(0, g_exits);
    EXPECT_EQ("WARNING: invalid thread state 0!\n"
              "WARNING: killing a thread that isn't running?!\n"
              "WARNING: invalid thread state 0!\n"
              "WARNING: invalid thread state 2!\n"
              "WARNING: invalid thread state 2!\n"
              "WARNING: killing a thread that isn't running?!\n"
              "WARNING: invalid thread state 3!\n",
              m_log.debug());
}

TEST_F(QVThreadTest, UninitializedThreadTakesNothing)
{
    EXPECT_EQ(-1, m_thread->signal(1, true, true));
    EXPECT_EQ(-1, m_thread->readResponse(0));
    EXPECT_EQ(std::string("WARNING: couldn't write request message header!\nWARNING: write error\n") + NOT_READ,
              m_log.debug());
}

TEST_F(QVThreadTest, CommandsAreServedInOrderAndAnsweredOnRequest)
{
    start();
    EXPECT_EQ(70, m_thread->signal(7, true, true));
    EXPECT_EQ(70, m_thread->signal(CommandActor::KEEP, true, true));
    const int first = m_thread->signal(8, true, false);
    EXPECT_EQ(0, m_thread->signal(9, false, false));
    const int second = m_thread->signal(-3, true, false);
    EXPECT_EQ(first + 1, second);
    EXPECT_EQ(80, m_thread->readResponse(first));
    EXPECT_EQ(-30, m_thread->readResponse(second));
    EXPECT_EQ("", m_log.debug());
    EXPECT_EQ(0, m_thread->signal(5, false, true));
    EXPECT_EQ("WARNING: cannot block if you don't require a response!\n", m_log.debug());
    m_thread->signal(6, true, false);    // skipped by the next one
    EXPECT_EQ(10, m_thread->signal(1, true, true));
    EXPECT_EQ((std::vector<int>{7, CommandActor::KEEP, 8, 9, -3, 5, 6, 1}), m_actor.commands);
}

TEST_F(QVThreadTest, AllThreadsDrawFromOneCounter)
{
    start();
    CommandActor otherActor;
    QVThread other(otherActor, nullptr);
    ASSERT_EQ(0, other.init());
    const int first = m_thread->signal(1, true, false);
    EXPECT_EQ(first + 1, other.signal(1, true, false));
    other.signal(1, false, false);    // takes none
    EXPECT_EQ(first + 2, m_thread->signal(1, true, false));
}

TEST_F(QVThreadTest, PayloadsArriveUnchanged)
{
    start();
    std::string bytes(MAX_PAYLOAD_BYTES, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<char>(i * 7 + i / 256);
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{16}, std::size_t{4096}, bytes.size()}) {
        EXPECT_EQ(20, m_thread->signal(2, size, bytes.data(), true, true));
        EXPECT_TRUE(m_actor.payloads.back() == bytes.substr(0, size)) << size;
    }
    EXPECT_EQ(20, m_thread->signal(2, 100, nullptr, true, true));
    EXPECT_EQ(std::string(100, '\0'), m_actor.payloads.back());
}

TEST_F(QVThreadTest, OversizedPayloadEndsTheLoop)
{
    start();
    const std::string bytes(MAX_PAYLOAD_BYTES + 1, 'x');
    const int before = m_thread->signal(1, true, false);
    EXPECT_EQ(0, m_thread->signal(1, bytes.size(), bytes.data(), false, false));
    EXPECT_EQ(10, m_thread->readResponse(before));
    EXPECT_EQ(-1, m_thread->signal(1, true, true));
    EXPECT_EQ(-1, m_thread->kill());
    EXPECT_TRUE(m_thread->isRunning());
    EXPECT_EQ(0, m_thread->join());
    EXPECT_EQ(std::string("WARNING: invalid payload size 1048577 received!\n") + NOT_READ + NOT_READ, m_log.debug());
    EXPECT_EQ(1u, m_actor.commands.size());
    EXPECT_EQ(0, m_actor.kills);
}

TEST_F(QVThreadTest, CommandThatEndsTheThreadAnswersWhatIsWrittenAndNothingMore)
{
    start();
    const int before = m_thread->signal(1, true, false);
    const int ending = m_thread->signal(CommandActor::END, true, false);
    const int behind = m_thread->signal(2, true, false);
    EXPECT_EQ(0, m_thread->join());
    EXPECT_TRUE(m_thread->isDead());
    EXPECT_EQ(1, g_exits);
    EXPECT_EQ(10, m_thread->readResponse(before));
    EXPECT_EQ(1010, m_thread->readResponse(ending));
    EXPECT_EQ("", m_log.debug());
    EXPECT_EQ(-1, m_thread->readResponse(behind));
    EXPECT_EQ(0, m_thread->signal(3, 5, "lost", false, false));
    EXPECT_EQ(-1, m_thread->signal(4, true, true));
    EXPECT_EQ(std::string(NOT_READ) + NOT_READ, m_log.debug());
    EXPECT_EQ((std::vector<int>{1, CommandActor::END}), m_actor.commands);
}

TEST_F(QVThreadTest, DestructorLetsTheWorkerServeWhatItWasSentAndDie)
{
    start();
    for (int command = 0; command < 100; ++command)
        m_thread->signal(command, 3, "abc", command % 2 == 0, false);
    m_thread.reset();
    EXPECT_EQ(100u, m_actor.commands.size());
    EXPECT_EQ(1, m_actor.kills);
    EXPECT_EQ("", m_log.debug());
}

// The commands are sent before the worker starts, and the answers read after it ended: one order of lines.
TEST_F(QVThreadTest, DebugLevelTellsEveryStep)
{
    m_log.environment().setVerbosity(3);
    ASSERT_EQ(0, m_thread->init());
    const int id = m_thread->signal(CommandActor::END, 3, "abc", true, false);
    ASSERT_EQ(0, m_thread->start());
    m_thread->join();
    EXPECT_EQ(1010, m_thread->readResponse(id));

    std::string lines = m_log.debug();
    const std::string begin = "DEBUG: Thread has pid = ";
    const std::size_t pid = lines.find(begin) + begin.size();
    ASSERT_LT(pid, lines.size());
    lines.replace(pid, lines.find('\n', pid) - pid, "N");
    const std::string number = std::to_string(id);
    EXPECT_EQ("DEBUG: Inside pwr::QVThread::Channel::writeRequest_i, new socket pair size is 1\n"
              "DEBUG: Inside pwr::QVThread::Channel::writeRequest_i, new socket pair size is 2\n"
              "DEBUG: Thread has pid = N\n"
              "DEBUG: Inside pwr::QVThread::Channel::readRequest_i, socket pair size is 2\n"
              "DEBUG: OK, read payload size = 3\n"
              "DEBUG: Inside pwr::QVThread::Channel::readRequest_i, socket pair size is 1\n"
              "DEBUG: received command = 101\n"
              "DEBUG: OK, thread exiting\n"
              "DEBUG: SYNC!\n"
              "DEBUG: Inside pwr::QVThread::Channel::writeResponse_i, new socket pair size is 1\n"
              "DEBUG: OK, wrote response header\n"
              "DEBUG: Inside pwr::QVThread::Channel::readResponse_i, socket pair size is 1\n"
              "DEBUG: OK, read payload size = 0\n"
              "DEBUG: received msg id = " +
                  number + " (looking for id = " + number + ") in pwr::QVThread::readResponse\n",
              lines);
}

// Eight workers under one caller that kills them at any moment, and puts a new one in the place of each.
class Storm {
public:
    explicit Storm(unsigned seed) : m_random(seed)
    {
        for (Worker& worker : m_workers)
            renew(worker);
    }

    void step()
    {
        Worker& worker = m_workers[m_random() % std::size(m_workers)];
        const int command = static_cast<int>(m_random() % 100);
        const std::string payload(m_random() % 3 == 0 ? m_random() % 5000 : 0, 'p');
        switch (m_random() % 512) {
        case 0:
            EXPECT_EQ(77, worker.thread->kill());
            break;
        case 1:
            EXPECT_EQ(1010, worker.thread->signal(CommandActor::END, true, true));
            break;
        case 2:
            worker.thread->signal(CommandActor::END, false, false);
            break;
        case 3:
            break;    // destroyed while it works
        default:
            send(worker, command, payload, m_random() % 8);
            return;
        }
        renew(worker);
    }

private:
    struct Worker {
        std::unique_ptr<CommandActor> actor;
        std::unique_ptr<QVThread> thread;
    };

    void renew(Worker& worker)
    {
        worker.thread.reset();    // before its actor
        worker.actor = std::make_unique<CommandActor>();
        worker.thread = std::make_unique<QVThread>(*worker.actor, nullptr);
        ASSERT_EQ(0, worker.thread->init());
        ASSERT_EQ(0, worker.thread->start());
    }

    static void send(Worker& worker, int command, const std::string& payload, unsigned manner)
    {
        QVThread& thread = *worker.thread;
        if (manner == 0) {
            EXPECT_EQ(10 * command, thread.signal(command, payload.size(), payload.data(), true, true));
            EXPECT_TRUE(worker.actor->payloads.back() == payload);
        } else if (manner == 1) {
            const int id = thread.signal(command, payload.size(), payload.data(), true, false);
            thread.signal(1, false, false);
            EXPECT_EQ(10 * command, thread.readResponse(id));
        } else {
            EXPECT_EQ(0, thread.signal(command, payload.size(), payload.data(), false, false));
        }
    }

    std::mt19937 m_random;
    Worker m_workers[8];
};

TEST(QVThreadStormTest, KillsAtAnyMomentLoseNoAnswer)
{
    Storm storm(20240607);
    for (int i = 0; i < QUORVANE_STORM_COMMANDS; ++i)
        storm.step();
}

}    // namespace
