#pragma once

#include "metrics/Enum.h"

#include <cstddef>
#include <deque>
#include <list>
#include <string>
#include <vector>

namespace pwr {

// Which tables an accumulator makes, in which order: first those that the output configuration names, in its order (a
// name given twice makes two tables), then all others in the order of their numbers; without those that
// `isDisplayed(name)` turns off.
template <typename Summary, typename Predicate>
std::list<Summary> chooseSummaries(const std::deque<std::string>& configuredOrder, Predicate isDisplayed)
{
    std::list<Summary> chosen;
    std::vector<bool> isListed(Enum<Summary>::size(), false);
    for (const std::string& name : configuredOrder) {
        Summary summary{};
        if (!Enum<Summary>::valueOf(name, summary)) continue;
        chosen.push_back(summary);
        isListed[static_cast<std::size_t>(summary)] = true;
    }
    for (std::size_t i = 0; i < isListed.size(); ++i) {
        if (!isListed[i]) chosen.push_back(static_cast<Summary>(i));
    }
    chosen.remove_if([&isDisplayed](Summary summary) { return !isDisplayed(Enum<Summary>::nameOf(summary)); });
    return chosen;
}

}    // namespace pwr
