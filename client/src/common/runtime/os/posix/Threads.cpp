#include "runtime/os/Threads.h"

#include "runtime/os/posix/WindowsCodes.h"

#include <memory>
#include <new>

#include <pthread.h>
#include <unistd.h>

namespace pwr::os {

namespace {

// What a handle points at. An operation that the kind does not have finds the handle invalid.
class Waitable {
public:
    Waitable() = default;
    virtual ~Waitable() = default;
    Waitable(const Waitable&) = delete;
    Waitable& operator=(const Waitable&) = delete;

    virtual int wait() = 0;
    virtual int release() { return INVALID_HANDLE_CODE; }
    virtual int set() { return INVALID_HANDLE_CODE; }
};

class Mutex : public Waitable {
public:
    ~Mutex() override { pthread_mutex_destroy(&m_mutex); }

    int wait() override { return windowsCode(pthread_mutex_lock(&m_mutex)); }
    int release() override { return windowsCode(pthread_mutex_unlock(&m_mutex)); }

private:
    pthread_mutex_t m_mutex = PTHREAD_MUTEX_INITIALIZER;
};

class Event : public Waitable {
public:
    ~Event() override
    {
        pthread_cond_destroy(&m_changed);
        pthread_mutex_destroy(&m_mutex);
    }

    int wait() override
    {
        pthread_mutex_lock(&m_mutex);
        while (!m_isSet)
            pthread_cond_wait(&m_changed, &m_mutex);
        m_isSet = false;
        pthread_mutex_unlock(&m_mutex);
        return 0;
    }

    int set() override
    {
        pthread_mutex_lock(&m_mutex);
        m_isSet = true;
        pthread_mutex_unlock(&m_mutex);
        pthread_cond_signal(&m_changed);    // outside: who wakes finds the mutex free
        return 0;
    }

private:
    pthread_mutex_t m_mutex = PTHREAD_MUTEX_INITIALIZER;
    pthread_cond_t m_changed = PTHREAD_COND_INITIALIZER;
    bool m_isSet = false;
};

class Thread : public Waitable {
public:
    ~Thread() override
    {
        if (m_isStarted && !m_isJoined) pthread_detach(m_thread);
    }

    bool start(unsigned (*entry)(void*), void* argument)
    {
        auto work = std::unique_ptr<Work>(new (std::nothrow) Work{entry, argument});
        if (!work || pthread_create(&m_thread, nullptr, &Thread::main_i, work.get()) != 0) return false;
        work.release();    // the thread's
        m_isStarted = true;
        return true;
    }

    int wait() override
    {
        if (m_isJoined) return 0;
        const int error = pthread_join(m_thread, nullptr);
        m_isJoined = error == 0;
        return windowsCode(error);
    }

private:
    struct Work {
        unsigned (*entry)(void*);
        void* argument;
    };

    static void* main_i(void* argument)
    {
        const auto work = std::unique_ptr<Work>(static_cast<Work*>(argument));
        work->entry(work->argument);
        return nullptr;
    }

    pthread_t m_thread{};
    bool m_isStarted = false;
    bool m_isJoined = false;
};

Waitable* waitable(ThreadHandle handle)
{
    return static_cast<Waitable*>(handle);
}

class PosixThreads : public Threads {
public:
    ThreadHandle createMutex() override { return handle_i(new (std::nothrow) Mutex); }
    ThreadHandle createEvent() override { return handle_i(new (std::nothrow) Event); }

    ThreadHandle startThread(unsigned (*entry)(void*), void* argument) override
    {
        auto thread = std::unique_ptr<Thread>(new (std::nothrow) Thread);
        return thread && thread->start(entry, argument) ? handle_i(thread.release()) : nullptr;
    }

    int wait(ThreadHandle handle) override
    {
        return handle != nullptr ? waitable(handle)->wait() : INVALID_HANDLE_CODE;
    }

    int releaseMutex(ThreadHandle mutex) override
    {
        return mutex != nullptr ? waitable(mutex)->release() : INVALID_HANDLE_CODE;
    }

    int setEvent(ThreadHandle event) override
    {
        return event != nullptr ? waitable(event)->set() : INVALID_HANDLE_CODE;
    }

    // A waiter that woke while the mutex is held would sleep again at once.
    int setEventAndRelease(ThreadHandle event, ThreadHandle mutex) override
    {
        if (event == nullptr) return INVALID_HANDLE_CODE;
        const int code = releaseMutex(mutex);
        return code == 0 ? setEvent(event) : code;
    }

    int close(ThreadHandle handle) override
    {
        delete waitable(handle);
        return handle != nullptr ? 0 : INVALID_HANDLE_CODE;
    }

    int processId() override { return static_cast<int>(getpid()); }

private:
    // A handle points at the base, whatever the kind.
    static ThreadHandle handle_i(Waitable* object) { return object; }
};

}    // namespace

Threads& systemThreads()
{
    static PosixThreads s_threads;
    return s_threads;
}

}    // namespace pwr::os
