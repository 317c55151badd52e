#pragma once

#include "machine/Machine.h"
#include "machine/SystemTree.h"

namespace host {

// A machine that tells about itself by files below a root folder: "/" for this one, any other folder for a recorded
// tree of another. A recorded tree can be measured on every system.
class TreeMachine : public Machine {
public:
    explicit TreeMachine(const std::string& root) : m_tree(root) {}

    bool describe(pwr::SystemMetadata& record, std::vector<std::string>& remarks) const override;
    std::unique_ptr<Collector> makeCollector(MachineClock& clock) const override;

private:
    std::string textOr_i(const std::string& path, const std::string& fallback) const;
    std::string osName_i() const;
    void describeProcessor_i(pwr::SystemMetadata& record) const;
    void readCpuinfo_i(pwr::SystemMetadata& record) const;
    void readFrequencies_i(pwr::SystemMetadata& record) const;

    SystemTree m_tree;
};

}    // namespace host
