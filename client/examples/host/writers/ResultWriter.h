#pragma once

#include "writers/ResultHead.h"
#include "writers/RunTime.h"
#include "writers/TableWriter.h"

#include <string>
#include <string_view>
#include <vector>

namespace host {

class OutFile;

// The base of the writers that make result files. It keeps the files and the first failure, and the time of the run.
// What a writer of these remembers does not grow with the number of data points.
class ResultWriter : public TableWriter {
public:
    const std::vector<std::string>& getFiles() const { return m_files; }    // those opened
    const std::string& getError() const { return m_error; }                 // the first failure; empty: none

    // That the results come from a saved session, which their head tells.
    void setPostProcessed() { m_isPostProcessed = true; }

protected:
    using TableWriter::TableWriter;
    using TableWriter::writeMessage;

    // A derived class that overrides it calls this one first.
    int writeMessage(const pwr::SystemMessage& message) override;

    // As it is now, so for closeOutput(); empty without a record.
    ResultHead head_i() const;

    RunTime& time_i() { return m_time; }
    bool openFile_i(OutFile& file, const std::string& path);

    // With a text in front of the file. 0, or 1 when anything failed since openOutput().
    int closeFile_i(OutFile& file, std::string_view front = {});
    void fail_i(const std::string& error);

private:
    RunTime m_time;
    bool m_isPostProcessed = false;
    std::vector<std::string> m_files;
    std::string m_error;
};

}    // namespace host
