#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <iosfwd>

namespace host {

// One line on a terminal that tells how far the collection is, written anew some times a second and wiped at the end.
class Progress {
public:
    // Silent when not `enabled`; colours are escape sequences.
    Progress(std::ostream& out, bool enabled, bool usesColour = false)
        : m_out(out), m_isEnabled(enabled), m_usesColour(usesColour)
    {
    }
    ~Progress() { wipe(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Of 0 seconds in all nobody knows how many there will be.
    void show(double elapsedSeconds, double totalSeconds, std::uint64_t samples);
    void wipe();

private:
    std::ostream& m_out;
    bool m_isEnabled;
    bool m_usesColour;
    std::size_t m_shown = 0;    // characters on the line
    std::chrono::steady_clock::time_point m_next{};
};

}    // namespace host
