#include "runtime/os/Threads.h"

#include <gtest/gtest.h>

namespace {

using pwr::os::INVALID_HANDLE_CODE;
using pwr::os::systemThreads;
using pwr::os::ThreadHandle;
using pwr::os::Threads;

struct Shared {
    Threads& threads = systemThreads();
    ThreadHandle mutex = threads.createMutex();
    ThreadHandle go = threads.createEvent();
    ThreadHandle done = threads.createEvent();
    int count = 0;

    ~Shared()
    {
        for (const ThreadHandle handle : {mutex, go, done})
            EXPECT_EQ(0, threads.close(handle));
    }
};

// One round for each signal that gets through.
unsigned countRounds(void* argument)
{
    Shared& shared = *static_cast<Shared*>(argument);
    for (int round = 0; round < 200; ++round) {
        shared.threads.wait(shared.go);
        shared.threads.wait(shared.mutex);
        ++shared.count;
        shared.threads.setEventAndRelease(shared.done, shared.mutex);
    }
    return 0;
}

TEST(ThreadsTest, AnEventLetsOneWaiterThroughAndResetsItself)
{
    Shared shared;
    const ThreadHandle thread = shared.threads.startThread(&countRounds, &shared);
    ASSERT_NE(nullptr, thread);
    for (int round = 1; round <= 200; ++round) {
        EXPECT_EQ(0, shared.threads.setEvent(shared.go));
        EXPECT_EQ(0, shared.threads.wait(shared.done));
        EXPECT_EQ(0, shared.threads.wait(shared.mutex));
        EXPECT_EQ(round, shared.count);
        EXPECT_EQ(0, shared.threads.releaseMutex(shared.mutex));
    }
    EXPECT_EQ(0, shared.threads.wait(thread));
    EXPECT_EQ(0, shared.threads.wait(thread));    // still ended
    EXPECT_EQ(0, shared.threads.close(thread));
}

unsigned addUnderMutex(void* argument)
{
    Shared& shared = *static_cast<Shared*>(argument);
    for (int i = 0; i < 1000; ++i) {
        shared.threads.wait(shared.mutex);
        ++shared.count;
        shared.threads.releaseMutex(shared.mutex);
    }
    return 0;
}

TEST(ThreadsTest, AMutexHasOneOwner)
{
    Shared shared;
    ThreadHandle threads[3] = {};
    for (ThreadHandle& thread : threads)
        thread = shared.threads.startThread(&addUnderMutex, &shared);
    for (const ThreadHandle thread : threads) {
        ASSERT_EQ(0, shared.threads.wait(thread));
        shared.threads.close(thread);
    }
    EXPECT_EQ(3000, shared.count);
}

TEST(ThreadsTest, NullIsNoHandle)
{
    Threads& threads = systemThreads();
    EXPECT_EQ(INVALID_HANDLE_CODE, threads.wait(nullptr));
    EXPECT_EQ(INVALID_HANDLE_CODE, threads.releaseMutex(nullptr));
    EXPECT_EQ(INVALID_HANDLE_CODE, threads.setEvent(nullptr));
    EXPECT_EQ(INVALID_HANDLE_CODE, threads.setEventAndRelease(nullptr, nullptr));
    EXPECT_EQ(INVALID_HANDLE_CODE, threads.close(nullptr));
    EXPECT_GT(threads.processId(), 0);
}

}    // namespace
