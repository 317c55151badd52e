#pragma once

#include "record/Metadata.h"
#include "record/Serializer.h"

#include <cstdlib>
#include <string>
#include <vector>

namespace test {

// Bytes as they stand in a file: pairs of hexadecimal digits, and texts in single quotes.
//
//   bytes("02 00 'ab'")    // a text of two characters behind its length
inline std::vector<char> bytes(const std::string& picture)
{
    std::vector<char> result;
    for (std::size_t i = 0; i < picture.size(); ++i) {
        if (picture[i] == ' ') continue;
        if (picture[i] == '\'') {
            while (picture[++i] != '\'') {
                result.push_back(picture[i]);
            }
        } else {
            result.push_back(static_cast<char>(std::strtoul(picture.substr(i++, 2).c_str(), nullptr, 16)));
        }
    }
    return result;
}

// The first `n` bytes: a file that was cut.
inline std::vector<char> cut(const std::vector<char>& whole, std::size_t n)
{
    return {whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(n)};
}

// A record as it stands in a file.
inline std::vector<char> written(const pwr::Metadata& record)
{
    pwr::Serializer out;
    record.serialize(out);
    return out.get_buffer();
}

inline pwr::Serializer stored(const std::string& picture)
{
    return pwr::Serializer(bytes(picture));
}

}    // namespace test
