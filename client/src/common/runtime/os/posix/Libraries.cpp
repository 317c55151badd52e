#include "runtime/os/Libraries.h"
#include "runtime/os/posix/WindowsCodes.h"

#include <cerrno>
#include <vector>

#include <dlfcn.h>
#include <strings.h>
#include <unistd.h>

namespace pwr::os {

namespace {

constexpr unsigned long MODULE_NOT_FOUND = 126;
constexpr unsigned long NOT_A_LIBRARY = 193;
constexpr unsigned long BUFFER_TOO_SMALL = 122;
constexpr std::size_t PATH_BYTES = 260;

bool hasDirectory(const std::string& path)
{
    return path.find('/') != std::string::npos;
}

// "dir/Name.dll" is "dir/libName.so" here; any other name stays.
std::string moduleName(const std::string& path)
{
    const std::string ending = ".dll";
    const std::size_t name = path.rfind('/') + 1;    // 0 without a directory
    if (path.size() < name + ending.size()) return path;
    const std::size_t end = path.size() - ending.size();
    if (end == name || strcasecmp(path.c_str() + end, ending.c_str()) != 0) return path;
    return path.substr(0, name) + "lib" + path.substr(name, end - name) + ".so";
}

std::string narrowed(const std::wstring& text)
{
    std::string result;
    for (const wchar_t unit : text) {
        result += static_cast<char>(unit & 0xFF);
    }
    return result;
}

class PosixLibraries : public Libraries {
public:
    bool executablePath(std::string& path, unsigned long& lastError) override
    {
        char text[PATH_BYTES];
        const ssize_t length = readlink("/proc/self/exe", text, sizeof text);
        lastError = length < 0 ? static_cast<unsigned long>(windowsCode(errno)) : 0;
        if (length == static_cast<ssize_t>(sizeof text)) lastError = BUFFER_TOO_SMALL;
        if (lastError != 0) return false;
        path.assign(text, static_cast<std::size_t>(length));
        return true;
    }

    void setSearchDirectory(const std::string& directory) override { m_directory = directory; }
    void addSearchDirectory(const std::wstring& directory) override { m_added.push_back(narrowed(directory)); }

    void* load(const std::string& path, unsigned long& lastError) override
    {
        const std::string name = moduleName(path);
        void* library = name.empty() ? nullptr : open_i(name, lastError);
        if (name.empty()) lastError = MODULE_NOT_FOUND;    // an empty name would mean the program itself
        return library;
    }

    void* symbol(void* library, const char* name) override
    {
        return library != nullptr ? dlsym(library, name) : nullptr;
    }

    void unload(void* library) override
    {
        if (library != nullptr) dlclose(library);
    }

    unsigned long lastError() override { return static_cast<unsigned long>(windowsCode(errno)); }

private:
    void* open_i(const std::string& name, unsigned long& lastError)
    {
        if (hasDirectory(name)) return openFile_i(name, lastError);
        std::vector<std::string> directories = m_added;
        if (!m_directory.empty()) directories.insert(directories.begin(), m_directory);
        for (const std::string& directory : directories) {
            void* library = openFile_i(directory + "/" + name, lastError);
            if (library != nullptr || lastError != MODULE_NOT_FOUND) return library;
        }
        return openFile_i(name, lastError);
    }

    static void* openFile_i(const std::string& path, unsigned long& lastError)
    {
        lastError = 0;
        void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (library != nullptr) return library;
        const bool isThere = hasDirectory(path) && access(path.c_str(), F_OK) == 0;
        lastError = isThere ? NOT_A_LIBRARY : MODULE_NOT_FOUND;
        return nullptr;
    }

    std::string m_directory;
    std::vector<std::string> m_added;
};

}    // namespace

Libraries& systemLibraries()
{
    static PosixLibraries s_libraries;
    return s_libraries;
}

}    // namespace pwr::os
