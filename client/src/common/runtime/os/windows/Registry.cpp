#include "runtime/os/Registry.h"

#include <windows.h>

namespace pwr::os {

namespace {

class WindowsRegistry : public Registry {
public:
    long openKey(const char* path, void*& key) override
    {
        HKEY opened = nullptr;
        const long status = RegOpenKeyExA(HKEY_LOCAL_MACHINE, path, 0, KEY_QUERY_VALUE, &opened);
        key = status == ERROR_SUCCESS ? opened : nullptr;
        return status;
    }

    long queryValue(void* key, const char* name, void* data, std::uint32_t& sizeBytes) override
    {
        DWORD size = sizeBytes;
        const long status =
            RegQueryValueExA(static_cast<HKEY>(key), name, nullptr, nullptr, static_cast<BYTE*>(data), &size);
        sizeBytes = size;
        return status;
    }

    void closeKey(void* key) override { RegCloseKey(static_cast<HKEY>(key)); }

    bool store(const std::string&, const std::string&, const std::vector<unsigned char>&) override { return false; }
};

}    // namespace

Registry& systemRegistry()
{
    static WindowsRegistry s_registry;
    return s_registry;
}

}    // namespace pwr::os
