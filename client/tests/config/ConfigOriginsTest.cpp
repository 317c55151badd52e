#include "support/CollectorConfig.h"

#include "config/Operation.h"

#include <set>
#include <utility>

using namespace pwr;
using test::Names;

namespace {

class ConfigOriginsTest : public test::CollectorConfig {
protected:
    ConfigOrigins originsOf(const std::string& platforms, const std::string& prefix = "FEAT",
                            const std::vector<std::pair<std::string, std::string>>& specifiers = {})
    {
        ConfigOrigins origins;
        EXPECT_EQ(0, m_config->getOrigins(origins, specifiers, platforms, prefix)) << m_log.errors();
        return origins;
    }

    // "LINE message operation", "!" behind it for one that says nothing; without the platform in front of the message.
    static Names servedBy(const ConfigOrigins& origins)
    {
        Names told;
        for (const ConfigOrigins::Statement& one : origins.statements) {
            told.push_back(std::to_string(one.line) + " " + one.message + " " + one.operation +
                           (one.isAvailable ? "" : "!"));
        }
        return told;
    }

    // The model's operations are those that the statements name.
    static void expectSameOperations(const ConfigOrigins& origins)
    {
        for (const InputMsg* message : origins.messages) {
            std::set<std::string> known;
            std::set<std::string> named;
            for (const Operation* operation : *message)
                known.insert(operation->getName());
            for (const ConfigOrigins::Statement& one : origins.statements) {
                if (one.message == message->getFullName() && one.isAvailable && !one.operation.empty())
                    named.insert(one.operation);
            }
            EXPECT_EQ(known, named) << message->getFullName();
        }
    }
};

TEST_F(ConfigOriginsTest, EachStatementOfTheChainTellsItsFileAndLine)
{
    const std::string first = file("# nothing\n\nALL_FEAT_CAPABILITY_GROUP_VALUE= a_b=c # d\r\n"
                                   "ALL_FEAT_R_OPKIND_OTHER_CATEG=x\nALL_REST_R_OPKIND_CATEG=x\n");
    const std::string second = file("PLATB_FEAT_R_OPKIND_CATEG=other\nPLATA_FEAT_INHERIT_MODE_VALUE=EXTEND\n"
                                    "PLATA-X_FEAT_Y_MSG_READ-WHEN=POLL");
    ASSERT_EQ(0, m_config->parse({first, second}, {&m_collector, &m_other}, {}));
    const ConfigOrigins origins = originsOf("FMS=PLATA-X,OS=PLATA");
    ASSERT_EQ(3U, origins.platforms.size());
    EXPECT_EQ("PLATA-X PLATA", origins.platforms[0].name + " " + origins.platforms[0].parent);
    EXPECT_EQ("PLATA ALL", origins.platforms[1].name + " " + origins.platforms[1].parent);
    EXPECT_EQ("ALL ", origins.platforms[2].name + " " + origins.platforms[2].parent);

    ASSERT_EQ(4U, origins.statements.size());
    const ConfigOrigins::Statement& group = origins.statements[0];
    EXPECT_EQ(first, group.file);
    EXPECT_EQ(3U, group.line);
    EXPECT_EQ("ALL FEAT CAPABILITY GROUP VALUE [ a_b=c]", group.platform + " " + group.prefix + " " + group.tag + " " +
                                                              group.keyword + " " + group.key + " [" + group.value +
                                                              "]");
    EXPECT_EQ(second, origins.statements[2].file);
    EXPECT_EQ(Names({"3  ", "4 ALL_FEAT_R FEAT_R_OPKIND", "2  ", "3 PLATA-X_FEAT_Y "}), servedBy(origins));
    ASSERT_EQ(1U, origins.messages.size());    // PLATA-X has nothing to read
    EXPECT_EQ("ALL_FEAT_R", origins.messages[0]->getFullName());
}

TEST_F(ConfigOriginsTest, StatementsFollowTheirMessageThroughGroupsAndCopies)
{
    const struct {
        const char* name;
        const char* lines;
        Names served;
    } cases[] = {
        {"members bring operations and triggers, before and after; number and processor stay",
         "ALL_FEAT_A_OPKIND_CATEG=1\nALL_FEAT_A_MSG_READ-WHEN=POLL\nALL_FEAT_A_MSG_ID=9\nALL_FEAT_G_MSG_GROUP= A ,B\n"
         "ALL_FEAT_B_CONSTANT_K=1\nALL_FEAT_A_MSG_READ-WHICH-CPU=5\n",
         {"1 ALL_FEAT_G FEAT_A_OPKIND", "2 ALL_FEAT_G ", "3 ALL_FEAT_A ", "4 ALL_FEAT_G ",
          "5 ALL_FEAT_G FEAT_B_CONSTANT", "6 ALL_FEAT_G "}},
        {"a group joins another; the first one's tag leads on, its member's to what is left of it",
         "ALL_FEAT_B_OPKIND_CATEG=1\nALL_FEAT_A_MSG_GROUP=B\nALL_FEAT_C_MSG_GROUP=A\nALL_FEAT_B_OPKIND_CATEG=2\n"
         "ALL_FEAT_A_OPKIND_CATEG=3\n",
         {"1 ALL_FEAT_C FEAT_B_OPKIND", "2 ALL_FEAT_C ", "3 ALL_FEAT_C ", "4 ALL_FEAT_A FEAT_B_OPKIND",
          "5 ALL_FEAT_C FEAT_A_OPKIND"}},
        {"a copy has the settings up to its line, of the nearest platform, and goes on alone",
         "ALL_FEAT_A_OPKIND_CATEG=far\nPLATA_FEAT_A_OPKIND_CATEG=1\nPLATA_FEAT_A_MSG_ID=2\n"
         "PLATA_FEAT_C_MSG_SOURCE=A\nPLATA_FEAT_A_OPKIND_CATEG=2\nPLATA_FEAT_C_OPKIND_CATEG=3\n"
         "PLATA_FEAT_D_MSG_SOURCE=C\n",
         {"1 ALL_FEAT_A FEAT_A_OPKIND", "2 PLATA_FEAT_A FEAT_A_OPKIND", "3 PLATA_FEAT_A ",
          "4 PLATA_FEAT_C FEAT_C_OPKIND", "2 PLATA_FEAT_C FEAT_C_OPKIND", "5 PLATA_FEAT_A FEAT_A_OPKIND",
          "6 PLATA_FEAT_C FEAT_C_OPKIND", "7 PLATA_FEAT_D FEAT_D_OPKIND", "2 PLATA_FEAT_D FEAT_D_OPKIND",
          "6 PLATA_FEAT_D FEAT_D_OPKIND"}},
        {"what does not work here says nothing, nor do copies of it and of oneself",
         "PLATA_FEAT_A_ABSENT_CATEG=1\nPLATA_FEAT_B_MSG_SOURCE=A\nPLATA_FEAT_B_OPKIND_CATEG=1\n"
         "PLATA_FEAT_B_MSG_SOURCE=B\nALL_FEAT_Z_OPKIND_CATEG=1\n",
         {"1 PLATA_FEAT_A FEAT_A_ABSENT!", "2 PLATA_FEAT_B !", "3 PLATA_FEAT_B FEAT_B_OPKIND", "4 PLATA_FEAT_B !",
          "5 ALL_FEAT_Z FEAT_Z_OPKIND"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_EQ(0, load(std::string("PLATA_REST_A_CONSTANT_A=1\n") + c.lines)) << m_log.errors();
        const ConfigOrigins origins = originsOf("FMS=PLATA");
        Names served = c.served;
        for (std::string& one : served)    // the line in front
            one = std::to_string(std::stoi(one) + 1) + one.substr(one.find(' '));
        EXPECT_EQ(served, servedBy(origins));
        EXPECT_FALSE(origins.messages.empty());
        expectSameOperations(origins);
    }
    ASSERT_EQ(0, load(test::WHOLE_LANGUAGE));
    expectSameOperations(originsOf("FMS=PLATA-B"));
}

TEST_F(ConfigOriginsTest, ModelLinesTellWhichOfTheirSpecifiersFits)
{
    ASSERT_EQ(0, load("PLATA_MODEL_FMS_CONSTANT_VALUE= 6.1 , 6.142.9,6.158,\nPLATA_MODEL_CORES_CONSTANT_RANGE=2,8\n"
                      "PLATA_MODEL_FMS_CONSTANT_VALUE=\nPLATA_MODEL_FMS_CONSTANT_VALUE=6.158.3,6.158\n"
                      "ALL_MODEL_OS_CONSTANT_VALUE=Linux\nOTHER_MODEL_OS_CONSTANT_VALUE=Linux\n"));
    const ConfigOrigins origins =
        originsOf("FMS=PLATA", "FEAT", {{"FMS", "6.158.3"}, {"CORES", "4"}, {"OS", "Windows"}});
    Names fits;
    for (const ConfigOrigins::Statement& one : origins.statements)
        fits.push_back(one.matchedSpecifier + (one.matchedSpecifier.empty() ? "" : " fits ") + one.matchedProperty);
    EXPECT_EQ(Names({"FMS=6.158 fits FMS=6.158.3", "CORES=2,8 fits CORES=4", "", "FMS=6.158.3 fits FMS=6.158.3", ""}),
              fits);
    EXPECT_TRUE(origins.messages.empty());
}

TEST_F(ConfigOriginsTest, WhatCanNotBeToldIsRefused)
{
    ConfigOrigins origins;
    EXPECT_EQ(-1, m_config->getOrigins(origins, {}, "FMS=ALL", "FEAT"));    // nothing is loaded
    const std::string path = file("ALL_FEAT_R_OPKIND_CATEG=1\n");
    const auto parse = [&] { return m_config->parse({path}, {&m_collector, &m_other}, {}); };
    ASSERT_EQ(0, parse());
    EXPECT_EQ(-1, m_config->getOrigins(origins, {}, "FMS=NONE", "FEAT"));
    EXPECT_TRUE(m_log.contains("couldn't retrieve valid list of platforms from platform name string = FMS=NONE"));

    // The file changes in a comment, in a value of the same length, and goes.
    for (const char* content : {"ALL_FEAT_R_OPKIND_CATEG=1\n#", "ALL_FEAT_R_OPKIND_CATEG=2\n", "no statement", ""}) {
        ASSERT_EQ(0, parse());
        std::ofstream(path, std::ios::binary) << content;
        m_log.clear();
        EXPECT_EQ(-1, m_config->getOrigins(origins, {}, "FMS=ALL", "FEAT")) << content;
        EXPECT_TRUE(m_log.contains("config file " + path + " has changed since it was loaded!")) << content;
        EXPECT_TRUE(origins.platforms.empty() && origins.statements.empty() && origins.messages.empty());
        std::ofstream(path, std::ios::binary) << "ALL_FEAT_R_OPKIND_CATEG=1\n";
        EXPECT_EQ(0, m_config->getOrigins(origins, {}, "FMS=ALL", "FEAT")) << content;
    }
    std::filesystem::remove(path);
    EXPECT_EQ(-1, m_config->getOrigins(origins, {}, "FMS=ALL", "FEAT"));

    const std::string broken = file("ALL_FEAT_R_OPKIND_CATEG=1\nALL_FEAT_R_NOKIND_CATEG=1\n");
    ASSERT_EQ(-1, m_config->parse({broken}, {&m_collector, &m_other}, {}));
    EXPECT_EQ(-1, m_config->getOrigins(origins, {}, "FMS=ALL", "FEAT"));
    EXPECT_TRUE(m_log.contains("config file " + broken + " was not read to its end"));
}

}    // namespace
