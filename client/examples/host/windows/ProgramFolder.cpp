#include "system/ProgramFolder.h"

#include <cstddef>
#include <vector>
#include <windows.h>

namespace host {

std::string programFolder()
{
    constexpr std::size_t LONGEST = 32768;    // of any path
    std::vector<char> path(LONGEST);
    const DWORD length = GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (length == 0 || length == path.size()) return {};
    const std::string program(path.data(), length);
    return program.substr(0, program.find_last_of("\\/") + 1);
}

}    // namespace host
