#pragma once

#include "metrics/DataElement.h"
#include "metrics/Metric.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace pwr {
class DataDescriptor;
class EntityHandle;
class SystemMetadata;
}    // namespace pwr

namespace host {

// One thing that the host can measure: it finds its sources on the machine, makes the metric for them, and at each
// round reads the sources and hands in samples. One collection in its life, one thread.
//
//   std::string reason;
//   if (!feature.find(reason)) return explain(reason);
//   feature.readBaseline(timestamp);      // the record's startTSC
//   feature.makeMetric(record);           // the topology is mirrored, the stream is published
//   feature.takeRound(timestamp);         // again and again
//   feature.finish();                     // the tables go out
class Feature {
public:
    virtual ~Feature();
    Feature(const Feature&) = delete;
    Feature& operator=(const Feature&) = delete;

    const std::string& getName() const { return m_name; }
    const std::string& getDescription() const { return m_description; }
    std::string getSwitchTag() const;    // how the output configuration calls it

    // Whether this machine offers it. False with the reason, which begins with a small letter.
    bool find(std::string& reason);

    // Timestamps are ticks of the default clock, each later than the one before. `system` outlives the feature.
    void readBaseline(unsigned long long timestamp);
    void makeMetric(const pwr::SystemMetadata& system);
    void takeRound(unsigned long long timestamp);

    // Sends the tables. False when no sample was taken, or some table failed.
    bool finish();

    // The id of the metric, and what was handed in to it: samples, and rounds with at least one.
    unsigned int getMetricId() const;
    std::uint64_t getSamples() const { return m_samples; }
    std::uint64_t getRounds() const { return m_rounds; }

    // What the user should know: what is left out, and why. The results carry it as a note.
    const std::vector<std::string>& getRemarks() const { return m_remarks; }

protected:
    Feature(const std::string& name, const std::string& description);

    virtual bool find_i(std::string& reason) = 0;
    virtual void readBaseline_i(unsigned long long timestamp) = 0;
    virtual std::unique_ptr<pwr::Metric> makeMetric_i(const pwr::SystemMetadata& system) = 0;
    virtual void readRound_i(unsigned long long timestamp) = 0;

    template <typename T>
    void handIn_i(unsigned long long timestamp, const pwr::EntityHandle* entity, const pwr::DataDescriptor* descriptor,
                  const T& value)
    {
        pwr::DataElement element(entity, descriptor);
        element.setValue(value);
        if (m_metric->setData(timestamp, element, 0) == 0) ++m_samples;
    }
    void remark_i(const std::string& text) { m_remarks.push_back(text); }

private:
    std::string m_name;
    std::string m_description;
    std::unique_ptr<pwr::Metric> m_metric;
    std::uint64_t m_samples = 0;
    std::uint64_t m_rounds = 0;
    std::vector<std::string> m_remarks;
};

}    // namespace host
