#include "writers/ResultHead.h"

#include "record/SystemMetadata.h"

#include <sstream>

namespace host {

namespace {

std::vector<std::string> linesOf(const std::string& text)
{
    std::istringstream in(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

}    // namespace

std::vector<std::string> ResultHead::lines() const
{
    std::vector<std::string> all = tool;
    all.insert(all.end(), collection.begin(), collection.end());
    all.insert(all.end(), hardware.begin(), hardware.end());
    return all;
}

ResultHead resultHead(const pwr::SystemMetadata& record, bool isPostProcessed)
{
    // The text on the hardware begins with the end of the line before it.
    return {linesOf(record.getVersionHeader(isPostProcessed)), linesOf(record.getCollectionHeader()),
            linesOf(record.getSystemHWHeader().substr(1))};
}

}    // namespace host
