#include "runtime/os/Libraries.h"

#include <windows.h>

namespace pwr::os {

namespace {

class WindowsLibraries : public Libraries {
public:
    bool executablePath(std::string& path, unsigned long& lastError) override
    {
        char text[MAX_PATH];
        const DWORD length = GetModuleFileNameA(nullptr, text, sizeof text);
        lastError = length == 0 ? GetLastError() : 0;
        if (length == sizeof text) lastError = ERROR_INSUFFICIENT_BUFFER;    // cut
        if (lastError != 0 || length == 0) return false;
        path.assign(text, length);
        return true;
    }

    void setSearchDirectory(const std::string& directory) override { SetDllDirectoryA(directory.c_str()); }
    void addSearchDirectory(const std::wstring& directory) override { AddDllDirectory(directory.c_str()); }

    void* load(const std::string& path, unsigned long& lastError) override
    {
        HMODULE library = LoadLibraryA(path.c_str());
        lastError = library == nullptr ? GetLastError() : 0;
        const bool hasDirectory = path.find_first_of("\\/:") != std::string::npos;
        if (lastError != ERROR_MOD_NOT_FOUND || hasDirectory) return library;
        // The plain call knows nothing of the added directories, and this one of nothing else.
        library = LoadLibraryExA(path.c_str(), nullptr, LOAD_LIBRARY_SEARCH_USER_DIRS);
        if (library != nullptr) lastError = 0;
        return library;
    }

    void* symbol(void* library, const char* name) override
    {
        if (library == nullptr) return nullptr;    // it would stand for the program itself
        return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
    }

    void unload(void* library) override
    {
        if (library != nullptr) FreeLibrary(static_cast<HMODULE>(library));
    }

    unsigned long lastError() override { return GetLastError(); }
};

}    // namespace

Libraries& systemLibraries()
{
    static WindowsLibraries s_libraries;
    return s_libraries;
}

}    // namespace pwr::os
