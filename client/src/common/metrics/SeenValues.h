#pragma once

#include "values/Data.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace pwr {

// The distinct values that came, in first-seen order, found without a search through them. Each has a number to count
// under. Numbers go by Data::operator<, so that ranges with the same first end are two values and share one number, and
// all NaN are one value.
class SeenValues {
public:
    // A row of a value table. `number` is absent for a value that never came.
    struct Entry {
        const Data* value;
        std::optional<std::size_t> number;

        std::string text() const;    // as the value's formatter has it
    };

    // The number of the value, which joins the seen ones if it is new.
    std::size_t add(const Data& value);

    // The rows of a value table: the finite set in its order and then the other values as they came; without a finite
    // set, all values in ascending order. Valid while both live unchanged.
    std::vector<Entry> listedAfter(const std::vector<Data>& finiteSet) const;

private:
    // Data::operator<, and ranges it can't tell apart by their second ends.
    struct IsBelow {
        bool operator()(const Data& a, const Data& b) const;
    };
    using Numbers = std::map<Data, std::size_t, IsBelow>;

    std::size_t numberAt_i(Numbers::const_iterator entry);

    Numbers m_numbers;
    std::vector<Numbers::const_iterator> m_firstSeen;
    std::size_t m_nextNumber = 0;
};

// How often and for how long one entity and descriptor had each of the values that its group has seen.
class ValueTallies {
public:
    struct Tally {
        std::uint64_t count = 0;
        std::uint64_t time = 0;    // in the user's unit

        void add(std::uint64_t duration)
        {
            ++count;
            time += duration;
        }
    };

    void add(std::size_t number, std::uint64_t duration)
    {
        m_tallies[number].add(duration);
        m_all.add(duration);
    }

    Tally of(const SeenValues::Entry& value) const;    // zeros for a value that never came
    const Tally& ofAll() const { return m_all; }

private:
    std::unordered_map<std::size_t, Tally> m_tallies;    // by the value's number
    Tally m_all;
};

}    // namespace pwr
