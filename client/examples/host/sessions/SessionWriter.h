#pragma once

#include "sessions/SessionFormat.h"

#include <cstdint>
#include <fstream>
#include <map>
#include <string>
#include <string_view>

class QVBuffer;
namespace pwr {
class Metadata;
class SystemMetadata;
}    // namespace pwr

namespace host {

// Saves a collection while it runs: the system record, then metadata, system states and driver records as they come, in
// the end the stop times. What was added is in the file after flush(). The first failure is kept, later calls then do
// nothing.
//
//   SessionWriter session;
//   session.open("results/run.qvs");
//   session.begin(record);
//   session.addRecords(buffer);
//   session.flush();
//   session.end(record);
//   if (!session.close()) complain(session.getError());
class SessionWriter {
public:
    // Makes the folders above it where they are missing, and empties a file that is there.
    bool open(const std::string& path);

    void begin(const pwr::SystemMetadata& system);
    // A record that could not be read back, since a text in it is empty, is a failure.
    void addMetadata(const pwr::Metadata& record);
    // Those of all events so far that are not in the file yet; an event that was overwritten comes again.
    void addStates(const std::map<unsigned long long, unsigned int>& events);
    void addRecords(const QVBuffer& records);
    void flush();
    void end(const pwr::SystemMetadata& system);    // takes its stop times

    // False when anything failed since open().
    bool close();

    const std::string& getPath() const { return m_path; }
    const std::string& getError() const { return m_error; }    // with the path; empty: none
    std::uint64_t getRecords() const { return m_records; }     // driver records

private:
    void put_i(SessionEntry kind, std::string_view payload);
    void fail_i(const std::string& what);

    std::string m_path;
    std::ofstream m_file;
    std::string m_pending;
    std::map<unsigned long long, unsigned int> m_states;    // that are in the file
    std::uint64_t m_records = 0;
    std::string m_error;
};

}    // namespace host
