#pragma once

#include <string>
#include <vector>

namespace pwr {
class SystemMetadata;
}

namespace host {

// What stands in front of the results, line by line. It tells when the collection ended, so it is made then.
struct ResultHead {
    std::vector<std::string> tool;
    std::vector<std::string> collection;
    std::vector<std::string> hardware;

    std::vector<std::string> lines() const;    // of all three
};

ResultHead resultHead(const pwr::SystemMetadata& record, bool isPostProcessed);

}    // namespace host
