#pragma once

#include "collector/NumberPattern.h"
#include "collector/SourceOperation.h"
#include "machine/SystemTree.h"

namespace host {

// "PROCFS": a file below /proc that holds numbers line by line, in one of three forms.
//
//   PATH      the file
//
// Lines of a word and numbers behind it, "cpu0 10 20 30":
//
//   FIELD     the word, see NumberPattern
//   LEAST     how many numbers a line must hold to be taken; default: 1
//
// Lines that each tell of another thing, "8 0 sda 10 20 30", "eth0: 10 20 30":
//
//   NAME      the column of the thing's name, 1 is the first; it ends at a blank or a colon
//   WITHIN    a folder below /sys with an entry for each thing that counts ("!" in its name stands for "/"); without
//             such a folder all do
//   LEAST     as above, of the numbers behind the name
//
// Sections of texts and values, "processor : 3", then "cpu MHz : 2300.000":
//
//   SECTION   the text whose value is the section's number
//   FIELD     the text whose value is read
//   DECIMALS  how many decimal places the value is taken with: it is told times 10 to this power; default: 0
class ProcfsOperation : public SourceOperation {
public:
    struct Form {
        std::string path;
        std::string word;    // FIELD
        NumberPattern field;
        std::string within;
        std::string section;
        std::uint64_t name = 0;    // 0: lines have none
        std::uint64_t least = 1;
        std::uint64_t decimals = 0;
    };

    explicit ProcfsOperation(const SystemTree& tree);

    int set(const std::string& category, const std::string& value) override;
    pwr::Operation* clone() const override { return new ProcfsOperation(*this); }

    std::string findFault() const override;
    std::string describe() const override;
    std::unique_ptr<SourceReader> open() const override;

private:
    SystemTree m_tree;
    Form m_form;
};

}    // namespace host
