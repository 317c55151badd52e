#include "system/ModuleFile.h"

#include <system_error>
#include <windows.h>

namespace host {

namespace {

// The system shows no box about a file that it can't load.
class QuietErrors {
public:
    QuietErrors() { SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &m_previous); }
    ~QuietErrors() { SetThreadErrorMode(m_previous, nullptr); }
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;

private:
    DWORD m_previous = 0;
};

}    // namespace

const char* const ModuleFile::EXTENSION = ".dll";

// What the module needs is looked for beside it first; the library is loaded already, and taken by its name.
std::unique_ptr<ModuleFile> ModuleFile::open(const std::filesystem::path& path, std::string& error)
{
    const QuietErrors quiet;
    HMODULE handle = LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (handle != nullptr) return std::unique_ptr<ModuleFile>(new ModuleFile(handle));
    const DWORD code = GetLastError();
    error = std::system_category().message(static_cast<int>(code)) + " (" + std::to_string(code) + ")";
    return nullptr;
}

ModuleFile::~ModuleFile()
{
    if (m_handle != nullptr) FreeLibrary(static_cast<HMODULE>(m_handle));
}

QuorvaneModuleEntry ModuleFile::findEntry() const
{
    const FARPROC entry = GetProcAddress(static_cast<HMODULE>(m_handle), QUORVANE_MODULE_ENTRY);
    return reinterpret_cast<QuorvaneModuleEntry>(reinterpret_cast<void*>(entry));
}

}    // namespace host
