#include "collector/NumberPattern.h"

#include "machine/SystemTree.h"

#include <algorithm>
#include <charconv>

namespace host {

namespace {

constexpr char NUMBER = '*';

// Digits without a sign or leading zeros.
bool parsePlain(std::string_view digits, std::uint32_t& number)
{
    const char* end = digits.data() + digits.size();
    const auto [stop, code] = std::from_chars(digits.data(), end, number);
    return code == std::errc() && stop == end && (digits.size() == 1 || digits.front() != '0');
}

std::vector<std::string> componentsOf(const std::string& path)
{
    std::vector<std::string> components;
    for (std::size_t start = 1; start <= path.size();) {
        const std::size_t end = std::min(path.find('/', start), path.size());
        components.push_back(path.substr(start, end - start));
        start = end + 1;
    }
    return components;
}

std::vector<PathPattern::Place> stepInto(const std::vector<PathPattern::Place>& places, const NumberPattern& component,
                                         const SystemTree& tree)
{
    std::vector<PathPattern::Place> deeper;
    for (const PathPattern::Place& place : places) {
        const std::string folder = place.path + "/";
        if (!component.hasNumber()) {
            deeper.push_back({place.indices, folder + component.getPrefix()});
            continue;
        }
        for (const int number : tree.numberedEntries(folder, component.getPrefix(), component.getSuffix())) {
            PathPattern::Place next{place.indices,
                                    folder + component.getPrefix() + std::to_string(number) + component.getSuffix()};
            next.indices.add(static_cast<std::uint32_t>(number));
            deeper.push_back(next);
        }
    }
    return deeper;
}

}    // namespace

bool NumberPattern::set(const std::string& word)
{
    const std::size_t at = word.find(NUMBER);
    if (word.empty() || at != word.rfind(NUMBER)) return false;
    m_hasNumber = at != std::string::npos;
    m_prefix = word.substr(0, at);
    m_suffix = m_hasNumber ? word.substr(at + 1) : std::string();
    return true;
}

bool NumberPattern::matches(std::string_view word, Indices& indices) const
{
    if (!m_hasNumber) return word == m_prefix;
    if (word.size() <= m_prefix.size() + m_suffix.size() || !word.starts_with(m_prefix) || !word.ends_with(m_suffix)) {
        return false;
    }
    std::uint32_t number = 0;
    const std::size_t length = word.size() - m_prefix.size() - m_suffix.size();
    if (!parsePlain(word.substr(m_prefix.size(), length), number)) return false;
    indices.add(number);
    return true;
}

bool PathPattern::set(const std::string& text)
{
    if (!text.starts_with('/') || std::count(text.begin(), text.end(), NUMBER) > std::ptrdiff_t{Indices::MAX_COUNT})
        return false;
    std::vector<NumberPattern> components;
    for (const std::string& component : componentsOf(text)) {
        if (component == "." || component == ".." || !components.emplace_back().set(component)) return false;
    }
    m_text = text;
    m_components = components;
    return true;
}

std::vector<PathPattern::Place> PathPattern::find(const SystemTree& tree) const
{
    std::vector<Place> places;
    if (m_components.empty()) return places;
    places.emplace_back();
    for (const NumberPattern& component : m_components)
        places = stepInto(places, component, tree);
    return places;
}

std::string fillPattern(const std::string& pattern, const Indices& indices)
{
    std::string text = pattern;
    std::size_t at = std::string::npos;
    for (std::size_t left = indices.count; left > 0; --left) {
        at = text.rfind(NUMBER, at);
        if (at == std::string::npos) break;
        text.replace(at, 1, std::to_string(indices.values.at(left - 1)));
    }
    return text;
}

std::string numberedName(const std::string& pattern, const Indices& indices)
{
    const std::size_t number = indices.count > 0 ? pattern.rfind(NUMBER) : std::string::npos;
    const std::size_t start = pattern.rfind('/', number) + 1;    // 0 without one
    std::string name = pattern.substr(start, pattern.find('/', start) - start);
    Indices last;
    if (indices.count > 0) last.add(indices.values.at(indices.count - 1));
    return fillPattern(name, last);
}

}    // namespace host
