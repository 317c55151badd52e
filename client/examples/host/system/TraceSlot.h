#pragma once

namespace host {

// A small number that no other host on this machine has while the object lives, for the names of tracing sessions:
// where sessions are the system's, hosts that trace at the same time don't take over each other's. The number comes
// free with the end of the process, however it ends, so that the next host finds the sessions of one that crashed under
// their names, and stops them. Sources in posix/ and windows/.
class TraceSlot {
public:
    TraceSlot();
    ~TraceSlot();
    TraceSlot(const TraceSlot&) = delete;
    TraceSlot& operator=(const TraceSlot&) = delete;

    unsigned int getNumber() const { return m_number; }    // the lowest that is free

private:
    unsigned int m_number = 0;
    [[maybe_unused]] void* m_handle = nullptr;    // on Windows
};

// This process, as events of a trace bear it.
unsigned int ownProcessId();

}    // namespace host
