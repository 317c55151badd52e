#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace bench {

// The path of a configuration file to be written; removed at the end.
class ConfigPath {
public:
    ConfigPath();
    ~ConfigPath() { std::filesystem::remove(m_path); }
    ConfigPath(const ConfigPath&) = delete;
    ConfigPath& operator=(const ConfigPath&) = delete;

    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

// The floor of both configuration languages: each line of the file split into six texts. Returns how many lines.
std::int64_t splitLines(const std::string& path);

}    // namespace bench
