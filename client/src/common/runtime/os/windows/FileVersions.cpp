#include "runtime/os/FileVersions.h"

#include <windows.h>

namespace pwr::os {

namespace {

class WindowsFileVersions : public FileVersions {
public:
    std::uint32_t informationSize(const wchar_t* path) override
    {
        DWORD unused = 0;
        return GetFileVersionInfoSizeExW(FILE_VER_GET_NEUTRAL, path, &unused);
    }

    bool readInformation(const wchar_t* path, std::uint32_t sizeBytes, void* block) override
    {
        return GetFileVersionInfoExW(FILE_VER_GET_NEUTRAL, path, 0, sizeBytes, block) != 0;
    }

    bool fileVersion(const void* block, std::uint32_t, std::uint32_t& high, std::uint32_t& low) override
    {
        void* root = nullptr;
        UINT size = 0;
        if (VerQueryValueW(block, L"\\", &root, &size) == 0) return false;
        if (root == nullptr || size < sizeof(VS_FIXEDFILEINFO)) return false;
        const auto* information = static_cast<const VS_FIXEDFILEINFO*>(root);
        if (information->dwSignature != VS_FFI_SIGNATURE) return false;
        high = information->dwFileVersionMS;
        low = information->dwFileVersionLS;
        return true;
    }
};

}    // namespace

FileVersions& systemFileVersions()
{
    static WindowsFileVersions s_fileVersions;
    return s_fileVersions;
}

}    // namespace pwr::os
