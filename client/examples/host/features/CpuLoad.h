#pragma once

#include "features/FeaturePlugin.h"

#include <map>

namespace host {

// Busy percent of each logical processor, or of all together where the sources don't tell them apart, from rows of
// counted times. The constants of the configuration tell which of the columns are idle times, and how many columns add
// up to the whole. A processor whose counters stand still gets no sample: its next one speaks of the whole time since
// the last.
class CpuLoad : public FeaturePlugin {
public:
    CpuLoad();

    // The nearest whole percent, 0 to 100. `total` is above 0.
    static unsigned long long wholePercent(double busy, double total);

protected:
    void takeBaseline_i(const Source& source, const Items& items, unsigned long long tsc) override;
    std::unique_ptr<pwr::Metric> makeMetric_i(const pwr::SystemMetadata& system) override;
    void takeRound_i(const Source& source, const Items& items, unsigned long long tsc) override;
    void forgetBaselines_i(unsigned long long tsc) override;

private:
    static constexpr int ALL_PROCESSORS = -1;
    using Times = std::array<std::uint64_t, RecordItem::MAX_NUMBERS>;

    struct Last {
        Times times{};
        unsigned long long tsc = 0;         // of the row
        unsigned long long resetTsc = 0;    // the time to be told begins there; 0: where the metric says
        bool hasBaseline = true;
    };

    void learnColumns_i();
    void takeRow_i(const RecordItem& row, unsigned long long tsc);
    void sample_i(int processor, Last& last, const Times& now, unsigned long long tsc);

    std::map<int, Last> m_last;    // by logical processor
    std::size_t m_columns = 0;     // that add up to the whole
    std::array<bool, RecordItem::MAX_NUMBERS> m_isIdle{};
};

}    // namespace host
