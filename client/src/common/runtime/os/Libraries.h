#pragma once

#include <string>

namespace pwr::os {

// Libraries that are loaded while the program runs, and where they are looked for. Error codes are those of Windows on
// every system (126: module not found, 127: no such function, 193: not a library, 0: none).
//
// A path is asked for by its Windows name everywhere: where libraries are named otherwise, the file name "Name.dll"
// stands for "libName.so" in the same directory; any other name is taken as it is.
//
//   unsigned long lastError = 0;
//   void* library = os::current().libraries->load(directory + "KernelTraceControl.dll", lastError);
//   auto merge = reinterpret_cast<Merge>(os::current().libraries->symbol(library, "CreateMergedTraceFile"));
class Libraries {
public:
    virtual ~Libraries() = default;

    // The whole path of the running program. False, with `path` as it was, when the system can't tell or the path with
    // its end mark is longer than 260 bytes (then `lastError` is 122).
    virtual bool executablePath(std::string& path, unsigned long& lastError) = 0;

    // Names without a directory are looked for in `directory` (without trailing separator), which replaces the one set
    // before; then in the added ones and where the system looks by itself.
    virtual void setSearchDirectory(const std::string& directory) = 0;
    virtual void addSearchDirectory(const std::wstring& directory) = 0;

    // Null when the library can't be loaded: `lastError` tells why. Each load needs one `unload`.
    virtual void* load(const std::string& path, unsigned long& lastError) = 0;

    // The address of an exported function, null when there is none or `library` is null.
    virtual void* symbol(void* library, const char* name) = 0;

    // A null `library` is ignored.
    virtual void unload(void* library) = 0;

    // What a function of a loaded library left as the calling thread's error; asked right after that call.
    virtual unsigned long lastError() = 0;
};

Libraries& systemLibraries();

}    // namespace pwr::os
