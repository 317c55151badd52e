#pragma once

#include "runtime/Export.h"
#include "values/DataHandle.h"

#include <map>
#include <string>

namespace pwr {

// What is known of a process before anything refers to it.
struct QUORVANE_API ProcessDescription {
    ProcessDescription(int pid, unsigned long long startTime, int parentPid, const std::string& path);

    unsigned long long startTime;    // ticks
    int id;
    int relatedId;    // the parent process
    std::string text;
};

// What is known of a thread before anything refers to it.
struct QUORVANE_API ThreadDescription {
    ThreadDescription(int tid, unsigned long long startTime, int pid, const std::string& name);

    unsigned long long startTime;    // ticks
    int id;
    int relatedId;    // the process that owns the thread
    std::string text;
};

// A process of the measured system, made on first use. Owned by the registry.
//
//   ProcessManager::create(ProcessDescription(7, t0, 1, "/bin/x"));    // costs no identity yet
//   const Process* process = Process::get(7);                          // now it has one
class QUORVANE_API Process : public DataHandle {
public:
    // The process of this id; one with the path "unknown" when nothing is known of it. Null without a registry.
    static const Process* get(int pid);

    int getPid() const { return m_pid; }
    const std::string& getPath() const { return getName(); }
    int getParentPid() const { return m_parentPid; }
    unsigned long long getStartTime() const { return m_startTime; }    // ticks
    unsigned long long getEndTime() const { return m_endTime; }        // ticks; 0 while it runs

private:
    friend class ProcessManager;
    explicit Process(const ProcessDescription& description);

    int m_pid;
    unsigned long long m_startTime;
    unsigned long long m_endTime = 0;
    int m_parentPid;
};

// A thread of the measured system, made on first use. Owned by the registry.
class QUORVANE_API Thread : public DataHandle {
public:
    // As Process::get; an unknown thread is named "unknown" and owned by a process of its own id.
    static const Thread* get(int tid);

    int getTid() const { return m_tid; }
    int getPid() const { return m_pid; }
    unsigned long long getStartTime() const { return m_startTime; }    // ticks
    unsigned long long getEndTime() const { return m_endTime; }        // ticks; 0 while it runs

private:
    friend class ProcessManager;
    explicit Thread(const ThreadDescription& description);

    int m_tid;
    unsigned long long m_startTime;
    unsigned long long m_endTime = 0;
    int m_pid;
};

// Keeps descriptions of processes and threads until something refers to them: what is never referred to costs no
// identity. Emptied by UniqueId::destroy().
class QUORVANE_API ProcessManager {
public:
    // Keeps a copy until it is used or the process ends; the first description of an id stays. Returns 0.
    static int create(const ProcessDescription& description);
    static int create(const ThreadDescription& description);

    // One that was never referred to is forgotten; one that was is announced again with its end time (ticks). Returns
    // 0; 1 for an unknown id.
    static int addProcessEndTime(int pid, unsigned long long time);
    static int addThreadEndTime(int tid, unsigned long long time);

    const Process* getProcess(int pid);
    const Thread* getThread(int tid);

private:
    friend class Process;
    friend class Thread;
    friend class UniqueId;

    ProcessManager() = default;
    static ProcessManager& instance_i();
    void clear_i();

    template <typename Handle, typename Described>
    static const Handle* get_i(std::map<int, Handle*>& made, std::map<int, Described>& pending,
                               const Described& unknown);
    template <typename Handle, typename Described>
    static int addEndTime_i(std::map<int, Handle*>& made, std::map<int, Described>& pending, int id,
                            unsigned long long time);

    std::map<int, Process*> m_processes;    // the registry's
    std::map<int, Thread*> m_threads;
    std::map<int, ProcessDescription> m_pendingProcesses;
    std::map<int, ThreadDescription> m_pendingThreads;
};

}    // namespace pwr
