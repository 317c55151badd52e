#pragma once

#include "runtime/EtwSession.h"

#include <cstdint>
#include <iosfwd>
#include <string>

namespace host {

// Prints the host's events as they are replayed, a line each: milliseconds since the first one, what it is, and its
// text. Of a long row of rounds only the first ones are told, and how many there were.
//
//   TracePrinter printer(std::cout);
//   while (replayNext(record)) printer.add(record);    // times in units of 100 ns
//   printer.finish();
class TracePrinter {
public:
    static constexpr std::uint64_t MOST_ROUNDS = 100;

    explicit TracePrinter(std::ostream& out) : m_out(out) {}

    void add(EVENT_RECORD& record);    // others' events are passed over
    void finish();

private:
    void print_i(const std::string& time, const std::string& name, const std::string& text);

    std::ostream& m_out;
    bool m_isStarted = false;
    long long m_start = 0;
    std::uint64_t m_rounds = 0;    // printed and not
};

}    // namespace host
