#pragma once

#include "writers/ResultHead.h"

#include <string>
#include <utility>
#include <vector>

namespace host {

// The frame of a report: everything that does not depend on what was measured. The page needs nothing from elsewhere,
// and tells browsers to fetch nothing and to run no script but its own.
struct HtmlPage {
    using Facts = std::vector<std::pair<std::string, std::string>>;    // what is known of the run: label and text

    // Up to the first section.
    static void begin(std::string& out, const std::string& title, const Facts& facts, const ResultHead& head);
    static void end(std::string& out);
};

}    // namespace host
