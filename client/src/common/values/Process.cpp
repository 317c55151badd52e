#include "values/Process.h"

#include "values/Description.h"
#include "values/IdManager.h"

#include <memory>

namespace pwr {

ProcessDescription::ProcessDescription(int pid, unsigned long long start, int parentPid, const std::string& path)
    : startTime(start), id(pid), relatedId(parentPid), text(path)
{
}

ThreadDescription::ThreadDescription(int tid, unsigned long long start, int pid, const std::string& name)
    : startTime(start), id(tid), relatedId(pid), text(name)
{
}

Process::Process(const ProcessDescription& description)
    : DataHandle(DataHandleType::PROCESS, Description(description.text, "")), m_pid(description.id),
      m_startTime(description.startTime), m_parentPid(description.relatedId)
{
}

const Process* Process::get(int pid)
{
    return ProcessManager::instance_i().getProcess(pid);
}

Thread::Thread(const ThreadDescription& description)
    : DataHandle(DataHandleType::THREAD, Description(description.text, "")), m_tid(description.id),
      m_startTime(description.startTime), m_pid(description.relatedId)
{
}

const Thread* Thread::get(int tid)
{
    return ProcessManager::instance_i().getThread(tid);
}

ProcessManager& ProcessManager::instance_i()
{
    static ProcessManager s_instance;
    return s_instance;
}

int ProcessManager::create(const ProcessDescription& description)
{
    instance_i().m_pendingProcesses.emplace(description.id, description);
    return 0;
}

int ProcessManager::create(const ThreadDescription& description)
{
    instance_i().m_pendingThreads.emplace(description.id, description);
    return 0;
}

// The object of the number: the one made before, else one made from what is known, else from `unknown`.
template <typename Handle, typename Described>
const Handle* ProcessManager::get_i(std::map<int, Handle*>& made, std::map<int, Described>& pending,
                                    const Described& unknown)
{
    const auto found = made.find(unknown.id);
    if (found != made.end()) return found->second;
    IdManager* registry = IdManager::instance();
    if (registry == nullptr) return nullptr;

    const auto announced = pending.extract(unknown.id);
    std::unique_ptr<Handle> handle(new Handle(announced.empty() ? unknown : announced.mapped()));
    made.emplace(unknown.id, handle.get());
    return registry->add(std::move(handle));
}

template <typename Handle, typename Described>
int ProcessManager::addEndTime_i(std::map<int, Handle*>& made, std::map<int, Described>& pending, int id,
                                 unsigned long long time)
{
    if (pending.erase(id) != 0) return 0;
    const auto found = made.find(id);
    if (found == made.end()) return 1;
    found->second->m_endTime = time;
    if (const IdManager* registry = IdManager::instanceIfAny()) registry->announce(*found->second);
    return 0;
}

const Process* ProcessManager::getProcess(int pid)
{
    return get_i(m_processes, m_pendingProcesses, ProcessDescription(pid, 0, 0, "unknown"));
}

const Thread* ProcessManager::getThread(int tid)
{
    return get_i(m_threads, m_pendingThreads, ThreadDescription(tid, 0, tid, "unknown"));
}

int ProcessManager::addProcessEndTime(int pid, unsigned long long time)
{
    ProcessManager& manager = instance_i();
    return addEndTime_i(manager.m_processes, manager.m_pendingProcesses, pid, time);
}

int ProcessManager::addThreadEndTime(int tid, unsigned long long time)
{
    ProcessManager& manager = instance_i();
    return addEndTime_i(manager.m_threads, manager.m_pendingThreads, tid, time);
}

void ProcessManager::clear_i()
{
    m_processes.clear();
    m_threads.clear();
    m_pendingProcesses.clear();
    m_pendingThreads.clear();
}

}    // namespace pwr
