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

// "PROCFS": a file below /proc that holds lines of a word and numbers behind it.
//
//   PATH    the file
//   FIELD   the word at the beginning of a line, see NumberPattern
//   LEAST   how many numbers a line must hold to be taken; default: 1
class ProcfsOperation : public SourceOperation {
public:
    explicit ProcfsOperation(const SystemTree& tree);

    int set(const std::string& category, const std::string& value) override;
    pwr::Operation* clone() const override { return new ProcfsOperation(*this); }

    std::string findFault() const override;
    std::string describe() const override { return m_tree.realPath(m_path) + " " + m_word; }
    std::unique_ptr<SourceReader> open() const override;

private:
    SystemTree m_tree;
    std::string m_path;
    std::string m_word;
    NumberPattern m_field;
    std::size_t m_least = 1;
};

}    // namespace host
