#pragma once

#include "features/FeaturePlugin.h"

namespace host {

// Processes that start and end, seen by comparing each list of them with the one before. One that lives for less than
// a round is not seen, unless it is still listed behind its end. The events of one round have distinct times, one tick
// apart, the last of them that of the round: first those that ended, then those that started, a parent before its
// children, then those of them that have ended already.
//
// A process that ran when the collection began has the start time 0. The library knows one process by each id: when the
// system gives an id anew, the later process is known by the id and a multiple of REUSED, which is above all ids.
class Processes : public FeaturePlugin {
public:
    static constexpr int REUSED = 1 << 22;

    Processes();

protected:
    void takeBaseline_i(const Source& source, const Items& items, unsigned long long tsc) override;
    std::unique_ptr<pwr::Metric> makeMetric_i(const pwr::SystemMetadata& system) override;
    void takeRound_i(const Source& source, const Items& items, unsigned long long tsc) override;
    void forgetBaselines_i(unsigned long long) override {}    // the list before still is one

private:
    struct Listed {
        std::uint64_t started = 0;    // as the system tells it
        int knownId = 0;              // to the library
        bool hasEnded = false;
    };
    struct Event {
        const pwr::DataDescriptor* kind;
        int knownId;
    };
    using List = std::map<std::uint32_t, Listed>;    // by id

    static List listed_i(const Items& items);
    void endMissing_i(const List& now, std::vector<Event>& events) const;
    void startNew_i(List& now, const Items& items, unsigned long long tsc, std::vector<Event>& events);
    int meet_i(const RecordItem& item, unsigned long long startTsc);
    void handInEvents_i(const std::vector<Event>& events, unsigned long long tsc);

    List m_last;
    std::map<std::uint32_t, int> m_met;    // how many processes of an id were met
    const pwr::DataDescriptor* m_started = nullptr;
    const pwr::DataDescriptor* m_ended = nullptr;
    unsigned long long m_lastTsc = 0;    // of the last round or event
};

}    // namespace host
