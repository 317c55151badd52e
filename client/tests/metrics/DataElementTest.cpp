#include "metrics/DataElement.h"

#include "support/TestSession.h"
#include "values/AttributeManagers.h"
#include "values/Description.h"
#include "values/EntityHandle.h"
#include "values/Formatter.h"
#include "values/Handles.h"

#include <gtest/gtest.h>

using namespace pwr;

namespace {

class DataElementTest : public testing::Test {
protected:
    test::TestSession m_session;
    const EntityHandle* m_entity = EntityHandle::create("E", nullptr);
    const DataDescriptor* m_descriptor = DataDescriptor::create(DataDescriptorBuilder("D", ""));
};

TEST_F(DataElementTest, FirstValueFixesTheTypeByItsKind)
{
    const auto typeOf = [this](auto value) {
        DataElement element(m_entity, nullptr);
        EXPECT_EQ(0, element.setValue(value));
        EXPECT_TRUE(element.getValue()->isValid());
        return element.getValue()->getType();
    };
    EXPECT_EQ(DataType::INT, typeOf(-3));
    EXPECT_EQ(DataType::UINT, typeOf(3U));
    EXPECT_EQ(DataType::UINT, typeOf(3ULL));
    EXPECT_EQ(DataType::REAL, typeOf(0.5F));
    EXPECT_EQ(DataType::STRING, typeOf("text"));
    EXPECT_EQ(DataType::UINT_RANGE, typeOf(std::pair<unsigned long long, unsigned long long>(1, 2)));

    DataElement element(m_entity, nullptr);
    EXPECT_EQ(0, element.setValue(*m_descriptor));
    EXPECT_EQ(DataType::HANDLE, element.getValue()->getType());
}

TEST_F(DataElementTest, LaterValueOfAnotherTypeIsRefused)
{
    DataElement element(m_entity, nullptr);
    element.setValue(1U);
    EXPECT_EQ(0, element.setValue(2U));
    EXPECT_EQ(1, element.setValue(2.5));
    EXPECT_EQ(DataType::UINT, element.getValue()->getType());
    EXPECT_FALSE(element.getValue()->isValid());
}

TEST_F(DataElementTest, WhatIsNotSetReadsAsNullWithAWarning)
{
    DataElement element(m_entity, nullptr);
    EXPECT_EQ(nullptr, element.getValue());
    EXPECT_EQ(nullptr, element.getScopraDescriptor());
    EXPECT_EQ("WARNING: Value is not set in the DataElement object. Returning an invalid Data object.\n"
              "WARNING: Scopra descriptor is not set. Was this DataElement objectever added to Metric before calling "
              "getScopraDescriptor?\n",
              m_session.log.debug());
}

TEST_F(DataElementTest, NullIsRefusedAndChangesNothing)
{
    DataElement element(m_entity, nullptr);
    EXPECT_EQ(0, element.setDescriptor(m_descriptor));
    EXPECT_EQ(1, element.setEntity(nullptr));
    EXPECT_EQ(1, element.setDescriptor(nullptr));
    EXPECT_EQ(1, element.setAdditionalInfo(nullptr));
    EXPECT_EQ("WARNING: Please provide a valid entity.\n"
              "WARNING: Please provide a valid descriptor.\n"
              "WARNING: Please provide a valid DynamicAttributeValueManager.\n",
              m_session.log.debug());
    EXPECT_EQ(m_entity, element.getEntity());
    EXPECT_EQ(m_descriptor, element.getDescriptor());
    EXPECT_EQ(m_descriptor, element.getScopraDescriptor());
}

TEST_F(DataElementTest, CopiesAreDeep)
{
    DynamicAttributeValueManager info;
    DataElement source(m_entity, m_descriptor);
    source.setAdditionalInfo(&info);
    Data value("one");
    value.setCustomFormatter(StringFormatter(5));
    source.setValue(value);

    const DataElement copy(source);
    DataElement assigned(EntityHandle::create("other", nullptr), nullptr);
    assigned = source;
    source.setValue("two");
    for (const DataElement* element : {&copy, static_cast<const DataElement*>(&assigned)}) {
        std::string text;
        EXPECT_EQ(0, element->getValue()->toFormattedString(text));
        EXPECT_EQ("  one", text);
        EXPECT_EQ(m_entity, element->getEntity());
        EXPECT_EQ(m_descriptor, element->getScopraDescriptor());
        EXPECT_EQ(&info, element->getAdditionalInfo());
    }

    const DataElement unset(m_entity, nullptr);
    assigned = unset;
    EXPECT_EQ(nullptr, assigned.getValue());
}

}    // namespace
