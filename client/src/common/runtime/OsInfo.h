#pragma once

#include "runtime/Export.h"
#include "runtime/os/WindowsTypes.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

// What the host and the plugins fill the system's record from: registry, displays, versions, and the text forms that go
// with them. Everything but the list of displays works on its arguments alone.

// The local machine's registry. Where the system has none it is a table in the process, filled by
// QuorvaneHost::setRegistryNumber().
//
//   unsigned long long revision = 0;
//   if (Registry::RegReadDword("SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion", "UBR", revision)) show(revision);
class QUORVANE_API Registry {
public:
    // Reads a number of 32 bits. False, with `result` as it was, when the key or the value is not there, may not be
    // read or has another size.
    static bool RegReadDword(std::string key, std::string value, unsigned long long& result);

    // `text` from the first `from` on; all of it without one.
    static std::string NormalizeRegKey(const std::string& text, const std::string& from);

private:
    static bool RegError(long status);
};

// The display adapters with an active monitor. The list belongs to the process and to one thread at a time.
//
//   for (const auto& [adapter, monitor] : Display::GetActiveDisplayList()) use(adapter, monitor);
class QUORVANE_API Display {
public:
    virtual ~Display();

    // Enumerates the displays and appends those that are active, adapter and first monitor: the list is never cleared,
    // so each call adds all of them again.
    static std::vector<std::pair<DISPLAY_DEVICEA, DISPLAY_DEVICEA>>& GetActiveDisplayList();

    // Writes the list to the standard output as it stands.
    static void PrintActiveDisplayList();

private:
    static void EnumDisplays();

    static std::vector<std::pair<DISPLAY_DEVICEA, DISPLAY_DEVICEA>> m_active;
};

// The first three of the four numbers of a file's version.
struct qv_driver_version_info {
    std::uint16_t first;
    std::uint16_t second;
    std::uint16_t third;
};

// Reads the version of a program, library or driver file of Windows, on any system. False, with `version` as it was,
// for another file or one that can't be read.
QUORVANE_API bool getFileVersion(const wchar_t* path, qv_driver_version_info& version);

// Puts the version of the operating system into words: "Windows 10", "10.0 build 1234.5", "NT_SERVER". The number
// behind the build is the registry's update revision and missing without it.
QUORVANE_API void GetOsInfo(OSVERSIONINFOEXA info, std::string& name, std::string& version, std::string& type);

// The system's text for a Windows error code, with the line end that the system may put behind it; empty for a code
// without one. Only the low 32 bits count.
QUORVANE_API std::string formatErrorMessage(unsigned long code);

// A block of `size` bytes that is released with free(). Throws std::bad_alloc.
QUORVANE_API void* safeMalloc(unsigned int size);

// Fixed notation with `precision` digits behind the point.
QUORVANE_API std::string doubleToString(double value, int precision);

// One unit for each byte, right for ASCII only: a byte above 0x7F is extended by its sign to 16 bits (0xE9 becomes
// 0xFFE9).
QUORVANE_API std::wstring stringToWstring(const std::string& text);

// To UTF-8. Each unit is a character of its own: throws std::range_error("bad conversion") for a surrogate and for what
// is above 0x10FFFF.
QUORVANE_API std::string wStringToString(const std::wstring& text);
