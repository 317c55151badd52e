#pragma once

#include "runtime/Export.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

namespace pwr {

class Channel;
struct MessageHeader;

enum class QVThreadState : std::uint32_t {
    CREATED = 0,        // constructed; init not called, or failed
    INITIALIZED = 1,    // ready to start
    RUNNING = 2,        // started, or being started
    DEAD = 3,           // told to end; no way back
};

// What a worker does, given by its user: initActor runs on the thread that calls QVThread::init, the other two on the
// worker's. They throw nothing, and never wait for their own worker (no blocking signal, kill, join or destruction).
class QUORVANE_API QVThreadActor {
public:
    QVThreadActor() = default;
    virtual ~QVThreadActor();
    QVThreadActor(const QVThreadActor&) = default;
    QVThreadActor& operator=(const QVThreadActor&) = default;

    // Serves one command. `payload` has `payloadSize` bytes (at most 1 MiB) that last as long as the call; null without
    // any. `result` is what the caller gets to read; it still holds the result of the command before, 0 for the first.
    // 1 ends the thread, any other value goes on.
    virtual int handleCommand(int command, unsigned payloadSize, const void* payload, int* result) = 0;

    // The worker was told to die. The return value is what `kill` returns.
    virtual int handleKill() = 0;

    // 0 when the actor is ready.
    virtual int initActor() = 0;
};

// One worker thread that serves numbered commands, in the order in which they were sent. The actor is not owned and
// outlives the thread. All operations belong to one caller's thread, and QVThreads that are used for responses share
// it, since all draw message ids from one plain counter; isRunning and isDead may be asked anywhere. At debug and
// warning level the worker logs too: loggers have no lock of their own.
//
//   QVThread thread(actor, nullptr);
//   if (thread.init() != 0 || thread.start() != 0) return -1;
//   const int answer = thread.signal(READ_SENSOR, true, true);    // waits for the actor's result
//
// A worker whose loop has ended answers nothing more: what waits for it, or asks later, gets -1 and
// "WARNING: couldn't read response!"; responses that it had written before can still be read.
class QUORVANE_API QVThread {
public:
    // `exitCallback` may be null. It runs on the worker, once, when a command ends the thread; not when it is killed.
    QVThread(QVThreadActor& actor, void (*exitCallback)(void));

    // Tells a running thread to die, after the commands sent so far, and waits for it.
    virtual ~QVThread();
    QVThread(const QVThread&) = delete;
    QVThread& operator=(const QVThread&) = delete;

    // Makes the queues and asks the actor. 0; or -1: the actor or the system refused, and everything is freed, or the
    // thread was started already, which stays as it is (logged).
    int init();

    // 0; or -1: not INITIALIZED (logged), or the system gives no thread, and the state stays INITIALIZED.
    int start();

    // Sends a command. With `needResponse` and `block` it waits for the worker and returns the command's result. With
    // `needResponse` alone it returns the message's id for readResponse; otherwise 0 at once. -1 when the message could
    // not be written or the answer not be read (logged). `block` without `needResponse` warns and does not block. What
    // is sent between init and start is served after start: nobody should block for it.
    int signal(int command, bool needResponse, bool block);

    // As above with a copy of `payload`; null sends zeros. A payload of more than 1 MiB ends the worker's loop.
    int signal(int command, unsigned long long payloadSize, const void* payload, bool needResponse, bool block);

    // Waits for the response to the message `id` and returns the command's result, or -1 (logged) when the worker has
    // ended without one. Responses come in the order of sending: those before `id` are dropped.
    int readResponse(int id);

    // Ends a running thread after the commands sent so far and returns what its actor's handleKill gave. -1: not
    // running (logged), or the worker's loop ended before it saw this.
    int kill();

    // Waits for the worker to end and gives its handle back. Always 0, at once when there is none.
    int join();

    // As join: there is no limit.
    int timedJoin(long timeout);

    bool isRunning() const;
    bool isDead() const;

private:
    QVThreadState getState_i() const;
    void destroy_i();
    int run_i();
    void serve_i(const std::vector<char>& message, int& result);
    void die_i(int& result);
    void handle_i(const MessageHeader& header, const char* payload, int& result);
    int signal_i(int control, int command, unsigned long long payloadSize, const void* payload, bool needResponse,
                 bool block);
    static unsigned run(void* self);

    QVThreadActor& m_actor;
    std::atomic<QVThreadState> m_state{QVThreadState::CREATED};
    std::unique_ptr<Channel> m_channel;
    void* m_thread = nullptr;    // the system's handle; null until started and after join
    void (*m_exitCallback)(void);
};

}    // namespace pwr
