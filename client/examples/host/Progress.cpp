#include "Progress.h"

#include "runtime/pw_functions.h"

#include <ostream>
#include <string>

namespace host {

void Progress::show(double elapsedSeconds, double totalSeconds, std::uint64_t samples)
{
    const auto now = std::chrono::steady_clock::now();
    if (!m_isEnabled || now < m_next) return;
    m_next = now + std::chrono::milliseconds(200);
    char line[128];
    const auto count = static_cast<unsigned long long>(samples);
    if (totalSeconds > 0) {
        pw_snprintf(line, sizeof(line), "%.1f of %.1f s, %llu samples", elapsedSeconds, totalSeconds, count);
    } else {
        pw_snprintf(line, sizeof(line), "%.1f s, %llu samples, Ctrl-C ends it", elapsedSeconds, count);
    }
    std::string text = line;
    const std::size_t length = text.size();
    text.resize(length < m_shown ? m_shown : length, ' ');
    m_shown = length;
    m_out << '\r' << (m_usesColour ? "\033[36m" : "") << text << (m_usesColour ? "\033[0m" : "") << std::flush;
}

void Progress::wipe()
{
    if (m_shown == 0) return;
    m_out << '\r' << std::string(m_shown, ' ') << '\r' << std::flush;
    m_shown = 0;
}

}    // namespace host
