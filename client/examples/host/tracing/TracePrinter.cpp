#include "tracing/TracePrinter.h"

#include "tracing/TraceEvents.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <ostream>

namespace host {

namespace {

std::string padded(const std::string& text, std::size_t width)
{
    return text + std::string(width - std::min(width, text.size()), ' ');
}

std::string milliseconds(long long units100ns)
{
    char text[40];
    std::snprintf(text, sizeof text, "%12.3f ms", static_cast<double>(units100ns) / 10'000);
    return text;
}

}    // namespace

void TracePrinter::add(EVENT_RECORD& record)
{
    TraceMark mark;
    if (!readMark(record, mark)) return;
    const long long time = record.EventHeader.TimeStamp.QuadPart;
    if (!m_isStarted) m_start = time;
    m_isStarted = true;
    if (mark.isRound && ++m_rounds > MOST_ROUNDS) return;
    if (!mark.isRound) finish();
    print_i(milliseconds(time - m_start), mark.name, mark.text);
}

void TracePrinter::finish()
{
    if (m_rounds > MOST_ROUNDS) print_i("", "round", "and " + std::to_string(m_rounds - MOST_ROUNDS) + " more");
    m_rounds = 0;
}

void TracePrinter::print_i(const std::string& time, const std::string& name, const std::string& text)
{
    constexpr std::size_t TIME_WIDTH = 17;
    constexpr std::size_t NAME_WIDTH = 10;
    m_out << padded(time, TIME_WIDTH) << padded(name, NAME_WIDTH) << text << '\n';
}

}    // namespace host
