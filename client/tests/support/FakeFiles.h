#pragma once

#include "runtime/os/Files.h"

#include <cerrno>
#include <map>
#include <string>
#include <vector>

namespace test {

// A file system that is not there: keeps the directories that it is asked to create, those of `failures` fail with the
// given Windows error code. Opening gives `stream`, once, or a denied access. For use with a DoorGuard.
class FakeFiles : public pwr::os::Files {
public:
    explicit FakeFiles(char separator) : m_separator(separator) {}

    char pathSeparator() const override { return m_separator; }
    bool createDirectory(const std::string& path, int& lastError) override
    {
        created.push_back(path);
        const auto found = failures.find(path);
        lastError = found != failures.end() ? found->second : 0;
        return lastError == 0;
    }
    int queryDirectory(const std::string&, bool&) override { return EACCES; }
    int openStream(FILE** opened, const char*, const char*) override
    {
        ++opens;
        *opened = stream;
        stream = nullptr;
        return *opened != nullptr ? 0 : EACCES;
    }
    int reopenStream(FILE**, const char*, const char*, FILE*) override { return EACCES; }
    int openDescriptor(int&, const char*, int) override { return EACCES; }
    int duplicateDescriptor(FILE*, FILE*) override { return -1; }

    std::vector<std::string> created;
    std::map<std::string, int> failures;
    FILE* stream = nullptr;    // the opener's to close
    int opens = 0;

private:
    char m_separator;
};

}    // namespace test
