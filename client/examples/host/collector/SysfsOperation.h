#pragma once

#include "collector/NumberPattern.h"
#include "collector/SourceOperation.h"
#include "machine/SystemTree.h"

namespace host {

// "SYSFS": files below /sys that hold one value each.
//
//   PATH    the files, see PathPattern
//   FIELD   what a file holds: NUMBER (one whole number, the default) or TEXT
class SysfsOperation : public SourceOperation {
public:
    explicit SysfsOperation(const SystemTree& tree);

    int set(const std::string& category, const std::string& value) override;
    pwr::Operation* clone() const override { return new SysfsOperation(*this); }

    // The first number tells what is measured (processors, zones): the NUMBERs of one of them must all be readable. One
    // TEXT is enough.
    std::string findFault() const override;
    std::string describe() const override { return m_tree.realPath(m_path.getText()); }
    std::unique_ptr<SourceReader> open() const override;

private:
    SystemTree m_tree;
    PathPattern m_path;
    bool m_isText = false;
};

}    // namespace host
