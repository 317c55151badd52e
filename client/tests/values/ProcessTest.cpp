#include "values/Process.h"

#include "support/TestSession.h"
#include "values/DataHandleProvider.h"

#include <gtest/gtest.h>

#include <vector>

namespace pwr {
namespace {

using Ids = std::vector<unsigned long long>;

class ProcessTest : public testing::Test {
protected:
    ProcessTest()
    {
        DataHandleProvider::addStream(session.stream);
        session.writer.clear();
    }

    test::TestSession session;
};

TEST_F(ProcessTest, WhatSomethingRefersToIsMadeThen)
{
    EXPECT_EQ(0, ProcessManager::create(ProcessDescription(7, 100, 1, "/bin/first")));
    EXPECT_EQ(0, ProcessManager::create(ProcessDescription(7, 200, 2, "/bin/second")));
    EXPECT_TRUE(session.writer.ids.empty());

    const Process* process = Process::get(7);
    EXPECT_EQ(7, process->getPid());
    EXPECT_EQ("/bin/first", process->getPath());
    EXPECT_EQ(1, process->getParentPid());
    EXPECT_EQ(100u, process->getStartTime());
    EXPECT_EQ(process, Process::get(7));
    EXPECT_EQ(std::vector<Ids>{{process->getId()}}, session.writer.ids);

    EXPECT_EQ(0, ProcessManager::create(ThreadDescription(70, 100, 7, "worker")));
    const Thread* thread = Thread::get(70);
    EXPECT_EQ(70, thread->getTid());
    EXPECT_EQ(7, thread->getPid());
    EXPECT_EQ("worker", thread->getName());
    EXPECT_EQ(100u, thread->getStartTime());
    EXPECT_EQ(thread, Thread::get(70));
    EXPECT_EQ(2u, session.writer.ids.size());
}

TEST_F(ProcessTest, WhatNobodyToldOfIsUnknown)
{
    const Process* process = Process::get(-3);
    EXPECT_EQ("unknown", process->getPath());
    EXPECT_EQ(-3, process->getPid());
    EXPECT_EQ(0, process->getParentPid());
    EXPECT_EQ(0u, process->getStartTime());
    EXPECT_EQ(process, Process::get(-3));

    const Thread* thread = Thread::get(9);
    EXPECT_EQ("unknown", thread->getName());
    EXPECT_EQ(9, thread->getTid());
    EXPECT_EQ(9, thread->getPid());
    EXPECT_EQ(2u, session.writer.ids.size());
}

TEST_F(ProcessTest, AnEndIsAnnouncedForThoseMadeAndForgetsTheOthers)
{
    ProcessManager::create(ProcessDescription(7, 100, 1, "/bin/x"));
    EXPECT_EQ(0, ProcessManager::addProcessEndTime(7, 500));
    EXPECT_EQ(1, ProcessManager::addProcessEndTime(7, 500));
    EXPECT_EQ("unknown", Process::get(7)->getPath());
    EXPECT_EQ(0u, Process::get(7)->getEndTime());
    session.writer.clear();
    EXPECT_EQ(0, ProcessManager::addProcessEndTime(7, 600));
    EXPECT_EQ(600u, Process::get(7)->getEndTime());
    EXPECT_EQ(std::vector<Ids>{{Process::get(7)->getId()}}, session.writer.ids);

    ProcessManager::create(ThreadDescription(70, 100, 7, "worker"));
    EXPECT_EQ(0, ProcessManager::addThreadEndTime(70, 500));
    EXPECT_EQ(1, ProcessManager::addThreadEndTime(70, 500));
    const Thread* thread = Thread::get(70);
    session.writer.clear();
    EXPECT_EQ(0, ProcessManager::addThreadEndTime(70, 700));
    EXPECT_EQ(700u, thread->getEndTime());
    EXPECT_EQ(std::vector<Ids>{{thread->getId()}}, session.writer.ids);
}

TEST_F(ProcessTest, ANumberUsedAgainIsPendingFirst)
{
    const Process* process = Process::get(7);
    ProcessManager::create(ProcessDescription(7, 900, 1, "/bin/next"));
    EXPECT_EQ(process, Process::get(7));
    EXPECT_EQ(0, ProcessManager::addProcessEndTime(7, 950));    // of the pending one
    EXPECT_EQ(0u, process->getEndTime());
    EXPECT_EQ(0, ProcessManager::addProcessEndTime(7, 960));
    EXPECT_EQ(960u, process->getEndTime());
}

TEST_F(ProcessTest, WithoutRegistryAPendingProcessIsKept)
{
    UniqueId::destroy();
    ProcessManager::create(ProcessDescription(7, 100, 1, "/bin/x"));
    EXPECT_EQ(nullptr, Process::get(7));
    UniqueId::initialize();
    EXPECT_EQ("/bin/x", Process::get(7)->getPath());
}

}    // namespace
}    // namespace pwr
