#include "writers/ResultWriter.h"

#include "writers/OutFile.h"

#include "output/WriterMessage.h"

namespace host {

int ResultWriter::writeMessage(const pwr::SystemMessage& message)
{
    if (message.getSystemMetadata() != nullptr) m_time.use(*message.getSystemMetadata());
    return 0;
}

bool ResultWriter::openFile_i(OutFile& file, const std::string& path)
{
    if (file.open(path)) {
        m_files.push_back(path);
        return true;
    }
    fail_i(file.getError());
    return false;
}

ResultHead ResultWriter::head_i() const
{
    const pwr::SystemMetadata* record = m_time.getRecord();
    return record != nullptr ? resultHead(*record, m_isPostProcessed) : ResultHead();
}

int ResultWriter::closeFile_i(OutFile& file, std::string_view front)
{
    if (!file.closeBehind(front)) fail_i(file.getError());
    return m_error.empty() ? 0 : 1;
}

void ResultWriter::fail_i(const std::string& error)
{
    if (m_error.empty()) m_error = error;
}

}    // namespace host
