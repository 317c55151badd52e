// The half of EtwSession that merges the files of several sessions.

#include "runtime/EtwSession.h"
#include "runtime/Log.h"
#include "runtime/OsInfo.h"
#include "runtime/os/Os.h"
#include "runtime/os/TraceMerge.h"

std::string EtwSession::s_mergedFilePath;
std::vector<std::string> EtwSession::s_mergeFileList;
void* EtwSession::s_mergeThreadHandle = nullptr;

namespace {

constexpr unsigned long PROCEDURE_NOT_FOUND = 127;

unsigned threadEntry(void* unused)
{
    return static_cast<unsigned>(EtwSession::mergeThread(unused));
}

// `insertion` in front of the first ".etl", or at the end.
std::string pathWith(std::string path, const std::string& insertion)
{
    const std::size_t ending = path.find(".etl");
    return path.insert(ending != std::string::npos ? ending : path.size(), insertion);
}

// The merge library, loaded from the tool's directory for as long as the object lives.
class MergeLibrary {
public:
    MergeLibrary()
    {
        const std::string directory =
            g_pluginEnvironment != nullptr ? g_pluginEnvironment->getQuorvaneDirectory() : std::string();
        m_library = m_libraries.load(directory + pwr::os::MERGE_LIBRARY, m_status);
        if (m_library == nullptr) return;
        m_function = reinterpret_cast<pwr::os::MergeFunction>(m_libraries.symbol(m_library, pwr::os::MERGE_FUNCTION));
        if (m_function == nullptr) m_status = PROCEDURE_NOT_FOUND;
    }
    ~MergeLibrary() { m_libraries.unload(m_library); }
    MergeLibrary(const MergeLibrary&) = delete;
    MergeLibrary& operator=(const MergeLibrary&) = delete;

    bool isLoaded() const { return m_function != nullptr; }

    // Why it is not loaded, or what the merge gave.
    unsigned long status() const { return m_status; }
    unsigned long lastError() const { return m_lastError; }

    void merge(const std::wstring& output, const std::vector<std::wstring>& inputs)
    {
        std::vector<const wchar_t*> paths;
        for (const std::wstring& input : inputs) {
            paths.push_back(input.c_str());
        }
        m_status = m_function(output.c_str(), paths.data(), static_cast<ULONG>(paths.size()), pwr::os::MERGE_ALL_DATA);
        m_lastError = m_libraries.lastError();
    }

private:
    pwr::os::Libraries& m_libraries = *pwr::os::current().libraries;
    void* m_library = nullptr;
    pwr::os::MergeFunction m_function = nullptr;
    unsigned long m_status = 0;
    unsigned long m_lastError = 0;
};

}    // namespace

void EtwSession::addMergeFile(const std::string& suffix)
{
    s_mergeFileList.push_back(suffix);
}

bool EtwSession::isMergeRequired()
{
    return !s_mergeFileList.empty();
}

bool EtwSession::mergeLogs(const std::string& resultPath)
{
    pwr::os::Threads& threads = *pwr::os::current().threads;
    if (s_mergeThreadHandle != nullptr) threads.close(s_mergeThreadHandle);    // of a merge that nobody waited for
    s_mergedFilePath = resultPath;
    s_mergeThreadHandle = threads.startThread(&threadEntry, nullptr);
    return s_mergeThreadHandle != nullptr;
}

void EtwSession::waitForMergeComplete()
{
    if (s_mergeThreadHandle == nullptr) return;
    QV_LOG_PLAIN("Waiting for merge to complete.\n");
    pwr::os::Threads& threads = *pwr::os::current().threads;
    threads.wait(s_mergeThreadHandle);
    threads.close(s_mergeThreadHandle);
    s_mergeThreadHandle = nullptr;
}

unsigned long EtwSession::mergeThread(void*)
{
    MergeLibrary library;
    if (!library.isLoaded()) {
        QV_LOG_WARNING("WARNING: Unable to merge trace files because LoadLibrary() failed.\n");
        return library.status();
    }
    std::vector<std::wstring> inputs;
    for (const std::string& suffix : s_mergeFileList) {
        inputs.push_back(stringToWstring(pathWith(s_mergedFilePath, suffix)));
    }
    s_mergedFilePath = pathWith(s_mergedFilePath, "_Capture");
    QV_LOG_PLAIN("Merging ETW files to \"%s\" started.\n", s_mergedFilePath.c_str());
    library.merge(stringToWstring(s_mergedFilePath), inputs);
    if (library.status() != 0) {
        QV_LOG_WARNING("WARNING: Trace merge experienced an unknown error. (%lu: %s)\n", library.status(),
                       formatErrorMessage(library.lastError()).c_str());
    }
    return library.status();
}
