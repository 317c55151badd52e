#pragma once

#include "config/ConfigCap.h"
#include "config/InputMsg.h"
#include "config/qv_configfile_parser.h"
#include "record/SystemMetadata.h"
#include "support/FakeCollector.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace test {

using Names = std::vector<std::string>;

// Every statement once, on three platforms.
inline constexpr const char* WHOLE_LANGUAGE = R"(# a comment

   ALL_FEAT_CAPABILITY_COMMAND-LINE_VALUE= feat   # a comment behind a statement
ALL_FEAT_CAPABILITY_HELP-STRING_VALUE=Feature text: a_b=c
ALL_FEAT_CAPABILITY_GROUP_VALUE=grp,not split
ALL_FEAT_CAPABILITY_GROUP_VALUE=a_b=c
ALL_FEAT_CAPABILITY_HIDDEN_VALUE=tRuE
ALL_FEAT_RESID_MSG_READ-WHEN=BEGIN,POLL,END,NOTIFIER=n1,
ALL_FEAT_RESID_MSG_READ-WHEN-MAX-DETAIL=POLL,TRACEPOINT=tp1,TRACEPOINT=t=p
ALL_FEAT_RESID_MSG_READ-WHICH-CPU=3
ALL_FEAT_RESID_MSG_READ-WHICH-CPU=ALL
ALL_FEAT_RESID_MSG_ID=010
ALL_FEAT_RESID_OPKIND_CATEG= value
ALL_FEAT_RESID_OPKIND_OTHER_CATEG=a=b,c
ALL_FEAT_RESID_CONSTANT_KEY_WITH_UNDERSCORES=text
ALL_SETUP_WRITE_MSG_WRITE-WHEN=INIT
ALL_SETUP_WRITE_MSG_WRITE-WHEN-MAX-DETAIL=
ALL_SETUP_WRITE_MSG_WRITE-WHICH-CPU=0x1
PLATA-B_MODEL_CORES_CONSTANT_VALUE= 4 cores
PLATA-B_MODEL_CORES_CONSTANT_RANGE= 2 , 8 , ignored
PLATA-B_FEAT_INHERIT_MODE_VALUE=EXTEND
PLATA_MODEL_FMS_CONSTANT_VALUE=6.142.9, 6.158 ,
PLATA_MODEL_PCI_CONSTANT_VALUE=VENDOR=0x1234,DEVICE=0x5678
PLATA_MODEL_PMT_CONSTANT_VALUE=GUID=0x1234
ALL_FEAT_RESID2_OPKIND_CATEG=sourced
PLATA-B_FEAT_COPY_MSG_SOURCE=RESID2
PLATA-B_FEAT_COPY_MSG_GROUP=RESID
)";

// A test over a loaded collector configuration: two collectors, one with the kind "OPKIND", the unavailable kind
// "ABSENT" and constants, the other with the kind "OTHER".
class CollectorConfig : public testing::Test {
protected:
    CollectorConfig()
    {
        m_collector.provide("OPKIND", {"CATEG", "OTHER_CATEG"});
        m_collector.provideUnavailable("ABSENT");
        m_collector.provideConstants();
        m_other.provide("OTHER");
    }
    ~CollectorConfig() override
    {
        m_config->destroy();
        for (const std::string& path : m_files)
            std::filesystem::remove(path);
    }

    // Writes a file and gives its path; it is removed at the end.
    std::string file(const std::string& content)
    {
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        m_files.push_back(std::string(test->test_suite_name()) + std::to_string(m_files.size() % 10) + ".conf");
        std::ofstream(m_files.back(), std::ios::binary) << content;
        return m_files.back();
    }

    int load(const std::string& content) { return m_config->parse({file(content)}, {&m_collector, &m_other}, {}); }

    // The messages that a query gives, by full name.
    Names messages(const std::string& platform, const std::string& prefix, const Names& triggers,
                   pwr::CollectionType type = pwr::CollectionType::NORMAL) const
    {
        std::vector<pwr::InputMsg*> found;
        if (m_config->getMessagesFor(found, "FMS=" + platform, prefix, triggers, type) != 0) return {"none"};
        Names names;
        for (const pwr::InputMsg* message : found)
            names.push_back(message->getFullName());
        return names;
    }

    // The one message that a query for "POLL" gives.
    pwr::InputMsg& message(const std::string& platform, const std::string& prefix) const
    {
        std::vector<pwr::InputMsg*> found;
        m_config->getMessagesFor(found, "FMS=" + platform, prefix, {"POLL"}, pwr::CollectionType::NORMAL);
        if (found.size() != 1) throw std::runtime_error("not one message");
        return *found.front();
    }

    std::string platformFor(const std::string& type, const std::string& value) const
    {
        std::string name = "untouched";
        EXPECT_EQ(0, m_config->getPlatformName(name, {type, value}));
        return name;
    }

    LogCapture m_log{2};
    FakeCollector m_collector{"one"};
    FakeCollector m_other{"two"};
    pwr::QVConfigFileParser* m_config = pwr::QVConfigFileParser::instance();

private:
    std::vector<std::string> m_files;
};

}    // namespace test
