#include "machine/SystemTree.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>

namespace host {

namespace {

constexpr std::size_t MAX_FILE_SIZE = 16U << 20U;    // far above any of these files

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

bool readAll(std::FILE* file, std::string& text)
{
    char chunk[8192];
    while (const std::size_t got = std::fread(chunk, 1, sizeof(chunk), file)) {
        if (text.size() + got > MAX_FILE_SIZE) return false;
        text.append(chunk, got);
    }
    return std::ferror(file) == 0;    // a folder opens on some systems, and fails here
}

template <typename T>
bool parseWhole(const std::string& text, T& value)
{
    T parsed{};
    const char* end = text.data() + text.size();
    const auto [stop, code] = std::from_chars(text.data(), end, parsed);
    if (code != std::errc() || stop != end) return false;
    value = parsed;
    return true;
}

}    // namespace

SystemTree::SystemTree(const std::string& root) : m_prefix(root)
{
    while (m_prefix.ends_with('/'))
        m_prefix.pop_back();
}

bool SystemTree::isFolder(const std::string& path) const
{
    std::error_code ignored;
    return std::filesystem::is_directory(realPath(path), ignored);
}

bool SystemTree::exists(const std::string& path) const
{
    std::error_code ignored;
    return std::filesystem::exists(realPath(path), ignored);
}

bool SystemTree::readText(const std::string& path, std::string& text) const
{
    text.clear();
    const std::unique_ptr<std::FILE, FileCloser> file(std::fopen(realPath(path).c_str(), "rb"));
    if (!file || !readAll(file.get(), text)) {
        text.clear();
        return false;
    }
    text.erase(text.find_last_not_of(" \t\r\n") + 1);
    return true;
}

bool SystemTree::readNumber(const std::string& path, std::uint64_t& value) const
{
    std::string text;
    return readText(path, text) && parseNumber(text, value);
}

bool SystemTree::readNumber(const std::string& path, std::int64_t& value) const
{
    std::string text;
    return readText(path, text) && parseNumber(text, value);
}

std::vector<int> SystemTree::numberedEntries(const std::string& folder, const std::string& prefix,
                                             const std::string& suffix) const
{
    std::vector<int> numbers;
    std::error_code error;
    std::filesystem::directory_iterator entry(realPath(folder), error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (name.size() < prefix.size() + suffix.size() || !name.starts_with(prefix) || !name.ends_with(suffix))
            continue;
        const std::string digits = name.substr(prefix.size(), name.size() - prefix.size() - suffix.size());
        int number = 0;
        if (parseWhole(digits, number) && number >= 0 && std::to_string(number) == digits) numbers.push_back(number);
    }
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

bool SystemTree::parseNumber(const std::string& text, std::uint64_t& value)
{
    return parseWhole(text, value);
}

bool SystemTree::parseNumber(const std::string& text, std::int64_t& value)
{
    return parseWhole(text, value);
}

}    // namespace host
