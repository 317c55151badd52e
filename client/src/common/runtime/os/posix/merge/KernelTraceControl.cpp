// The merge library of this system: a module that is loaded by its name, with one function.

#include "runtime/os/TraceMerge.h"
#include "runtime/os/posix/WindowsCodes.h"
#include "runtime/os/posix/tracing/TraceMerger.h"

#include <cerrno>
#include <exception>
#include <string>
#include <vector>

namespace {

constexpr unsigned long NOT_ENOUGH_MEMORY = 8;
constexpr unsigned long INVALID_PARAMETER = 87;

// Callers widen paths byte by byte, with their signs: the low bytes are the path.
std::string narrowed(const wchar_t* path)
{
    std::string result;
    for (; *path != L'\0'; ++path) {
        result += static_cast<char>(*path & 0xFF);
    }
    return result;
}

unsigned long merge(const wchar_t* output, const wchar_t** inputs, ULONG count)
{
    if (output == nullptr || inputs == nullptr || count == 0) return INVALID_PARAMETER;
    std::vector<std::string> paths;
    for (ULONG i = 0; i < count; ++i) {
        if (inputs[i] == nullptr) return INVALID_PARAMETER;
        paths.push_back(narrowed(inputs[i]));
    }
    return pwr::os::trace::mergeTraceFiles(narrowed(output), paths);
}

}    // namespace

// Returns the Windows code, and leaves its counterpart in errno for callers that ask for the last error.
extern "C" __attribute__((visibility("default"))) ULONG
CreateMergedTraceFile(const wchar_t* output, const wchar_t** inputs, ULONG count, [[maybe_unused]] ULONG flags)
{
    unsigned long status = NOT_ENOUGH_MEMORY;
    try {
        status = merge(output, inputs, count);
    } catch (const std::exception&) {    // nothing may leave the module
    }
    errno = pwr::os::errnoOf(static_cast<std::uint32_t>(status));
    return static_cast<ULONG>(status);
}
