#pragma once

#include "modules/PluginModule.h"

#include <filesystem>
#include <memory>
#include <string>

namespace host {

// A module's file, loaded while the object lives. Sources in posix/ and windows/.
class ModuleFile {
public:
    static const char* const EXTENSION;    // of the files that are modules: ".so" or ".dll"

    // Null, with the system's reason in `error`, for a file that can't be loaded. The path is absolute.
    static std::unique_ptr<ModuleFile> open(const std::filesystem::path& path, std::string& error);
    ~ModuleFile();
    ModuleFile(const ModuleFile&) = delete;
    ModuleFile& operator=(const ModuleFile&) = delete;

    QuorvaneModuleEntry findEntry() const;       // null: it has none
    void keepLoaded() { m_handle = nullptr; }    // for as long as the process lives

private:
    explicit ModuleFile(void* handle) : m_handle(handle) {}

    void* m_handle;
};

}    // namespace host
