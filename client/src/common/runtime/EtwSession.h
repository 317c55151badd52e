#pragma once

#include "runtime/Export.h"
#include "runtime/os/WindowsTypes.h"

#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

// One event tracing session that writes a file: it enables its providers, and replays the file afterwards to the
// callback of a derived class. A collector derives from it, adds its providers, and brackets the collection with begin
// and end, all on its thread. Failures are logged and give false.
//
//   class Phases : public EtwSession {
//       using EtwSession::EtwSession;
//       EVENT_TRACE_LOGFILEA setLogfileCallback() override
//       {
//           EVENT_TRACE_LOGFILEA logfile = EtwSession::setLogfileCallback();
//           logfile.EventRecordCallback = &onEvent;    // static void onEvent(EVENT_RECORD*); the record's
//           logfile.Context = this;                    // UserContext is the context
//           return logfile;
//       }
//   };
//   Phases phases("run.etl", "_User", "QuorvaneUser", "user session");    // writes run_User.etl
//   phases.addProvider(PROVIDER_GUID, ~0ULL);
//   if (phases.begin() && collect() && phases.end()) phases.postProcessLog();
//
// The files of several sessions are merged into one on a thread of its own: each adds its suffix with addMergeFile;
// after the sessions' end mergeLogs("run.etl") makes run_Capture.etl of run_User.etl and the others.
class QUORVANE_API EtwSession {
protected:    // first, for the order of the virtual table
    // Builds the block of properties, with the buffers of a user session. False keeps the session from starting.
    virtual bool setEventTraceProperties();

    // `bufferSize` in KB. Throws std::bad_alloc.
    virtual bool setEventTraceProperties(unsigned long bufferSize, unsigned long maxBuffers, unsigned long minBuffers);

public:
    EtwSession();

    // The log file is `resultFile` with `suffix` in front of the ".etl" that follows its last dot. Without such an
    // ending it throws std::runtime_error. `displayName` is the name for messages.
    EtwSession(std::string resultFile, const std::string& suffix, const std::string& sessionName,
               const std::string& displayName);

    // Ends no session.
    virtual ~EtwSession();
    EtwSession(const EtwSession&) = delete;
    EtwSession& operator=(const EtwSession&) = delete;

    // Starts the session, in place of one of that name that was left over, and enables its providers, of which there is
    // at least one. After a failure no session is left running. A provider that can't be enabled is told in the queued
    // messages of the environment, too.
    virtual bool begin();

    // Flushes, disables the providers and stops. False when no session runs, or when a step fails: then it runs on.
    virtual bool end();

    // Writes to the file what the system has buffered.
    virtual bool flush();

    // Events that found no room, so far; 0xFFFFFFFF when the system can't tell.
    virtual unsigned long queryLostEvents();

    // What the replay asks for: the log file, events as records with raw times. A derived class adds its callback.
    virtual EVENT_TRACE_LOGFILEA setLogfileCallback();

    // Replays the log file to the callback of setLogfileCallback, on this thread.
    virtual bool postProcessLog();

    // Opens the log file. Its handle, which the caller closes; all ones when it can't be opened or comes from a 32-bit
    // system.
    virtual unsigned long long preparepostProcessLog();

    // A provider that was added before gets the keywords in addition. Keywords select among the provider's events.
    virtual void addProvider(GUID guid, unsigned long long keywords);
    virtual bool hasAnyProvider();

    // Buffers of sessions that are started from now on: size in KB, least and greatest number.
    static void setUserBuffer(unsigned long size, unsigned long min, unsigned long max);
    static void setKernelBuffer(unsigned long size, unsigned long min, unsigned long max);

    // None of these while the merge runs: the suffix of one more file; whether there is any; the start of the merge
    // of the files at `resultPath` with the suffixes, true when its thread exists.
    static void addMergeFile(const std::string& suffix);
    static bool isMergeRequired();
    static bool mergeLogs(const std::string& resultPath);

    // Returns when the merge is done; at once when none was started.
    static void waitForMergeComplete();

    // What the merge thread does: the merge library's status, or why it can't be loaded. A Windows code.
    static unsigned long mergeThread(void* unused);

    // Looks for a provider of exactly that name on this system.
    static bool getGuidForProvider(wchar_t* name, GUID* guid);

protected:
    static unsigned long s_userSessionBufferSize;    // KB
    static unsigned long s_userSessionMinBuffers;
    static unsigned long s_userSessionMaxBuffers;
    static unsigned long s_kernelSessionBufferSize;    // for derived classes that start a kernel session
    static unsigned long s_kernelSessionMinBuffers;
    static unsigned long s_kernelSessionMaxBuffers;
    static std::string s_etwSessionStr;                 // debug prefix
    static std::string s_mergedFilePath;                // as given; once the merge has begun, the merged file
    static std::vector<std::string> s_mergeFileList;    // suffixes, in the order of the merge
    static void* s_mergeThreadHandle;
    static std::map<std::string, std::string> s_guidToProviderNameMap;    // GUIDs as text, in lower case

    std::string m_sessionName;
    std::string m_displayName;
    std::string m_logFile;
    unsigned long long m_handle = 0;    // of the session; once the log is opened, of the log
    std::vector<GUID> m_providers;
    std::vector<unsigned long long> m_keywords;        // of the provider at the same place
    EVENT_TRACE_PROPERTIES* m_properties = nullptr;    // from malloc; not null while the session runs

private:
    struct Free {
        void operator()(EVENT_TRACE_PROPERTIES* block) const { std::free(block); }
    };
    using Block = std::unique_ptr<EVENT_TRACE_PROPERTIES, Free>;

    Block makeBlock_i() const;
    unsigned long start_i();
    unsigned long startInPlaceOfLeftover_i();
    void tellStartFailure_i(unsigned long status) const;
    bool enableProvider_i(const GUID& provider, unsigned long long keywords);
    unsigned long control_i(EVENT_TRACE_PROPERTIES* block, unsigned long code) const;
    void logProvider_i(const GUID& provider) const;
    void freeProperties_i();
};
