#pragma once

#include "plugins/PluginRequirement.h"

namespace test {

// What happened to the requirements of a test.
struct RequirementCounts {
    int asked = 0;
    int deleted = 0;
    pwr::PluginRequirement::Params params;    // of the last question
};

// A requirement with a known answer.
class FakeRequirement : public pwr::PluginRequirement {
public:
    FakeRequirement(RequirementCounts& counts, bool isMet, bool negative = false)
        : PluginRequirement("FAKE", negative), m_counts(counts), m_isMet(isMet)
    {
    }
    ~FakeRequirement() override { ++m_counts.deleted; }

protected:
    bool isPluginRequirementSatisfied_i(const pwr::SystemMetadata&, const Params& params) const override
    {
        ++m_counts.asked;
        m_counts.params = params;
        return m_isMet;
    }

private:
    RequirementCounts& m_counts;
    bool m_isMet;
};

}    // namespace test
