#include "runtime/EtwSession.h"

#include "runtime/OsInfo.h"
#include "runtime/os/TraceMerge.h"
#include "support/DoorGuard.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// What the merge function was given.
struct Merge {
    std::wstring output;
    std::vector<std::wstring> inputs;
    ULONG flags = 0;
    ULONG status = 0;    // to return
};
Merge* s_merge = nullptr;

ULONG mergeFunction(const wchar_t* output, const wchar_t** inputs, ULONG count, ULONG flags)
{
    s_merge->output = output;
    s_merge->inputs.assign(inputs, inputs + count);
    s_merge->flags = flags;
    return s_merge->status;
}

class FakeLibraries : public pwr::os::Libraries {
public:
    bool executablePath(std::string&, unsigned long&) override { return false; }
    void setSearchDirectory(const std::string&) override {}
    void addSearchDirectory(const std::wstring&) override {}
    void* load(const std::string& path, unsigned long& lastErrorOfLoad) override
    {
        loadedPath = path;
        lastErrorOfLoad = loadError;
        if (loadError == 0) ++open;
        return loadError == 0 ? this : nullptr;
    }
    void* symbol(void*, const char* name) override
    {
        return hasFunction && std::string(name) == "CreateMergedTraceFile" ? reinterpret_cast<void*>(&mergeFunction)
                                                                           : nullptr;
    }
    void unload(void* library) override
    {
        if (library != nullptr) --open;
    }
    unsigned long lastError() override { return 5; }

    std::string loadedPath;
    unsigned long loadError = 0;
    bool hasFunction = true;
    int open = 0;
};

class EtwMergeTest : public testing::Test, protected EtwSession {
protected:
    EtwMergeTest()
    {
        s_mergeFileList.clear();
        m_door->libraries = &m_libraries;
        s_merge = &m_merge;
    }
    ~EtwMergeTest() override { s_mergeFileList.clear(); }

    test::LogCapture m_log{2};
    test::DoorGuard m_door;
    FakeLibraries m_libraries;
    Merge m_merge;
};

TEST_F(EtwMergeTest, FilesOfAllSuffixesAreMergedOnAThread)
{
    EXPECT_FALSE(isMergeRequired());
    addMergeFile("_Kernel");
    addMergeFile("");
    EXPECT_TRUE(isMergeRequired());
    EXPECT_TRUE(mergeLogs("a.etl/r\xE9n.etl"));
    waitForMergeComplete();
    EXPECT_EQ(m_log.environment().getQuorvaneDirectory() + "KernelTraceControl.dll", m_libraries.loadedPath);
    const std::wstring rest = L"/r\xFFE9n.etl";    // each byte widened with its sign
    EXPECT_EQ((std::vector<std::wstring>{L"a_Kernel.etl" + rest, L"a.etl" + rest}), m_merge.inputs);
    EXPECT_EQ(L"a_Capture.etl" + rest, m_merge.output);
    EXPECT_EQ(0xFFFFFFFFU, m_merge.flags);
    EXPECT_EQ(0, m_libraries.open);
    EXPECT_TRUE(m_log.contains("Merging ETW files to \"a_Capture.etl/r\xE9n.etl\" started.\n"));
    EXPECT_TRUE(m_log.contains("Waiting for merge to complete.\n"));
    m_log.clear();
    waitForMergeComplete();
    EXPECT_EQ("", m_log.debug());
}

TEST_F(EtwMergeTest, PathWithoutTheEndingIsLengthened)
{
    addMergeFile("_User");
    s_mergedFilePath = "run";
    EXPECT_EQ(0U, mergeThread(nullptr));
    EXPECT_EQ((std::vector<std::wstring>{L"run_User"}), m_merge.inputs);
    EXPECT_EQ(L"run_Capture", m_merge.output);
}

TEST_F(EtwMergeTest, FailuresAreToldAndFreeTheLibrary)
{
    const std::string notLoaded = "WARNING: Unable to merge trace files because LoadLibrary() failed.\n";
    s_mergedFilePath = "run.etl";
    m_libraries.loadError = 126;
    EXPECT_EQ(126U, mergeThread(nullptr));
    EXPECT_EQ(notLoaded, m_log.debug());
    m_log.clear();

    m_libraries.loadError = 0;
    m_libraries.hasFunction = false;
    EXPECT_EQ(127U, mergeThread(nullptr));
    EXPECT_EQ(notLoaded, m_log.debug());
    EXPECT_EQ(0, m_libraries.open);
    m_log.clear();

    m_libraries.hasFunction = true;
    m_merge.status = 112;
    EXPECT_EQ(112U, mergeThread(nullptr));
    EXPECT_EQ("Merging ETW files to \"run_Capture.etl\" started.\n"
              "WARNING: Trace merge experienced an unknown error. (112: " +
                  formatErrorMessage(5) + ")\n",
              m_log.debug());
    EXPECT_EQ(0, m_libraries.open);
}

// Threads that never run, as many as there are left.
class FakeThreads : public pwr::os::Threads {
public:
    pwr::os::ThreadHandle createMutex() override { return nullptr; }
    pwr::os::ThreadHandle createEvent() override { return nullptr; }
    pwr::os::ThreadHandle startThread(unsigned (*)(void*), void*) override
    {
        if (left-- <= 0) return nullptr;
        ++open;
        return this;
    }
    int wait(pwr::os::ThreadHandle) override { return 0; }
    int releaseMutex(pwr::os::ThreadHandle) override { return 6; }
    int setEvent(pwr::os::ThreadHandle) override { return 6; }
    int setEventAndRelease(pwr::os::ThreadHandle, pwr::os::ThreadHandle) override { return 6; }
    int close(pwr::os::ThreadHandle) override
    {
        --open;
        return 0;
    }
    int processId() override { return 0; }

    int left = 0;
    int open = 0;
};

TEST_F(EtwMergeTest, ThreadThatCannotBeStartedIsToldByFalse)
{
    FakeThreads threads;
    m_door->threads = &threads;
    EXPECT_FALSE(mergeLogs("run.etl"));
    waitForMergeComplete();
    EXPECT_EQ("", m_log.debug());
}

TEST_F(EtwMergeTest, HandleOfAMergeThatNobodyWaitedForIsGivenBack)
{
    FakeThreads threads;
    threads.left = 2;
    m_door->threads = &threads;
    EXPECT_TRUE(mergeLogs("run.etl"));
    EXPECT_TRUE(mergeLogs("run.etl"));
    EXPECT_EQ(1, threads.open);
    waitForMergeComplete();
    EXPECT_EQ(0, threads.open);
}

}    // namespace
