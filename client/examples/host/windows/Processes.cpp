#include "Sources.h"

#include <string>
// In this order.
#include <windows.h>
#include <tlhelp32.h>

namespace host {

namespace {

class Handle {
public:
    explicit Handle(HANDLE handle) : m_handle(handle) {}
    ~Handle()
    {
        if (isOpen()) CloseHandle(m_handle);
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    bool isOpen() const { return m_handle != nullptr && m_handle != INVALID_HANDLE_VALUE; }
    HANDLE get() const { return m_handle; }

private:
    HANDLE m_handle;
};

// 0 for one that this program may not look at.
std::uint64_t startOf(DWORD id)
{
    const Handle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, id));
    FILETIME created = {};
    FILETIME exited = {};
    FILETIME kernel = {};
    FILETIME user = {};
    if (!process.isOpen() || !GetProcessTimes(process.get(), &created, &exited, &kernel, &user)) return 0;
    return static_cast<std::uint64_t>(created.dwHighDateTime) << 32U | created.dwLowDateTime;
}

std::string utf8Of(const wchar_t* text)
{
    char bytes[4 * MAX_PATH] = "";
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, bytes, sizeof(bytes), nullptr, nullptr);
    return size > 0 ? bytes : "";
}

}    // namespace

// One without threads has ended and is held by someone.
void readProcesses(const TakeItem& take)
{
    const Handle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof(entry);
    if (!snapshot.isOpen()) return;
    for (BOOL isThere = Process32FirstW(snapshot.get(), &entry); isThere;
         isThere = Process32NextW(snapshot.get(), &entry)) {
        const std::string name = utf8Of(entry.szExeFile);
        RecordItem row;
        row.indices.add(entry.th32ProcessID);
        row.text = name;
        row.numbers[0] = entry.th32ParentProcessID;
        row.numbers[1] = startOf(entry.th32ProcessID);
        row.numbers[2] = entry.cntThreads == 0 ? 1 : 0;
        row.numberCount = 3;
        take(row);
    }
}

}    // namespace host
