#pragma once

namespace pwr::os {

// A mutex, an event or a thread of this system. Only Threads makes and reads one.
using ThreadHandle = void*;

// Threads and what they wait for. Operations that return a code give 0, or the Windows code of the failure on every
// system: 6 stands for a handle that is none.
class Threads {
public:
    virtual ~Threads() = default;

    // A mutex that nobody owns. Null when the system refuses.
    virtual ThreadHandle createMutex() = 0;

    // An event that is not signalled, and is reset by the one waiter that it lets through. Null when the system
    // refuses.
    virtual ThreadHandle createEvent() = 0;

    // Starts a thread that calls `entry` with `argument` and ends with it. Null when the system refuses.
    virtual ThreadHandle startThread(unsigned (*entry)(void*), void* argument) = 0;

    // Sleeps without a limit until the mutex is taken, the event signalled or the thread ended. A thread has one waiter
    // at a time, and does not wait for itself.
    virtual int wait(ThreadHandle handle) = 0;

    virtual int releaseMutex(ThreadHandle mutex) = 0;
    virtual int setEvent(ThreadHandle event) = 0;

    // Both in one, in the order that suits the system: a waiter may be through before the mutex is free, or the mutex
    // be free before the event is signalled. After a failure the caller still holds the mutex.
    virtual int setEventAndRelease(ThreadHandle event, ThreadHandle mutex) = 0;

    // Gives the handle back; nobody may be using it. A running thread runs on.
    virtual int close(ThreadHandle handle) = 0;

    virtual int processId() = 0;
};

Threads& systemThreads();

inline constexpr int INVALID_HANDLE_CODE = 6;

}    // namespace pwr::os
