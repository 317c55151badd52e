#include "runtime/os/Threads.h"

#include <memory>
#include <new>

#include <windows.h>
#include <process.h>

namespace pwr::os {

namespace {

struct Work {
    unsigned (*entry)(void*);
    void* argument;
};

unsigned __stdcall threadMain(void* argument)
{
    const Work work = *static_cast<Work*>(argument);
    delete static_cast<Work*>(argument);
    _endthreadex(work.entry(work.argument));
    return 0;
}

int codeOf(BOOL done)
{
    return done ? 0 : static_cast<int>(GetLastError());
}

class WindowsThreads : public Threads {
public:
    ThreadHandle createMutex() override { return CreateMutexA(nullptr, FALSE, nullptr); }
    ThreadHandle createEvent() override { return CreateEventA(nullptr, FALSE, FALSE, nullptr); }

    ThreadHandle startThread(unsigned (*entry)(void*), void* argument) override
    {
        auto work = std::unique_ptr<Work>(new (std::nothrow) Work{entry, argument});
        if (!work) return nullptr;
        const auto thread = _beginthreadex(nullptr, 0, &threadMain, work.get(), 0, nullptr);
        if (thread == 0) return nullptr;
        work.release();    // the thread's
        return reinterpret_cast<ThreadHandle>(thread);
    }

    int wait(ThreadHandle handle) override
    {
        // An abandoned mutex is taken like a free one.
        return codeOf(WaitForSingleObject(handle, INFINITE) != WAIT_FAILED);
    }

    int releaseMutex(ThreadHandle mutex) override { return codeOf(ReleaseMutex(mutex)); }
    int setEvent(ThreadHandle event) override { return codeOf(SetEvent(event)); }
    int setEventAndRelease(ThreadHandle event, ThreadHandle mutex) override
    {
        const int code = setEvent(event);
        return code == 0 ? releaseMutex(mutex) : code;
    }

    int close(ThreadHandle handle) override { return codeOf(CloseHandle(handle)); }
    int processId() override { return _getpid(); }
};

}    // namespace

Threads& systemThreads()
{
    static WindowsThreads s_threads;
    return s_threads;
}

}    // namespace pwr::os
