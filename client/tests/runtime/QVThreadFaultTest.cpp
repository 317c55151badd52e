#include "support/CommandActor.h"
#include "support/DoorGuard.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

// Under a sanitizer, too, memory that there is not is a null pointer and no end of the program.
extern "C" const char* __asan_default_options()
{
    return "allocator_may_return_null=1";
}
extern "C" const char* __tsan_default_options()
{
    return "allocator_may_return_null=1";
}

namespace {

using pwr::QVThread;
using pwr::os::ThreadHandle;

enum Operation { CREATE, START, WAIT, SIGNAL, CLOSE, OPERATIONS };
enum Side { CALLER, WORKER, SIDES };

// The real threads, of which the n-th call of one side may fail with a code.
class FailingThreads : public pwr::os::Threads {
public:
    // The next `nth` call fails, 1 being the first from now on. To be called while no worker runs.
    void failAt(Side side, Operation operation, int nth, int code = 8)
    {
        m_countdown[side][operation] = nth;
        m_code = code;
    }

    int openHandles() const { return m_open; }

    ThreadHandle createMutex() override { return fails(CREATE) ? nullptr : opened(m_real.createMutex()); }
    ThreadHandle createEvent() override { return fails(CREATE) ? nullptr : opened(m_real.createEvent()); }
    ThreadHandle startThread(unsigned (*entry)(void*), void* argument) override
    {
        return fails(START) ? nullptr : opened(m_real.startThread(entry, argument));
    }
    int wait(ThreadHandle handle) override { return fails(WAIT) ? m_code : m_real.wait(handle); }
    int releaseMutex(ThreadHandle mutex) override { return m_real.releaseMutex(mutex); }
    int setEvent(ThreadHandle event) override { return m_real.setEvent(event); }
    int setEventAndRelease(ThreadHandle event, ThreadHandle mutex) override
    {
        return fails(SIGNAL) ? m_code : m_real.setEventAndRelease(event, mutex);
    }
    int close(ThreadHandle handle) override
    {
        --m_open;
        const int code = m_real.close(handle);
        return fails(CLOSE) ? m_code : code;
    }
    int processId() override { return 1; }

private:
    bool fails(Operation operation)
    {
        const Side side = std::this_thread::get_id() == m_caller ? CALLER : WORKER;
        return --m_countdown[side][operation] == 0;
    }

    ThreadHandle opened(ThreadHandle handle)
    {
        m_open += handle != nullptr;
        return handle;
    }

    pwr::os::Threads& m_real = *pwr::os::current().threads;
    std::thread::id m_caller = std::this_thread::get_id();
    std::atomic<int> m_countdown[SIDES][OPERATIONS] = {};
    std::atomic<int> m_open{0};
    int m_code = 0;
};

class QVThreadFaultTest : public testing::Test {
protected:
    QVThreadFaultTest() { m_door->threads = &m_threads; }
    ~QVThreadFaultTest() override
    {
        m_thread.reset();
        EXPECT_EQ(0, m_threads.openHandles());
    }

    void start()
    {
        ASSERT_EQ(0, m_thread->init());
        ASSERT_EQ(0, m_thread->start());
    }

    std::string log()
    {
        const std::string text = m_log.debug();
        m_log.clear();
        return text;
    }

    FailingThreads m_threads;
    test::DoorGuard m_door;
    test::LogCapture m_log{2};
    test::CommandActor m_actor;
    std::unique_ptr<QVThread> m_thread = std::make_unique<QVThread>(m_actor, nullptr);
};

constexpr char NOT_READ[] = "WARNING: couldn't read response message header!\nWARNING: couldn't read response!\n";
constexpr char NO_HEADER[] = "WARNING: couldn't write request message header!\nWARNING: write error\n";

TEST_F(QVThreadFaultTest, InitWithoutPrimitivesLeavesNoneBehind)
{
    for (int nth = 1; nth <= 4; ++nth) {
        m_threads.failAt(CALLER, CREATE, nth);
        EXPECT_EQ(-1, m_thread->init()) << nth;
        EXPECT_EQ(0, m_threads.openHandles()) << nth;
        EXPECT_EQ(-1, m_thread->start()) << nth;
        EXPECT_EQ("WARNING: invalid thread state 0!\n", log());
    }
    m_actor.initResult = -1;
    EXPECT_EQ(-1, m_thread->init());
    EXPECT_EQ(0, m_threads.openHandles());
}

TEST_F(QVThreadFaultTest, ThreadThatCannotBeStartedMayBeStartedLater)
{
    ASSERT_EQ(0, m_thread->init());
    m_threads.failAt(CALLER, START, 1);
    EXPECT_EQ(-1, m_thread->start());
    EXPECT_FALSE(m_thread->isRunning());
    EXPECT_EQ(0, m_thread->start());
    EXPECT_EQ(20, m_thread->signal(2, true, true));
    EXPECT_EQ("", log());
}

TEST_F(QVThreadFaultTest, JoinTellsWhatClosingGaveUnlessTheHandleIsInvalid)
{
    const struct {
        int code;
        const char* text;
    } cases[] = {
        {5, "WARNING: failed to join QVThread and close the thread handle, error=5\n"},
        {6, ""},
    };
    for (const auto& c : cases) {
        m_thread = std::make_unique<QVThread>(m_actor, nullptr);
        start();
        m_thread->kill();
        m_threads.failAt(CALLER, CLOSE, 1, c.code);
        EXPECT_EQ(0, m_thread->join());
        EXPECT_EQ(c.text, log());
        EXPECT_EQ(0, m_thread->join());
        EXPECT_EQ("", log());
    }
}

TEST_F(QVThreadFaultTest, RequestThatCannotBeWrittenIsWhollyAbsent)
{
    start();
    for (const Operation operation : {WAIT, SIGNAL}) {
        m_threads.failAt(CALLER, operation, 1);
        EXPECT_EQ(-1, m_thread->signal(1, 3, "abc", true, true));
        EXPECT_EQ(NO_HEADER, log());
        EXPECT_EQ(20, m_thread->signal(2, true, true));
    }
    EXPECT_EQ(-1, m_thread->signal(1, 1ULL << 62, "more than there is memory", true, true));
    EXPECT_EQ("WARNING: couldn't write request message payload!\nWARNING: write error\n", log());
    EXPECT_EQ(20, m_thread->signal(2, true, true));
    EXPECT_EQ((std::vector<int>{2, 2, 2}), m_actor.commands);
}

TEST_F(QVThreadFaultTest, RequestThatCannotBeReadEndsTheLoopAndItsWaiters)
{
    const struct {
        int wait;    // event and mutex for the header, then for the payload
        const char* text;
    } cases[] = {
        {1, "WARNING: couldn't read request message header!\n"},
        {2, "WARNING: couldn't read request message header!\n"},
        {3, "WARNING: couldn't read request message payload!\n"},
        {4, "WARNING: couldn't read request message payload!\n"},
    };
    for (const auto& c : cases) {
        m_thread = std::make_unique<QVThread>(m_actor, nullptr);
        m_threads.failAt(WORKER, WAIT, c.wait);
        start();
        EXPECT_EQ(-1, m_thread->signal(1, 3, "abc", true, true));
        EXPECT_EQ(std::string(c.text) + NOT_READ, log());
        EXPECT_TRUE(m_thread->isRunning());
        EXPECT_EQ(-1, m_thread->kill());
        EXPECT_EQ(NOT_READ, log());
    }
    EXPECT_TRUE(m_actor.commands.empty());
}

TEST_F(QVThreadFaultTest, ResponseThatCannotBeWrittenIsLostAlone)
{
    const struct {
        Operation operation;
        int nth;    // two waits read the request
    } cases[] = {{WAIT, 3}, {SIGNAL, 1}};
    for (const auto& c : cases) {
        m_thread = std::make_unique<QVThread>(m_actor, nullptr);
        m_threads.failAt(WORKER, c.operation, c.nth);
        start();
        m_thread->signal(1, true, false);
        EXPECT_EQ(20, m_thread->signal(2, true, true));
        EXPECT_EQ("WARNING: couldn't write response message header!\n"
                  "WARNING: couldn't write response in run_i!\n",
                  log());
    }
}

TEST_F(QVThreadFaultTest, ResponseThatCannotBeReadStaysReadable)
{
    start();
    const int id = m_thread->signal(1, true, false);
    for (int nth = 1; nth <= 2; ++nth) {
        m_threads.failAt(CALLER, WAIT, nth);
        EXPECT_EQ(-1, m_thread->readResponse(id));
        EXPECT_EQ(NOT_READ, log());
    }
    EXPECT_EQ(10, m_thread->readResponse(id));
}

TEST_F(QVThreadFaultTest, DestructorEndsAWorkerThatCannotBeTold)
{
    start();
    m_threads.failAt(CALLER, WAIT, 1);
    m_thread.reset();
    EXPECT_TRUE(log().starts_with(NO_HEADER));
    EXPECT_EQ(0, m_actor.kills);
}

}    // namespace
