#include "system/TraceSlot.h"

#include <string>
#include <windows.h>

namespace host {

namespace {

constexpr unsigned int MOST = 64;    // sessions that the system has room for

// An object of the system goes with the last process that has it open. False when it is another's; one that may not be
// opened is another user's. Without such objects all is free, with a null handle.
bool take(unsigned int number, void*& handle)
{
    const std::string name = "Global\\QuorvaneHostTrace" + std::to_string(number);
    SetLastError(ERROR_SUCCESS);
    handle = CreateMutexA(nullptr, FALSE, name.c_str());
    const DWORD code = GetLastError();
    if (handle == nullptr) return code != ERROR_ACCESS_DENIED;
    if (code != ERROR_ALREADY_EXISTS) return true;
    CloseHandle(handle);
    handle = nullptr;
    return false;
}

}    // namespace

TraceSlot::TraceSlot()
{
    while (m_number < MOST && !take(m_number, m_handle))
        ++m_number;
}

TraceSlot::~TraceSlot()
{
    if (m_handle != nullptr) CloseHandle(m_handle);
}

unsigned int ownProcessId()
{
    return static_cast<unsigned int>(GetCurrentProcessId());
}

}    // namespace host
