#include "TreeCopy.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace test {

namespace fs = std::filesystem;

TreeCopy::TreeCopy(const std::string& name) : m_root(freshPath(name))
{
    fs::copy(fs::path(QUORVANE_TESTS_DIR) / "host" / "data" / name, m_root, fs::copy_options::recursive);
}

TreeCopy::~TreeCopy()
{
    std::error_code ignored;
    fs::remove_all(m_root, ignored);
}

void TreeCopy::write(const std::string& path, const std::string& text) const
{
    fs::create_directories(fs::path(m_root + "/" + path).parent_path());
    std::ofstream(m_root + "/" + path, std::ios::binary) << text;
}

void TreeCopy::remove(const std::string& path) const
{
    fs::remove_all(m_root + "/" + path);
}

void TreeCopy::makeUnreadable(const std::string& path) const
{
    remove(path);
    fs::create_directories(m_root + "/" + path);
}

void TreeCopy::setIdle(int processor, int state, unsigned long long microseconds) const
{
    write("sys/devices/system/cpu/cpu" + std::to_string(processor) + "/cpuidle/state" + std::to_string(state) + "/time",
          std::to_string(microseconds) + "\n");
}

std::string freshPath(const std::string& name)
{
    static int s_count = 0;
    const std::string path = "host-test-" + std::to_string(++s_count) + "-" + name;
    fs::remove_all(path);    // what an earlier run left
    return path;
}

std::string contentOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string bodyOf(const std::string& path)
{
    const std::string text = contentOf(path);
    const std::size_t end = text.find("\"\n\n");
    return text.starts_with("\"-----") && end != std::string::npos ? text.substr(end + 3) : "";
}

std::string withoutLinesOf(const std::string& text, const std::string& head)
{
    std::istringstream lines(text);
    std::string rest;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with(head)) rest += line + '\n';
    }
    return rest;
}

}    // namespace test
