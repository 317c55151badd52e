#include "metrics/Metric.h"

#include "metrics/Accumulator.h"
#include "metrics/MetricFixture.h"
#include "output/TableMessage.h"
#include "output/TextNotes.h"
#include "output/WriterMessage.h"

#include <cstring>

using namespace pwr;
using testing::ElementsAre;

namespace {

constexpr unsigned long long START = 1000;

// Answers as told and notes what was asked.
class ScriptedAccumulator : public Accumulator {
public:
    explicit ScriptedAccumulator(const std::string& label, std::string& calls) : m_label(label), m_calls(calls) {}
    int initialize(const Metric&, const SystemMetadata&) override { return note_i("init ", initResult); }
    int finalize(const Metric&) override { return note_i("final ", finalResult); }
    int processMessage(const Metric& metric) override
    {
        return note_i(std::to_string(metric.getData().elements.size()) + " ", processResult);
    }

    int initResult = 0;
    int processResult = 0;
    int finalResult = 0;

private:
    int note_i(const std::string& what, int result)
    {
        m_calls += m_label + ":" + what;
        return result;
    }

    std::string m_label;
    std::string& m_calls;
};

class MetricTest : public test::MetricFixture {
protected:
    const EntityHandle* m_core0 = entity("Core_0", entity("Package_0"));
    const EntityHandle* m_core1 = entity("Core_1");
    const DataDescriptor* m_c1 = descriptor("C1");
    const DataDescriptor* m_c6 = descriptor("C6");
};

TEST_F(MetricTest, OneTimestampIsOnePointWithItsElementsInOrderOfArrival)
{
    auto metric = makeMetric(Type::SampledValue);
    EXPECT_TRUE(metric->isEmpty());
    EXPECT_EQ(0, sample(*metric, 2000, m_core1, nullptr, 7U));
    EXPECT_EQ(0, sample(*metric, 2000, m_core0, nullptr, 5U));
    EXPECT_FALSE(metric->isEmpty());
    EXPECT_TRUE(session.writer.points.empty());
    EXPECT_EQ(2u, metric->getData().elements.size());

    EXPECT_EQ(0, sample(*metric, 3500, m_core0, nullptr, 6U));
    ASSERT_EQ(1u, session.writer.points.size());
    EXPECT_EQ(0, metric->finalize());
    ASSERT_EQ(2u, session.writer.points.size());
    EXPECT_EQ(2000u, session.writer.points[0].timestamp);
    EXPECT_EQ("Core_1", session.writer.points[0].elements[0].entity);
    EXPECT_EQ("Package_0/Core_0", session.writer.points[0].elements[1].entity);
    EXPECT_EQ(3500u, session.writer.points[1].timestamp);
    EXPECT_THAT(durations(), ElementsAre(ElementsAre(1000, 1000), ElementsAre(1500)));
    EXPECT_THAT(metric->getEntityList(), ElementsAre(m_core1, m_core0));
}

TEST_F(MetricTest, TracedSampleIsPushedAtOnce)
{
    for (const Type type : {Type::TracedValueTransition, Type::TracedEvent}) {
        session.writer.clear();
        auto metric = makeMetric(type);
        EXPECT_EQ(0, sample(*metric, 1400, m_core0, nullptr, 1U));
        EXPECT_EQ(0, sample(*metric, 1400, m_core1, nullptr, 2U, 300));
        EXPECT_EQ(0, sample(*metric, 1500, m_core0, nullptr, 3U, Metric::RESET_DURATION));
        EXPECT_THAT(durations(), ElementsAre(ElementsAre(400), ElementsAre(300), ElementsAre(100)));
        EXPECT_EQ(1500u, session.writer.points.back().timestamp);
        EXPECT_EQ(0, metric->finalize());
        EXPECT_EQ(3u, session.writer.points.size());
    }
}

TEST_F(MetricTest, TimestampsOfAPairIncrease)
{
    auto metric = makeMetric(Type::SampledValue);
    EXPECT_EQ(1, sample(*metric, START - 1, m_core0, m_c1, 1U));    // before the collection
    EXPECT_TRUE(
        session.log.contains("WARNING: M: Timestamps must be monotonically increasing. Previous=1000, current=999 "
                             "for Package_0/Core_0/C1. Data discarded.\n"));
    EXPECT_EQ(1, sample(*metric, START, m_core0, m_c1, 1U));    // no longer its first
    EXPECT_EQ(1, metric->finalize());

    EXPECT_EQ(0, sample(*metric, START, m_core1, nullptr, 1U));
    session.log.clear();
    EXPECT_EQ(1, sample(*metric, START, m_core1, nullptr, 2U));
    EXPECT_TRUE(session.log.contains("Previous=1000, current=1000 for Core_1/ . Data discarded.\n"));
    EXPECT_EQ(0, sample(*metric, START, m_core1, m_c1, 3U));    // another pair
    EXPECT_EQ(0, metric->finalize());
    EXPECT_EQ(2u, session.writer.points.at(0).elements.size());
    EXPECT_THAT(metric->getEntityList(), ElementsAre(m_core0, m_core1));
}

TEST_F(MetricTest, GivenDurationIsAtMostTheElapsedTime)
{
    auto metric = makeMetric(Type::SampledValue);
    EXPECT_EQ(1, sample(*metric, 1500, m_core0, m_c1, 1U, 501));
    EXPECT_TRUE(session.log.contains("WARNING: M: Duration cannot be more than the elapsed time since last "
                                     "sampling/transition point. duration=501, elapsed time=500 for "
                                     "Package_0/Core_0+C1. Data discarded.\n"));
    EXPECT_EQ(0, sample(*metric, 1500, m_core0, m_c1, 1U, 500));
    EXPECT_EQ(0, sample(*metric, 2500, m_core0, m_c1, 1U, Metric::RESET_DURATION));
    EXPECT_EQ(0, sample(*metric, 2600, m_core0, m_c1, 1U, 20));
    metric->finalize();
    EXPECT_THAT(durations(), ElementsAre(ElementsAre(500), ElementsAre(0), ElementsAre(20)));
}

TEST_F(MetricTest, BadInputIsRefusedAndChangesNothing)
{
    auto values = makeMetric(Type::SampledValue);
    auto residency = makeMetric(Type::SampledResidency);
    DataElement noValue(m_core0, m_c1);
    DataElement noEntity(nullptr, nullptr);
    noEntity.setValue(1U);
    DataElement noDescriptor(m_core0, nullptr);
    noDescriptor.setValue(1U);
    DataElement notUnsigned(m_core0, m_c1);
    notUnsigned.setValue(1);
    const struct {
        Metric* metric;
        unsigned long long timestamp;
        DataElement* element;
        const char* log;
    } cases[] = {
        {values.get(), 0, &noEntity, "WARNING: M: Please provide a valid non-zero timestamp.\n"},
        {values.get(), 2000, &noEntity, "WARNING: M: Please provide an entity in the DataElement object.\n"},
        {values.get(), 2000, &noValue,
         "WARNING: Value is not set in the DataElement object. Returning an invalid Data object.\n"
         "WARNING: M: Please set the value aka measurement in the DataElement object.\n"},
        {residency.get(), 2000, &noDescriptor,
         "WARNING: M: Descriptor is required for MetricType::SampledResidency type. Please provide one.\n"},
        {residency.get(), 2000, &notUnsigned,
         "WARNING: M: MetricType::SampledResidency type requires values to be given in clock ticks as pw_u64_t data "
         "type.\n"},
    };
    for (const auto& c : cases) {
        session.log.clear();
        EXPECT_EQ(1, c.metric->setData(c.timestamp, *c.element, 0));
        EXPECT_EQ(c.log, session.log.debug());
        EXPECT_TRUE(c.metric->isEmpty());
        EXPECT_TRUE(c.metric->getEntityList().empty());
    }
    session.log.clear();
    EXPECT_EQ(1, values->finalize());
    EXPECT_EQ("WARNING: No data was provided for metric M\n", session.log.debug());
    EXPECT_TRUE(session.writer.infos.empty());
}

TEST_F(MetricTest, ElementIsWrittenToAndCopied)
{
    auto metric = makeMetric(Type::SampledValue);
    DataElement element(m_core0, nullptr);
    element.setValue(5U);
    ASSERT_EQ(0, metric->setData(1700, element, 0));
    EXPECT_EQ(700u, element.getDuration());
    ASSERT_NE(nullptr, element.getScopraDescriptor());
    EXPECT_EQ("M", element.getScopraDescriptor()->getName());
    EXPECT_EQ(nullptr, element.getDescriptor());
    element.setValue(6U);
    ASSERT_EQ(0, metric->setData(1800, element, 0));
    ASSERT_EQ(1u, session.writer.points.size());
    EXPECT_EQ(Data(5U), session.writer.points[0].elements[0].value);
    EXPECT_EQ("M", session.writer.points[0].elements[0].scopraDescriptor);
}

TEST_F(MetricTest, ResidencyDurationIsCutToTheSamplingInterval)
{
    auto metric = makeMetric(Type::SampledResidency);
    sample(*metric, 2000, m_core0, m_c1, 1U);
    sample(*metric, 2000, m_core0, m_c6, 1U);
    sample(*metric, 3000, m_core0, m_c1, 1U);
    EXPECT_EQ(0, sample(*metric, 4000, m_core0, m_c6, 1U, 1500));    // 2000 since its own last sample
    EXPECT_TRUE(
        session.log.contains("WARNING: M: Duration provided for MetricType::SampledResidency is greater than the "
                             "time elapsed since last sampling point for entity=Package_0/Core_0. Resetting "
                             "duration to be the time since the last sampling point for Package_0/Core_0.\n"));
    metric->finalize();
    EXPECT_THAT(durations().back(), ElementsAre(1000));
}

TEST_F(MetricTest, ResidencyPointBeyondItsDurationIsDropped)
{
    auto metric = makeMetric(Type::SampledResidency);
    EXPECT_EQ(0, sample(*metric, 2000, m_core1, m_c6, 10U, 5));
    EXPECT_EQ("WARNING: M: Clock ticks spent by Core_1 in state C6=10 is greater than the duration=5 since the last "
              "sampling point. Note this sample at timestamp=2000 will be discarded.\n",
              session.log.debug().substr(session.log.debug().find("WARNING: M: ")));
    EXPECT_EQ(0, sample(*metric, 2000, m_core0, m_c1, 600U));
    EXPECT_EQ(0, sample(*metric, 2000, m_core0, m_c6, 600U));
    session.log.clear();
    EXPECT_EQ(0, metric->finalize());
    EXPECT_TRUE(session.writer.points.empty());
    const std::string behind =
        ", sum of residencies in various states exceeds the sample duration. Data provided for the "
        "previous sampling point=2000 will be discarded.\n";
    EXPECT_EQ(
        0u, session.log.debug().find("WARNING: M: For Package_0/Core_0" + behind + "WARNING: M: For Core_1" + behind));
}

// The example that docs/sample-road.md works through.
TEST_F(MetricTest, ResidencyPointIsPushedWholeOrNotAtAll)
{
    auto metric = makeMetric(Type::SampledResidency);
    EXPECT_EQ(0, sample(*metric, 2000, m_core1, m_c1, 300U));
    EXPECT_EQ(0, sample(*metric, 2000, m_core1, m_c6, 700U));
    EXPECT_EQ(1, sample(*metric, 2000, m_core1, m_c6, 100U));
    EXPECT_TRUE(session.writer.points.empty());
    EXPECT_EQ(0, sample(*metric, 4000, m_core1, m_c1, 900U));
    EXPECT_EQ(0, sample(*metric, 4000, m_core1, m_c6, 1500U));
    EXPECT_EQ(0, metric->finalize());    // 2400 ticks in 2000
    ASSERT_THAT(durations(), ElementsAre(ElementsAre(1000, 1000)));
    EXPECT_EQ(Data(700U), session.writer.points[0].elements[1].value);
}

TEST_F(MetricTest, ResidencySumDoesNotWrapAround)
{
    auto metric = makeMetric(Type::SampledResidency);
    sample(*metric, 2000, m_core0, m_c1, ~0ULL);
    sample(*metric, 2000, m_core0, m_c6, 2U);
    EXPECT_EQ(0, metric->finalize());
    EXPECT_TRUE(session.writer.points.empty());
}

// The late state counts from the start of the collection, and its entity with it.
TEST_F(MetricTest, LateDescriptorOfAResidencyCostsItsSamplingPoint)
{
    auto metric = makeMetric(Type::SampledResidency);
    sample(*metric, 2000, m_core0, m_c1, 1U);
    sample(*metric, 3000, m_core1, m_c1, 1U);
    sample(*metric, 3000, m_core0, m_c1, 1U);
    sample(*metric, 3000, m_core0, m_c6, 1U);
    session.log.clear();
    EXPECT_EQ(0, sample(*metric, 4000, m_core0, m_c1, 1U));
    EXPECT_EQ(
        "WARNING: M: valid duration since the last sampling point for Package_0/Core_0 = 1000, but that provided for "
        "Package_0/Core_0 in state C6= 2000. All data provided for the previous sampling point will be "
        "discarded.\n",
        session.log.debug());
    EXPECT_EQ(0, sample(*metric, 4000, m_core0, m_c6, 1U));
    EXPECT_EQ(0, metric->finalize());
    EXPECT_THAT(durations(), ElementsAre(ElementsAre(1000), ElementsAre(1000, 1000)));
}

TEST_F(MetricTest, ResidencySampleBehindItsEntitysSamplingPointHasNoDuration)
{
    auto metric = makeMetric(Type::SampledResidency);
    sample(*metric, 2000, m_core0, m_c1, 1U);
    sample(*metric, 2000, m_core0, m_c6, 1U);
    sample(*metric, 5000, m_core0, m_c1, 1U);
    EXPECT_EQ(0, sample(*metric, 4000, m_core0, m_c6, 0U));
    metric->finalize();
    EXPECT_THAT(durations(), ElementsAre(ElementsAre(1000, 1000), ElementsAre(3000), ElementsAre(0)));
}

// The accumulator that stands before the failing one is initialised twice: to the same tables.
TEST_F(MetricTest, AccumulatorsAreInitialisedUntilAllSucceed)
{
    configure("ALL_FEAT_BOX_AVERAGE-RATE-TOTAL_TABLE=YES\n"
              "ALL_FEAT_BOX_TOTAL-DELTA_TABLE=NO\n");
    std::string calls;
    ScriptedAccumulator a("a", calls);
    ScriptedAccumulator b("b", calls);
    auto metric = makeMetric(Type::SampledDelta, Quantity::power());
    EXPECT_EQ(0, metric->addAccumulator(&a));
    EXPECT_EQ(0, metric->addAccumulator(&b));
    EXPECT_EQ(1, metric->addAccumulator(nullptr));
    EXPECT_TRUE(session.log.contains("WARNING: trying to add a NULL accumulator to Metric container M?!\n"));
    b.initResult = 1;
    sample(*metric, 2000, m_core0, nullptr, 1U);
    session.log.clear();
    EXPECT_EQ(1, metric->addAccumulator(&a));
    EXPECT_EQ("WARNING: trying to add an accumulator to Metric container M after setting data?!\n",
              session.log.debug());
    EXPECT_EQ(0, sample(*metric, 3000, m_core0, nullptr, 1U));
    EXPECT_TRUE(session.log.contains("WARNING: Metric container M couldn't initialize an accumulator!\n"));
    b.initResult = 0;
    EXPECT_EQ(0, metric->finalize());
    EXPECT_EQ("a:init b:init a:init b:init a:1 b:1 a:final b:final ", calls);
    EXPECT_EQ(2u, session.writer.points.size());
    EXPECT_EQ(2u, session.log.count("WARNING: Rate conversion is not specified."));
    EXPECT_THAT(session.writer.tableTitles(), ElementsAre("M Summary: Total", "M Summary: Total Samples Received"));
}

TEST_F(MetricTest, PointThatAnAccumulatorFailedOnStaysBuffered)
{
    std::string calls;
    ScriptedAccumulator a("a", calls);
    ScriptedAccumulator b("b", calls);
    auto metric = makeMetric(Type::SampledDelta);
    metric->addAccumulator(&a);
    metric->addAccumulator(&b);
    a.processResult = 1;
    sample(*metric, 2000, m_core0, nullptr, 1U);
    EXPECT_EQ(0, sample(*metric, 3000, m_core0, nullptr, 2U));
    EXPECT_TRUE(session.log.contains("WARNING: Metric container M reports an accumulator processMessage error!\n"));
    a.processResult = 0;
    a.finalResult = 1;
    EXPECT_EQ(1, metric->finalize());
    EXPECT_TRUE(session.log.contains("WARNING: Metric container M couldn't finalize an accumulator!\n"));
    EXPECT_EQ("a:init b:init a:1 a:2 b:2 a:final b:final ", calls);
    EXPECT_EQ(3000u, session.writer.points.back().timestamp);
}

TEST_F(MetricTest, ConstructorTellsWhatItLacks)
{
    const auto thrownText = [](const auto& act) -> std::string {
        try {
            act();
        } catch (const char* text) {
            return text;
        }
        return "nothing";
    };
    EXPECT_EQ("Quantity for MetricType::SampledResidency metric must be pwr::Quantity::time()",
              thrownText([this] { Metric("M", Type::SampledResidency, "BOX", "FEAT", system, Quantity::power()); }));
    std::string calls;
    session.log.environment().setWriterStream(nullptr);
    EXPECT_EQ("Writer stream is not initialized", thrownText([this] { makeMetric(Type::SampledValue); }));
    EXPECT_EQ("ERROR: Writer stream is not initialized", thrownText([&] { ScriptedAccumulator("a", calls); }));
    session.log.environment().setWriterStream(session.stream);

    session.log.clear();
    makeMetric(Type::SampledValue);
    makeMetric(static_cast<Type>(5));
    const std::string noOrder =
        "WARNING: Output config table entries not present for the feature-switch-tag and "
        "metric-container-tag combo: 'FEAT_BOX'. Add table entries specific to Metric container "
        "type.\n";
    EXPECT_EQ(noOrder + noOrder + "WARNING: M: Unrecognized metric type\n", session.log.debug());
}

TEST_F(MetricTest, IdComesFromTheCounterOfTheMessages)
{
    const MetricContainerInfoMessage before;
    const auto metric = makeMetric(Type::SampledValue);
    const MetricContainerInfoMessage after;
    EXPECT_EQ(before.getMessageId() + 1, metric->getId());
    EXPECT_EQ(metric->getId() + 1, after.getMessageId());
}

TEST_F(MetricTest, FiniteSetNeedsAFittingTypeAndNoNull)
{
    const auto result = [this](Type type, const std::vector<const DataDescriptor*>& set) {
        auto metric = makeMetric(type);
        session.log.clear();
        const int answer = metric->setFiniteSetValues(set);
        EXPECT_EQ(answer == 0 ? set.size() : 0, metric->getFiniteSetValues().size());
        return answer;
    };
    EXPECT_EQ(0, result(Type::SampledValue, {m_c6, m_c1}));
    EXPECT_EQ(0, result(Type::TracedValueTransition, {m_c6}));
    EXPECT_EQ(0, result(Type::SampledResidency, {}));
    EXPECT_EQ(1, result(Type::SampledValue, {m_c6, nullptr}));
    EXPECT_EQ("WARNING: M: Please provide a valid pointer to DataDescriptor object.\n", session.log.debug());
    for (const Type type : {Type::SampledDelta, Type::SampledResidency, Type::TracedEvent}) {
        EXPECT_EQ(1, result(type, {m_c6}));
        EXPECT_EQ("WARNING: M: Finite set of possible values can be provided only for MetricType::SampledValue or "
                  "MetricType::TracedValueTransition metric types.\n",
                  session.log.debug());
    }

    auto metric = makeMetric(Type::SampledValue);
    metric->setFiniteSetValues({m_c6});
    metric->setFiniteSetValues({m_c1});
    EXPECT_THAT(metric->getFiniteSetValues(), ElementsAre(Data(*m_c6), Data(*m_c1)));
}

TEST_F(MetricTest, CombinationsFillTheListsOfEntitiesAndDescriptors)
{
    auto metric = makeMetric(Type::SampledResidency);
    EXPECT_EQ(0, metric->setEntityDescriptorCombinations({{m_core1, m_c6}, {m_core1, nullptr}, {m_core1, m_c6}}));
    session.log.clear();
    EXPECT_EQ(1, metric->setEntityDescriptorCombinations({{m_core0, m_c1}, {nullptr, m_c6}}));
    EXPECT_EQ("WARNING: M: Entity is required when setting entity-descriptor combinations.\n", session.log.debug());
    EXPECT_THAT(metric->getEntityList(), ElementsAre(m_core1, m_core0));
    EXPECT_THAT(metric->getDescriptorList(), ElementsAre(m_c6, nullptr, m_c1));
    EXPECT_EQ(3u, metric->getEntityDescriptorCombinations().size());
}

TEST_F(MetricTest, InfoMessagesCarryWhatTheWritersNeed)
{
    auto metric = makeMetric(Type::SampledResidency);
    EXPECT_EQ(nullptr, metric->getTextInfo());
    metric->setPreMetricTextInfo("before");
    metric->setPostMetricTextInfo("behind");
    std::vector<std::string> notes;
    EXPECT_TRUE(metric->getTextInfo()->getPreTableNotes(notes));
    EXPECT_THAT(notes, ElementsAre("before"));

    TableMessage table("static", nullptr);
    EXPECT_EQ(0, metric->addStaticTableRowInfo(&table));
    EXPECT_EQ(1, metric->addStaticTableRowInfo(nullptr));
    EXPECT_EQ(metric->getId(), table.getMetricContainerId());
    EXPECT_EQ(0, metric->setTimelineTableToDisplay(TimelineTableType{3}));
    sample(*metric, 2000, m_core0, m_c1, 0U);
    EXPECT_EQ(0, metric->finalize());

    ASSERT_EQ(3u, session.writer.infos.size());
    for (const test::RecordedInfo& info : session.writer.infos)
        EXPECT_EQ(metric->getId(), info.metricId);
    EXPECT_TRUE(session.writer.infos[0].hasStaticTable);
    EXPECT_EQ(TimelineTableType{3}, session.writer.infos[1].timeline);
    EXPECT_TRUE(session.writer.infos[2].hasNotes);
    EXPECT_EQ("=\nM\n=", session.writer.infos[2].header);
    EXPECT_EQ("BOX", session.writer.infos[2].tag);

    session.log.clear();
    auto values = makeMetric(Type::SampledValue);
    session.log.clear();
    EXPECT_EQ(0, values->setTimelineTableToDisplay(TimelineTableType{3}));
    EXPECT_EQ("WARNING: Warning: Timeline output table selection is only valid for MetricType::SampledResidency type "
              "metrics.\nThis request will be ignored.",
              session.log.debug());
    EXPECT_EQ(3u, session.writer.infos.size());
}

TEST_F(MetricTest, LegacyTypeAbove17IsRefused)
{
    auto metric = makeMetric(Type::SampledValue);
    session.log.clear();
    EXPECT_EQ(0, metric->setLegacyMetricType(RealTableClass{17}));
    EXPECT_EQ(1, metric->setLegacyMetricType(RealTableClass{18}));
    EXPECT_EQ(RealTableClass{17}, metric->getLegacyMetricType());
    EXPECT_EQ("", session.log.debug());
}

TEST_F(MetricTest, EveryStepIsToldToADebuggingReader)
{
    session.log.environment().setVerbosity(4);
    auto metric = makeMetric(Type::SampledValue);
    sample(*metric, 2000, m_core1, nullptr, 1U);
    session.log.clear();
    sample(*metric, 3000, m_core1, nullptr, 1U, Metric::RESET_DURATION);
    const char* const lines[] = {
        ("INFO: setData: Received valid data with timestamp=3000, Entity=Core_1, Descriptor= , duration=0, "
         "previous timestamp=2000 \n"),
        "DEBUG: M: New timestamp provided for sampled metric. Pushing buffered data to the writer stream.\n",
        "DEBUG: M: Pushing buffered data to writer stream\n",
        "DEBUG: M: Saving data to the buffered data vector.\n",
        "INFO: setting duration to zero due to reset!\n",
        "DEBUG: M: Valid duration since last sampling point for entity=Core_1descriptor=  is set as 0 \n",
        "DEBUG: M: No descriptor provided. Creating one with the metric name for Scopra.\n",
    };
    std::size_t at = 0;
    for (const char* line : lines) {
        at = session.log.debug().find(line, at);
        ASSERT_NE(std::string::npos, at) << line;
        at += std::strlen(line);
    }

    auto traced = makeMetric(Type::TracedEvent);
    sample(*traced, 2000, m_core1, m_c1, 1U);
    EXPECT_TRUE(session.log.contains(
        "INFO: M: Valid duration since the last transition point for entity=Core_1 descriptor=C1 is set as 1000 \n"));
}

}    // namespace
