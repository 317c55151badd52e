#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace host {

// The files by which a system tells about itself (/sys, /proc, /etc), below a root folder: "/" is the machine itself,
// any other folder a recorded tree. Nothing is kept open, every call reads anew.
//
//   SystemTree tree("/");
//   std::uint64_t microseconds;
//   if (tree.readNumber("/sys/devices/system/cpu/cpu0/cpuidle/state1/time", microseconds)) use(microseconds);
class SystemTree {
public:
    explicit SystemTree(const std::string& root);

    // Not a recorded tree: what the processor tells of itself holds for this system.
    bool isThisMachine() const { return m_prefix.empty(); }

    // Where the file really stands. `path` begins with "/".
    std::string realPath(const std::string& path) const { return m_prefix + path; }

    bool isFolder(const std::string& path) const;
    bool exists(const std::string& path) const;

    // All of a file, without the blanks and line ends behind. False, with `text` empty, when it can't be read.
    bool readText(const std::string& path, std::string& text) const;
    // A file that holds one whole number. False, with `value` left alone, for any other.
    bool readNumber(const std::string& path, std::uint64_t& value) const;
    bool readNumber(const std::string& path, std::int64_t& value) const;

    // The numbers between `prefix` and `suffix` in the names of the entries of a folder, ascending: "cpu0", "cpu7" give
    // 0 and 7. Numbers are plain: "cpu07" is none.
    std::vector<int> numberedEntries(const std::string& folder, const std::string& prefix,
                                     const std::string& suffix = "") const;

    // The whole text is one number. False, with `value` left alone, for any other.
    static bool parseNumber(const std::string& text, std::uint64_t& value);
    static bool parseNumber(const std::string& text, std::int64_t& value);

private:
    std::string m_prefix;    // in front of every path
};

}    // namespace host
