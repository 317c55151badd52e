#include "metrics/MetricFixture.h"
#include "output/WriterPlugin.h"
#include "output/WriterStream.h"
#include "plugins/QuorvaneHost.h"
#include "support/AllocationCount.h"

using namespace pwr;

namespace {

class IdleWriter : public WriterPlugin {
public:
    IdleWriter() : WriterPlugin("idle") {}
    ~IdleWriter() override = default;
    int openOutput() override { return 0; }
    int closeOutput() override { return 0; }
};

class MetricAllocationTest : public test::MetricFixture {
protected:
    MetricAllocationTest() { session.log.environment().setWriterStream(m_silent); }
    ~MetricAllocationTest() override { QuorvaneHost::destroyWriterStream(m_silent); }

    // The allocations of 100 rounds, once all pairs and values have been seen. Sampled metrics keep the last round.
    template <typename T>
    std::size_t allocationsOfRepeatedSamples(Type type, const std::vector<T>& values)
    {
        auto metric = makeMetric(type);
        std::vector<DataElement> elements;
        for (const char* core : {"Core_0", "Core_1"}) {
            const EntityHandle* about = entity(core);
            for (const char* state : {"C0", "C1", "C6"})
                elements.emplace_back(about, descriptor(state));
        }
        std::size_t before = 0;
        for (std::size_t round = 0; round < 132; ++round) {
            if (round == 32) before = test::allocationCount();
            m_timestamp += 20'000;
            for (std::size_t i = 0; i < elements.size(); ++i) {
                elements[i].setValue(values[(i + round) % values.size()]);
                EXPECT_EQ(0, metric->setData(m_timestamp, elements[i], 0));
            }
        }
        const bool isTraced = type == Type::TracedValueTransition || type == Type::TracedEvent;
        EXPECT_EQ(isTraced ? 0u : elements.size(), metric->getData().elements.size());
        return test::allocationCount() - before;
    }

    unsigned long long m_timestamp = 1000;
    IdleWriter m_writer;
    std::set<WriterPlugin*> m_writers{&m_writer};
    WriterStream* m_silent = QuorvaneHost::createWriterStream(m_writers);
};

TEST_F(MetricAllocationTest, RunningMetricTakesNoMemoryForRepeatedSamples)
{
    const std::vector<unsigned> numbers = {0, 1, 2, 3, 4, 5, 6, 7};
    const std::vector<std::string> texts = {"a text that is too long for its own object", "another one of that length"};
    for (const Type type : {Type::SampledDelta, Type::SampledResidency, Type::SampledValue, Type::TracedValueTransition,
                            Type::TracedEvent}) {
        SCOPED_TRACE(static_cast<int>(type));
        EXPECT_EQ(0u, allocationsOfRepeatedSamples(type, numbers));
    }
    for (const Type type : {Type::SampledValue, Type::TracedValueTransition, Type::TracedEvent}) {
        SCOPED_TRACE(static_cast<int>(type));
        EXPECT_EQ(0u, allocationsOfRepeatedSamples(type, texts));
    }
}

}    // namespace
