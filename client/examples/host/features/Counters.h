#pragma once

#include "features/FeaturePlugin.h"

#include <cstddef>
#include <optional>
#include <set>

namespace pwr {
class Quantity;
}

namespace host {

// How far a counter came from one reading to the next; one of 32 or 64 bits may have gone over its end. Nothing when it
// began anew, or went back for another reason: what happened meanwhile nobody knows.
std::optional<std::uint64_t> countedBetween(std::uint64_t last, std::uint64_t now);

// What a feature that tells amounts is about.
struct Amount {
    const char* source;    // the tag of the message
    const char* column;    // the constant COLUMNS_<column> tells where it stands in a row; default: 0
    const char* name;      // the descriptor; empty: none
};
struct CounterFeature {
    const char* name;
    const char* description;
    const char* prefix;
    const char* sources;    // "disk counters"
    const char* metric;
    const char* container;
    const char* things;    // the title of the entities
    const char* kinds;     // the title of the descriptors
    const pwr::Quantity* (*quantity)();
    std::vector<Amount> amounts;
};

// Amounts that accrue, from counters in rows: of each thing that has a name, or of the whole system. The constant
// UNITS_FACTOR tells how much one count is.
//
// A thing that shows up during the run, that is back after a round without it, or whose counters began anew has its
// baseline there: each sample stands for the time since the reading before it. One whose counters all stand at 0 has
// never been used and has no samples; its first one speaks of the whole time since its baseline.
class Counters : public FeaturePlugin {
public:
    explicit Counters(const CounterFeature& feature);

protected:
    void takeBaseline_i(const Source& source, const Items& items, unsigned long long tsc) override;
    std::unique_ptr<pwr::Metric> makeMetric_i(const pwr::SystemMetadata& system) override;
    void takeRound_i(const Source& source, const Items& items, unsigned long long tsc) override;
    void forgetBaselines_i(unsigned long long tsc) override;

private:
    using Counts = std::vector<std::uint64_t>;    // in the order of the amounts of the source

    // An amount as it stands in the rows.
    struct Column {
        std::size_t at = 0;
        std::string name;
        const pwr::DataDescriptor* descriptor = nullptr;    // null before its first round, and without a name
    };
    struct Thing {
        const pwr::EntityHandle* entity = nullptr;    // null before its first sample
        Counts last;
        unsigned long long lastTsc = 0;    // of these
        unsigned long long seenTsc = 0;
        bool hasBaseline = false;
    };
    struct Group {
        std::vector<Column> columns;
        std::map<std::string, Thing> things;    // by the system's own name; empty: the whole system
    };

    Group& groupOf_i(const Source& source);
    void takeRows_i(Group& group, const Items& items, unsigned long long tsc);
    void takeRow_i(const Group& group, Thing& thing, const std::string& name, const Counts& now,
                   unsigned long long tsc);
    const pwr::EntityHandle* entityOf_i(const std::string& name);

    CounterFeature m_feature;
    std::map<std::string, Group> m_groups;                         // by the tag of the source
    std::map<std::string, const pwr::EntityHandle*> m_entities;    // by the system's own name
    std::set<std::string> m_names;                                 // of these, different for each
    std::uint64_t m_factor = 1;
};

// The features of this kind.
class DiskIo : public Counters {
public:
    DiskIo();
};
class NetworkIo : public Counters {
public:
    NetworkIo();
};
class ContextSwitches : public Counters {
public:
    ContextSwitches();
};
class Interrupts : public Counters {
public:
    Interrupts();
};

}    // namespace host
