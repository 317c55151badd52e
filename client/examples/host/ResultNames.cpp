#include "ResultNames.h"

#include "writers/Results.h"

#include <algorithm>

namespace host {

namespace {

std::vector<std::string> namesOfResults(const std::vector<ModuleWriter>& brought)
{
    std::vector<std::string> names;
    for (const ResultFormat& format : resultFormats())
        names.emplace_back(format.name);
    for (const ModuleWriter& writer : brought)
        names.push_back(writer.name);
    return names;
}

}    // namespace

std::vector<pwr::usage::Option> resultOptions(const std::vector<ModuleWriter>& brought)
{
    using pwr::usage::TabLevel;
    std::vector<pwr::usage::Option> options;
    for (const ResultFormat& format : resultFormats())
        options.emplace_back(format.name, format.description, TabLevel::LEVEL_1);
    for (const ModuleWriter& writer : brought) {
        const std::string file = writer.fileSuffix.empty() ? "" : ", in PREFIX" + writer.fileSuffix;
        options.emplace_back(writer.name, writer.description + file, TabLevel::LEVEL_1);
    }
    return options;
}

std::string findResultFault(const std::vector<std::string>& names, const std::vector<ModuleWriter>& brought)
{
    const std::vector<std::string> known = namesOfResults(brought);
    for (const std::string& name : names) {
        if (std::find(known.begin(), known.end(), name) != known.end()) continue;
        std::string fault = "there is no result '" + name + "': give --result some of ";
        for (const std::string& other : known)
            fault += (&other == &known.front() ? "" : ", ") + other;
        return fault;
    }
    return {};
}

}    // namespace host
