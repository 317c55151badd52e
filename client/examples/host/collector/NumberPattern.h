#pragma once

#include "records/QVBuffer.h"

#include <string>
#include <string_view>
#include <vector>

namespace host {

class SystemTree;

// A word in which one "*" may stand for a number in plain decimal digits: "cpu*" means "cpu0" and "cpu17", neither
// "cpu" nor "cpu017". There is no other special character.
class NumberPattern {
public:
    // False, with nothing changed, for an empty word and one with several "*".
    bool set(const std::string& word);

    bool hasNumber() const { return m_hasNumber; }
    const std::string& getPrefix() const { return m_prefix; }    // the whole word without a number
    const std::string& getSuffix() const { return m_suffix; }

    // True, with the number appended, for a word that it means.
    bool matches(std::string_view word, Indices& indices) const;

private:
    std::string m_prefix;
    std::string m_suffix;
    bool m_hasNumber = false;
};

// A path below the root of a system whose components are such words:
// "/sys/devices/system/cpu/cpu*/cpuidle/state*/time".
class PathPattern {
public:
    struct Place {
        Indices indices;
        std::string path;    // below the root
    };

    // False, with nothing changed, for a path that doesn't begin with "/", has an empty component, "." or "..", or more
    // than Indices::MAX_COUNT numbers.
    bool set(const std::string& text);
    const std::string& getText() const { return m_text; }    // empty until set

    // The places that the pattern means, in the order of their numbers. What stands behind the last "*" is not looked
    // for: a place may turn out to be missing.
    std::vector<Place> find(const SystemTree& tree) const;

private:
    std::string m_text;
    std::vector<NumberPattern> m_components;
};

// Puts the numbers in the place of the last "*" of a text, as many as there are numbers.
std::string fillPattern(const std::string& pattern, const Indices& indices);

// The last component of a path that has a number, with its number: "state2" of ".../cpu*/cpuidle/state*/time". The last
// component of a path without any.
std::string numberedName(const std::string& pattern, const Indices& indices);

}    // namespace host
