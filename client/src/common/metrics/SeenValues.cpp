#include "metrics/SeenValues.h"

#include <iterator>
#include <set>

namespace pwr {

namespace {

bool isRange(DataType type)
{
    return type == DataType::INT_RANGE || type == DataType::UINT_RANGE || type == DataType::REAL_RANGE;
}

Data secondEnd(const Data& range)
{
    std::pair<long long, long long> ints{};
    std::pair<unsigned long long, unsigned long long> uints{};
    std::pair<double, double> reals{};
    switch (range.getType()) {
    case DataType::INT_RANGE:
        range.toIntRange(ints);
        return Data(ints.second);
    case DataType::UINT_RANGE:
        range.toUIntRange(uints);
        return Data(uints.second);
    default:
        range.toRealRange(reals);
        return Data(reals.second);
    }
}

}    // namespace

bool SeenValues::IsBelow::operator()(const Data& a, const Data& b) const
{
    if (a < b) return true;
    if (!isRange(a.getType()) || b < a) return false;
    return secondEnd(a) < secondEnd(b);
}

std::string SeenValues::Entry::text() const
{
    std::string text;
    value->toFormattedString(text);
    return text;
}

std::size_t SeenValues::add(const Data& value)
{
    const auto place = m_numbers.lower_bound(value);
    if (place != m_numbers.end() && !IsBelow()(value, place->first)) return place->second;
    const auto entry = m_numbers.emplace_hint(place, value, 0);
    entry->second = numberAt_i(entry);
    m_firstSeen.push_back(entry);
    return entry->second;
}

// Values that share a number are neighbours.
std::size_t SeenValues::numberAt_i(Numbers::const_iterator entry)
{
    if (isRange(entry->first.getType())) {
        const auto next = std::next(entry);
        if (next != m_numbers.end() && !(entry->first < next->first)) return next->second;
        if (entry != m_numbers.begin()) {
            const auto previous = std::prev(entry);
            if (!(previous->first < entry->first)) return previous->second;
        }
    }
    return m_nextNumber++;
}

std::vector<SeenValues::Entry> SeenValues::listedAfter(const std::vector<Data>& finiteSet) const
{
    std::vector<Entry> entries;
    entries.reserve(finiteSet.size() + m_numbers.size());
    if (finiteSet.empty()) {
        for (const auto& [value, number] : m_numbers)
            entries.push_back({&value, number});
        return entries;
    }

    std::set<Data, IsBelow> finite;
    for (const Data& value : finiteSet) {
        const auto found = m_numbers.find(value);
        entries.push_back({&value, {}});
        if (found != m_numbers.end()) entries.back().number = found->second;
        finite.insert(value);
    }
    for (const auto& entry : m_firstSeen) {
        if (finite.count(entry->first) == 0) entries.push_back({&entry->first, entry->second});
    }
    return entries;
}

ValueTallies::Tally ValueTallies::of(const SeenValues::Entry& value) const
{
    if (!value.number.has_value()) return {};
    const auto found = m_tallies.find(*value.number);
    return found != m_tallies.end() ? found->second : Tally();
}

}    // namespace pwr
