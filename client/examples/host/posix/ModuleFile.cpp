#include "system/ModuleFile.h"

#include <dlfcn.h>

namespace host {

const char* const ModuleFile::EXTENSION = ".so";

std::unique_ptr<ModuleFile> ModuleFile::open(const std::filesystem::path& path, std::string& error)
{
    void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle != nullptr) return std::unique_ptr<ModuleFile>(new ModuleFile(handle));
    const char* reason = dlerror();
    error = reason != nullptr ? reason : "no reason was given";
    return nullptr;
}

ModuleFile::~ModuleFile()
{
    if (m_handle != nullptr) dlclose(m_handle);
}

QuorvaneModuleEntry ModuleFile::findEntry() const
{
    return reinterpret_cast<QuorvaneModuleEntry>(dlsym(m_handle, QUORVANE_MODULE_ENTRY));
}

}    // namespace host
