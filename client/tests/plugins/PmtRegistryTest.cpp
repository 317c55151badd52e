#include "plugins/PluginEnvironment.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

_qv_aggregator_info endpoint(unsigned int guid, unsigned short deviceKey, unsigned short collectionType)
{
    _qv_aggregator_info info{};
    info.guid = guid;
    info.deviceKey = deviceKey;
    info.collectionType = collectionType;
    return info;
}

TEST(PmtRegistryTest, EndpointsAreFoundByGuidByNameAndByDevice)
{
    PluginEnvironment environment;
    std::string name = "Platform A";
    environment.addPMTPlatformGUID(name, 7);
    environment.addLoadedPMT(endpoint(7, 100, 3));
    environment.addLoadedPMT(endpoint(9, 101, 4));
    environment.addLoadedPMT(endpoint(7, 102, 5));

    EXPECT_EQ((std::set<unsigned int>{7, 9}), environment.getLoadedPMTGUIDs());
    EXPECT_EQ(3, environment.getLoadedPMTCollectionType(7)) << "of the first";
    EXPECT_EQ(2, environment.getLoadedPMTNumberEndpoints(7));
    EXPECT_EQ(2, environment.getLoadedPMTNumberEndpoints(name));
    ASSERT_EQ(2U, environment.getLoadedPMTEndpoints(name).size());
    EXPECT_EQ(102, environment.getLoadedPMTEndpoints(7)[1].deviceKey);
    EXPECT_EQ(7U, environment.getPMTPlatformGUID(name));
    EXPECT_EQ(9U, environment.getPMTPlatformGUID(static_cast<unsigned short>(101)));
    _qv_aggregator_info info = endpoint(11, 0, 0);
    EXPECT_EQ(11U, environment.getPMTPlatformGUID(&info));
    EXPECT_EQ(name, environment.getPMTPlatformName(7));

    environment.addLoadedPMT(endpoint(9, 100, 0));    // the device has another platform now
    EXPECT_EQ(9U, environment.getPMTPlatformGUID(static_cast<unsigned short>(100)));
}

TEST(PmtRegistryTest, WhatIsNotKnownGivesNothing)
{
    PluginEnvironment environment;
    environment.addLoadedPMT(endpoint(0, 1, 2));    // 0 is a GUID like any other
    EXPECT_EQ("", environment.getPMTPlatformName(5));
    EXPECT_EQ(0U, environment.getPMTPlatformGUID(std::string()));
    EXPECT_EQ(0U, environment.getPMTPlatformGUID(static_cast<unsigned short>(2)));
    EXPECT_EQ(0U, environment.getPMTPlatformGUID(static_cast<_qv_aggregator_info*>(nullptr)));
    EXPECT_EQ(0, environment.getLoadedPMTCollectionType(5));
    EXPECT_EQ(0, environment.getLoadedPMTNumberEndpoints(5));
    EXPECT_EQ(0, environment.getLoadedPMTNumberEndpoints("unknown"));
    EXPECT_TRUE(environment.getLoadedPMTEndpoints(5).empty());
    EXPECT_TRUE(environment.getLoadedPMTEndpoints("unknown").empty());
}

TEST(PmtRegistryTest, NullParserKeepsTheEarlierOne)
{
    PluginEnvironment environment;
    int thing = 0;
    auto* parser = reinterpret_cast<XMLParser*>(&thing);    // a class of the host
    EXPECT_EQ(nullptr, environment.getPMTXMLParser(7));
    environment.setPMTXMLParser(7, parser);
    environment.setPMTXMLParser(7, nullptr);
    environment.setPMTXMLParser(8, nullptr);
    EXPECT_EQ(parser, environment.getPMTXMLParser(7));
    EXPECT_EQ(nullptr, environment.getPMTXMLParser(8));
}

}    // namespace
