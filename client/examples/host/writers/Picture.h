#pragma once

#include "writers/Charts.h"
#include "writers/RunTime.h"
#include "writers/Values.h"

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace host {

// What the charts of one metric are drawn from. It keeps sums for each entity, and timelines in a bounded number of
// pieces for a bounded number of entities: its size does not depend on how long the run is.
class Picture {
public:
    static constexpr std::size_t MAX_DRAWN = 64;    // entities

    virtual ~Picture() = default;
    virtual void take(const pwr::DataElement& element, const Reading& reading, std::uint64_t atNs,
                      std::uint64_t durationNs) = 0;
    virtual void draw(std::string& out) const = 0;

    // The picture for the metric whose first value this is; null where there is nothing to draw.
    static std::unique_ptr<Picture> make(const pwr::Metric& metric, const Reading& first);
};

// Numbers over time, or the rates of amounts.
class ValuePicture : public Picture {
public:
    ValuePicture(const std::string& name, const std::string& unit, bool isRate, double factor);
    void take(const pwr::DataElement& element, const Reading& reading, std::uint64_t atNs,
              std::uint64_t durationNs) override;
    void draw(std::string& out) const override;

private:
    struct Line {
        std::string name;
        bool isDrawn = false;
        ThinnedSeries series;
        double min = 0;
        double max = 0;
        double sum = 0;    // of value times weight
        double weight = 0;

        void add(std::uint64_t atNs, double value, double by);
        ChartLine toChart(const std::string& shownName) const;
    };

    void drawLines_i(std::string& out, const std::vector<ChartLine>& lines) const;
    void drawTopTen_i(std::string& out, std::vector<ChartLine> lines) const;
    std::string noteOn_i(std::size_t drawn) const;

    std::string m_name;
    std::string m_unit;
    bool m_isRate;
    double m_factor;    // from an amount in a second to the rate
    BySeries<Line*> m_bySeries;
    std::vector<std::unique_ptr<Line>> m_lines;    // in first-seen order
    Line m_all;
    std::uint64_t m_leftOut = 0;    // values that are not finite
};

// The time that entities spent in states.
class SharePicture : public Picture {
public:
    explicit SharePicture(bool isResidency) : m_isResidency(isResidency) {}
    void take(const pwr::DataElement& element, const Reading& reading, std::uint64_t atNs,
              std::uint64_t durationNs) override;
    void draw(std::string& out) const override;

private:
    static constexpr std::size_t MAX_STATES = COLOURS;    // when there are more, the last stands for all others

    std::size_t stateOf_i(const std::string& name);
    ChartShares& rowOf_i(const pwr::EntityHandle* entity);

    bool m_isResidency;
    std::vector<std::string> m_states;
    std::map<std::string, std::size_t> m_stateIndexes;
    std::vector<ThinnedSeries> m_series;    // by state
    std::vector<double> m_totals;
    std::map<const pwr::EntityHandle*, std::size_t> m_rowIndexes;
    std::vector<ChartShares> m_rows;    // in first-seen order those that are drawn, then one for all others
};

}    // namespace host
