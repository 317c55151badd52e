#include "OutputConfigFile.h"

#include "runtime/pw_functions.h"

#include <filesystem>
#include <system_error>

namespace host {

std::string findOutputConfig(const std::string& programFolder)
{
    const std::string name = "output.conf";
    for (const std::string& folder :
         {std::string(QUORVANE_HOST_CONFIG_DIR "/"), programFolder + "config/", programFolder}) {
        if (isReadableFile(folder + name)) return folder + name;
    }
    return {};
}

bool isReadableFile(const std::string& path)
{
    std::error_code ignored;
    return !std::filesystem::is_directory(path, ignored) && pwr::pw_fileExists(path.c_str());
}

}    // namespace host
