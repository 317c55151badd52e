#pragma once

#include <string>

namespace test {

// A copy of a recorded tree (a folder below client/tests/host/data), free to be edited; gone at the end. Paths are
// relative to its root.
//
//   TreeCopy tree("four-cores");
//   tree.write("proc/stat", "cpu0 1 2 3 4\n");
class TreeCopy {
public:
    explicit TreeCopy(const std::string& name);
    ~TreeCopy();
    TreeCopy(const TreeCopy&) = delete;
    TreeCopy& operator=(const TreeCopy&) = delete;

    const std::string& root() const { return m_root; }
    void write(const std::string& path, const std::string& text) const;
    void remove(const std::string& path) const;
    // Puts a folder where a file stands: nobody can read it then.
    void makeUnreadable(const std::string& path) const;

    // The time counter of an idle state, in microseconds.
    void setIdle(int processor, int state, unsigned long long microseconds) const;

private:
    std::string m_root;
};

// A name for a file or folder that no test has used before, in the folder of the test run.
std::string freshPath(const std::string& name);

// All of a file; empty when it can't be read.
std::string contentOf(const std::string& path);

// The same of comma-separated values without the head of the results; empty when there is none.
std::string bodyOf(const std::string& path);

// Without the lines that begin so.
std::string withoutLinesOf(const std::string& text, const std::string& head);

}    // namespace test
