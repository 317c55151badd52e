#include "ConfigFiles.h"

#include "runtime/pw_functions.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace host {

namespace {

namespace fs = std::filesystem;

const std::string OUTPUT_CONFIG = "output.conf";

std::vector<std::string> ownFolders(const std::string& programFolder)
{
    return {programFolder + "config/", programFolder};
}

bool isSameFile(const fs::path& a, const std::string& b)
{
    std::error_code ignored;
    return !b.empty() && fs::equivalent(a, b, ignored);
}

}    // namespace

std::string findOutputConfig(const std::string& programFolder)
{
    for (const std::string& folder : ownFolders(programFolder)) {
        if (isReadableFile(folder + OUTPUT_CONFIG)) return folder + OUTPUT_CONFIG;
    }
    return {};
}

std::string findCollectorConfig(const std::string& programFolder)
{
    for (const std::string& folder : ownFolders(programFolder)) {
        if (!listCollectorConfig(folder, "").empty()) return folder;
    }
    return {};
}

std::vector<std::string> listCollectorConfig(const std::string& folder, const std::string& outputConfig)
{
    std::vector<std::string> files;
    std::error_code error;
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        const fs::path& path = entry->path();
        std::error_code ignored;
        if (path.extension() != ".conf" || path.filename() == OUTPUT_CONFIG || isSameFile(path, outputConfig) ||
            entry->is_directory(ignored)) {
            continue;
        }
        files.push_back(path.string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

bool isReadableFile(const std::string& path)
{
    std::error_code ignored;
    return !fs::is_directory(path, ignored) && pwr::pw_fileExists(path.c_str());
}

}    // namespace host
