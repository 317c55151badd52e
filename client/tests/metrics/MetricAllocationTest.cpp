#include "metrics/MetricFixture.h"
#include "output/WriterStream.h"
#include "plugins/QuorvaneHost.h"
#include "support/AllocationCount.h"

using namespace pwr;

namespace {

class MetricAllocationTest : public test::MetricFixture {
protected:
    MetricAllocationTest() { session.log.environment().setWriterStream(m_silent); }
    ~MetricAllocationTest() override { QuorvaneHost::destroyWriterStream(m_silent); }

    void feed(Metric& metric, std::vector<DataElement>& elements, int rounds)
    {
        for (int round = 0; round < rounds; ++round) {
            m_timestamp += 20'000;
            for (std::size_t i = 0; i < elements.size(); ++i) {
                elements[i].setValue((i + static_cast<std::size_t>(round)) % 16);
                ASSERT_EQ(0, metric.setData(m_timestamp, elements[i], 0));
            }
        }
    }

    unsigned long long m_timestamp = 1000;
    std::set<WriterPlugin*> m_noWriters;
    WriterStream* m_silent = QuorvaneHost::createWriterStream(m_noWriters);
};

TEST_F(MetricAllocationTest, RunningMetricTakesNoMemoryForRepeatedSamples)
{
    std::vector<DataElement> elements;
    for (const char* core : {"Core_0", "Core_1"}) {
        const EntityHandle* about = entity(core);
        for (const char* state : {"C0", "C1", "C6"})
            elements.emplace_back(about, descriptor(state));
    }
    for (const Type type : {Type::SampledDelta, Type::SampledResidency, Type::SampledValue, Type::TracedValueTransition,
                            Type::TracedEvent}) {
        auto metric = makeMetric(type);
        feed(*metric, elements, 32);    // all values are seen
        const std::size_t before = test::allocationCount();
        feed(*metric, elements, 100);
        EXPECT_EQ(before, test::allocationCount());
        const bool isTraced = type == Type::TracedValueTransition || type == Type::TracedEvent;
        EXPECT_EQ(isTraced ? 0u : 6u, metric->getData().elements.size());
    }
}

}    // namespace
