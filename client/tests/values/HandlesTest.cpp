#include "values/Handles.h"

#include "support/TestSession.h"
#include "values/DataHandleProvider.h"
#include "values/Description.h"
#include "values/Formatter.h"
#include "values/Quantity.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
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
    EXPECT_EQ("Core #", field->getFieldName());
    EXPECT_EQ("", field->getShortName());
    EXPECT_EQ("the core", field->getDescription());
    EXPECT_EQ("Where", field->getHeader());
    EXPECT_EQ(DataHandleType::FIELD, field->getHandleType());
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
        EXPECT_EQ(c.name, attribute->getShortName());
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

// Events and descriptors follow the same rule.
template <typename Described>
class SharedHandleTest : public HandlesTest {
protected:
    using Handle = std::conditional_t<std::is_same_v<Described, EventDescription>, Event, DataDescriptor>;

    Described describe(const std::string& name, const std::string& shortName, const Data& value) const
    {
        Described description(name, shortName);
        description.addAttributeValue(volts, value);
        return description;
    }
};

using SharedKinds = testing::Types<EventDescription, DataDescriptorBuilder>;
TYPED_TEST_SUITE(SharedHandleTest, SharedKinds);

TYPED_TEST(SharedHandleTest, KeysNameTheAttributesInOrder)
{
    EXPECT_EQ("C0-C0", TypeParam("C0", "C0").getKey());
    TypeParam description("C0", "");
    description.addAttributeValue(this->source, Data("x"));
    description.addAttributeValue(this->volts, Data(5LL));
    EXPECT_EQ("C0--" + std::to_string(this->source->getId()) + "-x-" + std::to_string(this->volts->getId()) + "-5",
              description.getKey());
}

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

}    // namespace
}    // namespace pwr
