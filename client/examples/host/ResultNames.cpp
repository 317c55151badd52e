#include "ResultNames.h"

#include "writers/Results.h"

#include <algorithm>

namespace host {

std::vector<pwr::usage::Option> resultOptions()
{
    std::vector<pwr::usage::Option> options;
    for (const ResultFormat& format : resultFormats())
        options.emplace_back(format.name, format.description, pwr::usage::TabLevel::LEVEL_1);
    return options;
}

std::string findUnknownResult(const std::vector<std::string>& names)
{
    const std::vector<ResultFormat> known = resultFormats();
    for (const std::string& name : names) {
        const auto isMeant = [&name](const ResultFormat& format) { return name == format.name; };
        if (std::none_of(known.begin(), known.end(), isMeant)) return name;
    }
    return {};
}

}    // namespace host
