#pragma once

#include <cstdio>
#include <memory>
#include <string>

namespace pwr::os {

struct StreamCloser {
    void operator()(FILE* stream) const { std::fclose(stream); }
};
using OwnedStream = std::unique_ptr<FILE, StreamCloser>;    // of what openStream() gave

// Files and directories. Error codes named `errnum` are those of <cerrno>; `lastError` is a Windows error code on every
// system (183: exists already, 3: path not found, 5: access denied, 0: none).
class Files {
public:
    virtual ~Files() = default;

    virtual char pathSeparator() const = 0;

    // Creates one directory, readable for all. False: `lastError` tells why, 183 when it exists already.
    virtual bool createDirectory(const std::string& path, int& lastError) = 0;

    // 0 with `isDirectory` told, else an errnum.
    virtual int queryDirectory(const std::string& path, bool& isDirectory) = 0;

    // Opens a stream; 0 with `*stream` set, else an errnum and null. Text modes are binary modes on every system.
    virtual int openStream(FILE** stream, const char* path, const char* mode) = 0;

    // Points an open stream at another file; 0 with `*result` the stream, else an errnum and null.
    virtual int reopenStream(FILE** result, const char* path, const char* mode, FILE* stream) = 0;

    // Opens a descriptor, shared with other openers, created for the owner to read and write; 0, else an errnum and -1.
    virtual int openDescriptor(int& fd, const char* path, int flags) = 0;

    // Makes the descriptor of `to` refer to the file of `from`; 0 or -1.
    virtual int duplicateDescriptor(FILE* from, FILE* to) = 0;
};

Files& systemFiles();    // the back end of this system

}    // namespace pwr::os
