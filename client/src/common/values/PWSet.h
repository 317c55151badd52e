#pragma once

#include <set>

namespace pwr {

// An ordered set of unique values, walked in ascending order; the order shows in saved records and in listings.
template <typename T>
using PWSet = std::set<T>;

}    // namespace pwr
