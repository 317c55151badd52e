#pragma once

#include "Delivery.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace pwr {
class Metadata;
}

namespace host {

class SessionReader;

// Processes a saved session: what the collection gave to the plugins they get again, in the same order, whatever
// machine this is.
//
//   Replay replay(record, session);
//   if (replay.choose(plugins).empty() || replay.begin() != nullptr) return fail();
//   replay.run();
//   replay.end();
class Replay : public Delivery {
public:
    // `session` has given its system record.
    Replay(pwr::SystemMetadata& record, SessionReader& session);
    ~Replay() override;

    // Reads the metadata at the front. Gives those of the plugins that it is about the numbers that they had, and
    // returns them in the order of then; use() may change it.
    std::vector<FeaturePlugin*> choose(const std::vector<FeaturePlugin*>& plugins);
    void use(const std::vector<FeaturePlugin*>& plugins) { m_plugins = plugins; }

    // Sets the plugins up with their metadata, one after the other. Returns null, or what refused; then nothing runs.
    const Plugin* begin();

    // Processes all records and takes the stop times; without a closing record those of the last record.
    void run();

    // The records for which there is no plugin here, and the UUIDs of those that would have taken them; by choose().
    std::uint64_t getLeftOutRecords() const { return m_leftOutRecords; }
    const std::set<std::string>& getMissing() const { return m_missing; }

private:
    void meet_i(int sid, const std::string& feature, const std::vector<FeaturePlugin*>& plugins);
    void take_i();
    void learn_i(const pwr::Metadata& record);
    void process_i(const qv_driver_msg* message);
    void closeWithoutEnd_i();

    SessionReader& m_session;
    std::vector<std::unique_ptr<const pwr::Metadata>> m_front;    // until begin()
    bool m_hasEntry = false;                                      // read, but not processed
    unsigned long long m_lastTick = 0;
    std::uint64_t m_leftOutRecords = 0;
    std::size_t m_resets = 0;
    std::set<std::string> m_missing;
};

}    // namespace host
