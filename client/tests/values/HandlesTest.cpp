#include "values/Handles.h"

#include "support/TestSession.h"
#include "values/DataHandleProvider.h"
#include "values/Description.h"
#include "values/Formatter.h"
#include "values/Quantity.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace pwr {
namespace {

const std::string NULL_ATTRIBUTE = "WARNING: Please provide a valid non-null attribute to set.\n";

class HandlesTest : public testing::Test {
protected:
    HandlesTest()
    {
        volts = Attribute::create("Volts", Quantity::voltage(), AttributeType{9});
        source = Attribute::create("Origin", nullptr, AttributeType{10});
        DataHandleProvider::addStream(session.stream);
        session.writer.clear();
    }

    test::TestSession session;
    const Attribute* volts;
    const Attribute* source;
};

TEST_F(HandlesTest, OnlyAPlainDescriptionFillsInTheShortName)
{
    const Description plain("Package", "");
    const FieldDescription field("Package", "");
    EXPECT_EQ("Package", plain.getShortName());
    EXPECT_EQ("P", Description("Package", "P").getShortName());
    EXPECT_EQ("", field.getShortName());
    EXPECT_EQ("Package", field.getFieldName());
    EXPECT_EQ("", field.getDescription());
    const std::pair<DescriptionType, unsigned int> types[] = {
        {plain.getType(), 0}, {StateDescription("x", "").getType(), 1},      {EventDescription("x", "").getType(), 2},
        {field.getType(), 3}, {DataDescriptorBuilder("x", "").getType(), 5},
    };
    for (const auto& [type, number] : types)
        EXPECT_EQ(DescriptionType{number}, type);
}

TEST_F(HandlesTest, AHandleKeepsItsDescriptionsTexts)
{
    FieldDescription description("Core", "");
    description.setFieldName("Core #");
    description.setDescription("the core");
    description.setHeader("Where");
    const Field* field = Field::create(description);
    description.setHeader("later");
    EXPECT_EQ("Core", field->getName());
    EXPECT_EQ("Core", field->getQualifiedName());
    EXPECT_EQ("Core #", field->getFieldName());
    EXPECT_EQ("", field->getShortName());
    EXPECT_EQ("the core", field->getDescription());
    EXPECT_EQ("Where", field->getHeader());
    EXPECT_EQ(DataHandleType::FIELD, field->getHandleType());
    EXPECT_EQ(UniqueIdType::DATA_HANDLE, field->getIdType());
}

TEST_F(HandlesTest, AnAttributeTakesItsTitleFromItsQuantity)
{
    EXPECT_EQ("Volts", volts->getName());
    EXPECT_EQ("Volts", volts->getShortName());
    EXPECT_EQ("Voltage (mV)", volts->getFieldName());
    EXPECT_EQ(Quantity::voltage(), volts->getQuantity());
    EXPECT_EQ(AttributeType{9}, volts->getAttributeType());
    EXPECT_EQ("Origin", source->getFieldName());
    EXPECT_EQ(nullptr, source->getQuantity());
}

TEST_F(HandlesTest, DefaultAttributesAreMadeTogetherOnFirstUse)
{
    const Attribute* own = Attribute::create("Mine", nullptr, AttributeType::FREQUENCY);
    const struct {
        AttributeType type;
        const char* name;
        const char* fieldName;
    } cases[] = {
        {AttributeType{1}, "Frequency", "Frequency (MHz)"},
        {AttributeType{2}, "IRQ", "IRQ"},
        {AttributeType{3}, "Process", "Process"},
        {AttributeType{4}, "Thread", "Thread"},
        {AttributeType{6}, "Source", "Source"},
        {AttributeType{7}, "Target", "Target"},
    };
    session.writer.clear();
    Attribute::get(AttributeType::TARGET);    // any of them makes all
    EXPECT_EQ(std::size(cases), session.writer.ids.size());
    unsigned long long expectedId = own->getId() + 1;
    for (const auto& c : cases) {
        const Attribute* attribute = Attribute::get(c.type);
        EXPECT_EQ(c.name, attribute->getName());
        EXPECT_EQ(c.fieldName, attribute->getFieldName());
        EXPECT_EQ(c.type, attribute->getAttributeType());
        EXPECT_EQ(expectedId++, attribute->getId()) << c.name;
    }
    EXPECT_EQ(std::size(cases), session.writer.ids.size());

    for (const int missing : {0, 5, 8, 255}) {
        session.log.clear();
        EXPECT_EQ(nullptr, Attribute::get(static_cast<AttributeType>(missing)));
        EXPECT_EQ("WARNING: No attribute of type " + std::to_string(missing) + " found\n", session.log.debug());
    }
}

// Says that it is a field but isn't one.
class OddDescription : public Description {
public:
    OddDescription() : Description(DescriptionType::FIELD, "odd", "") {}
};

TEST_F(HandlesTest, OnlyAFieldDescriptionHandsOnItsAttributes)
{
    FieldDescription description("f", "");
    EXPECT_EQ(0, description.addAttribute(volts));
    EXPECT_EQ(0, description.addAttribute(source));
    EXPECT_EQ(0, description.addAttribute(volts));
    const Field* field = Field::create(description);
    EXPECT_EQ((std::vector<const Attribute*>{volts, source, volts}),
              std::vector<const Attribute*>(field->begin(), field->end()));
    EXPECT_EQ(3u, field->getAttributeCount());
    EXPECT_NE(field, Field::create(description));

    EXPECT_EQ(0u, Field::create(Description("plain", ""))->getAttributeCount());
    EXPECT_EQ(0u, Field::create(OddDescription())->getAttributeCount());
}

TEST_F(HandlesTest, KeysNameTheAttributesInOrder)
{
    EventDescription event("C0", "C0");
    EXPECT_EQ("C0-C0", event.getKey());
    event.addAttributeValue(source, Data("x"));
    event.addAttributeValue(volts, Data(5LL));
    const std::string key = "C0-C0-" + std::to_string(source->getId()) + "-x-" + std::to_string(volts->getId()) + "-5";
    EXPECT_EQ(key, event.getKey());
    DataDescriptorBuilder builder("C0", "C0");
    builder.addAttributeValue(source, Data("x"));
    builder.addAttributeValue(volts, Data(5LL));
    EXPECT_EQ(key, builder.getKey());
}

// Events and descriptors follow the same rule.
template <typename Described>
struct Maker;
template <>
struct Maker<EventDescription> {
    using Handle = Event;
};
template <>
struct Maker<DataDescriptorBuilder> {
    using Handle = DataDescriptor;
};

template <typename Described>
class SharedHandleTest : public HandlesTest {
protected:
    using Handle = typename Maker<Described>::Handle;

    Described describe(const std::string& name, const std::string& shortName, const Data& value) const
    {
        Described description(name, shortName);
        description.addAttributeValue(volts, value);
        return description;
    }
};

using SharedKinds = testing::Types<EventDescription, DataDescriptorBuilder>;
TYPED_TEST_SUITE(SharedHandleTest, SharedKinds);

TYPED_TEST(SharedHandleTest, EqualDescriptionsGiveOneObjectAnnouncedOnce)
{
    using Shared = typename TestFixture::Handle;
    const Shared* first = Shared::create(this->describe("C1", "c", Data(1LL)));
    EXPECT_EQ(first, Shared::create(this->describe("C1", "c", Data(1LL))));
    EXPECT_EQ(1u, this->session.writer.ids.size());
    EXPECT_TRUE(first->equal(this->describe("C1", "c", Data(1LL))));
    EXPECT_EQ(1u, first->getAttributeCount());

    // Another value, name, short name (another bucket), type or number of values makes another object.
    EXPECT_NE(first, Shared::create(this->describe("C1", "c", Data(2LL))));
    EXPECT_NE(first, Shared::create(this->describe("C2", "c", Data(1LL))));
    EXPECT_NE(first, Shared::create(this->describe("C1", "d", Data(1LL))));
    EXPECT_NE(first, Shared::create(this->describe("C1", "c", Data("1"))));
    EXPECT_NE(first, Shared::create(TypeParam("C1", "c")));
    EXPECT_EQ(6u, this->session.writer.ids.size());
    EXPECT_FALSE(first->equal(TypeParam("C1", "c")));
    EXPECT_TRUE(first->equal(this->describe("C1", "other short name", Data(1LL))));
}

TYPED_TEST(SharedHandleTest, ASharedKeyDoesNotMakeDescriptionsEqual)
{
    using Shared = typename TestFixture::Handle;
    const TypeParam left("a-b", "c");
    const TypeParam right("a", "b-c");
    EXPECT_EQ(left.getKey(), right.getKey());
    const Shared* first = Shared::create(left);
    const Shared* second = Shared::create(right);
    EXPECT_NE(first, second);
    EXPECT_EQ(first, Shared::create(left));
    EXPECT_EQ(second, Shared::create(right));
}

TYPED_TEST(SharedHandleTest, ANullAttributeWarnsAndEqualsNothing)
{
    using Shared = typename TestFixture::Handle;
    TypeParam description("n", "n");
    description.addAttributeValue(nullptr, Data(1LL));
    const Shared* first = Shared::create(description);
    EXPECT_EQ("", this->session.log.debug());
    EXPECT_NE(first, Shared::create(description));
    EXPECT_EQ(NULL_ATTRIBUTE, this->session.log.debug());
}

TEST_F(HandlesTest, AnAttributeAddedTwiceKeepsItsFirstValueForLookUps)
{
    EventDescription description("e", "");
    description.addAttributeValue(volts, Data(1LL));
    EXPECT_EQ(1u, description.getAttributeCount());
    EXPECT_EQ("", session.log.debug());
    description.addAttributeValue(volts, Data(2LL));
    EXPECT_EQ(1u, description.getAttributeCount());
    EXPECT_EQ("WARNING: Attribute map and list size mismatch.\n", session.log.debug());
    EXPECT_EQ(Data(1LL), *description.getAttributeValue(volts));
    EXPECT_EQ(2, std::distance(description.begin(), description.end()));

    session.log.clear();
    EXPECT_EQ(nullptr, description.getAttributeValue(source));
    EXPECT_EQ("", session.log.debug());
    EXPECT_EQ(nullptr, description.getAttributeValue(nullptr));
    EXPECT_EQ(NULL_ATTRIBUTE, session.log.debug());
}

TEST_F(HandlesTest, AStateCanTakeItsColumnTitleFromAValue)
{
    StateDescription description("P0", "");
    Data frequency(1200LL);
    frequency.setCustomFormatter(IntFormatter(" MHz", 0, false));
    EXPECT_EQ(0, description.addAttributeValue(source, Data("bios"), false));
    EXPECT_EQ("P0", description.getFieldName());
    EXPECT_EQ(0, description.addAttributeValue(volts, frequency, true));
    EXPECT_EQ("1200 MHz", description.getFieldName());
    const State* state = State::create(description);
    EXPECT_EQ("1200 MHz", state->getFieldName());
    EXPECT_EQ("P0", state->getName());
    EXPECT_EQ(Data("bios"), *state->getAttributeValue(source));
    EXPECT_NE(state, State::create(description));
}

TEST_F(HandlesTest, AStatesValueIsReplacedInBothPlaces)
{
    StateDescription description("P0", "");
    description.addAttributeValue(volts, Data(1LL), false);
    State state = *State::create(description);
    EXPECT_EQ(0, state.addAttributeValue(volts, Data("text")));
    EXPECT_EQ(0, state.addAttributeValue(source, Data(2LL)));
    EXPECT_EQ(2u, state.getAttributeCount());
    EXPECT_EQ(Data("text"), *state.getAttributeValue(volts));
    EXPECT_EQ(Data("text"), state.begin()->second);
    EXPECT_EQ(source, (state.begin() + 1)->first);
    EXPECT_EQ(Data(1LL), *description.getAttributeValue(volts));
}

TEST_F(HandlesTest, TheLaterDynamicValueWinsWhateverItsType)
{
    DynamicAttributeValueManager values;
    EXPECT_EQ(0, values.setAttributeValue(volts, Data(1LL)));
    EXPECT_EQ(0, values.setAttributeValue(source, Data(3LL)));
    EXPECT_EQ(0, values.setAttributeValue(volts, Data("two")));
    EXPECT_EQ(2u, values.getAttributeCount());
    EXPECT_EQ(Data("two"), *values.getAttributeValue(volts));
    EXPECT_EQ(volts->getId(), values.begin()->first);
    EXPECT_EQ(nullptr, values.getAttributeValue(Attribute::get(AttributeType::IRQ)));
    EXPECT_EQ("", session.log.debug());

    EXPECT_EQ(1, values.setAttributeValue(nullptr, Data(1LL)));
    EXPECT_EQ(nullptr, values.getAttributeValue(nullptr));
    EXPECT_EQ(NULL_ATTRIBUTE + NULL_ATTRIBUTE, session.log.debug());
    EXPECT_EQ(2u, values.getAttributeCount());
}

TEST_F(HandlesTest, ANameValuePairIsNamedAfterItsInfo)
{
    const NameValuePair* pair = NameValuePair::create(0xffffffffU, "Balanced", "Power plan");
    EXPECT_EQ("Power plan", pair->getName());
    EXPECT_EQ("Power plan", pair->getInfoName());
    EXPECT_EQ("Balanced", pair->getValueDesc());
    EXPECT_EQ(0xffffffffU, pair->getValue());
    EXPECT_EQ(DataHandleType::NAME_VALUE_PAIR, pair->getHandleType());
    EXPECT_NE(pair, NameValuePair::create(0xffffffffU, "Balanced", "Power plan"));
}

}    // namespace
}    // namespace pwr
