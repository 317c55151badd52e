#pragma once

#include <cstddef>
#include <string>

namespace host {

// Width in characters of the console; 80 without one.
std::size_t consoleWidth();

// All options from the tool's description, those that only this host has, result formats and features, in lines below
// `width` characters. No word is broken: very narrow consoles get longer lines.
std::string helpText(std::size_t width);

}    // namespace host
