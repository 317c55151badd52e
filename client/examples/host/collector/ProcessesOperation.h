#pragma once

#include "collector/SourceOperation.h"
#include "machine/SystemTree.h"

namespace host {

// "PROCESSES": all processes of a system that tells about each in a folder of its number below /proc. Its category
// FIELD is ALL.
class ProcessesOperation : public SourceOperation {
public:
    explicit ProcessesOperation(const SystemTree& tree);

    int set(const std::string& category, const std::string& value) override;
    pwr::Operation* clone() const override { return new ProcessesOperation(*this); }

    std::string findFault() const override;
    std::string describe() const override { return m_tree.realPath("/proc/*/stat"); }
    std::unique_ptr<SourceReader> open() const override;

private:
    SystemTree m_tree;
};

}    // namespace host
