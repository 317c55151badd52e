#include "record/Metadata.h"

#include "record/Serializer.h"
#include "support/Bytes.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>

using namespace pwr;
using test::bytes;
using test::cut;
using test::written;

namespace {

const std::string OPERATION = "03 00 00 00  02 00 'op'  03 00 'MSR'  08 00 00 00  03 00 'tag'";
const std::string MSG = "00 00 00 00  01 00 00 00  02 00 00 00  03 00 00 00  03 00 'cap'"
                        "  02 00  02 00 'g1'  02 00 'g2'  03 00 'msg'  01 00 " +
                        OPERATION + "  01 00  03 00 'trg'  01 00  02 00 'tp'";
const std::string METRIC = "01 00 00 00  FF FF FF FF  05 00 00 00  02 00  01 00 'k'  01 00 'v'  01 00 'k'  01 00 'w'";
const std::string COLLECTOR = "04 00 00 00  03 00 'col'  01 00  01 00 'k'  01 00 'v'";

template <typename Record>
std::unique_ptr<Record> read(const std::vector<char>& stored)
{
    Serializer in(stored);
    std::unique_ptr<Metadata> record(Metadata::deserialize(in, 1));
    auto* typed = dynamic_cast<Record*>(record.get());
    if (typed != nullptr) record.release();
    return std::unique_ptr<Record>(typed);
}

std::string printed(const auto& record)
{
    std::ostringstream out;
    out << record;
    return out.str();
}

class MetadataTest : public testing::Test {
protected:
    // What reading a record cut at each byte logs, where it gives no record.
    std::string warningsOfCutRecords(const std::string& picture)
    {
        const std::vector<char> whole = bytes(picture);
        for (std::size_t n = 0; n < whole.size(); ++n) {
            EXPECT_EQ(nullptr, read<Metadata>(cut(whole, n))) << n;
        }
        return m_log.debug();
    }

    test::LogCapture m_log{2};
};

TEST_F(MetadataTest, EveryKindHasItsBytes)
{
    auto operation = std::make_unique<OperationMetadata>("op", "MSR", 8);
    operation->setOrgMsgTag("tag");
    EXPECT_EQ(bytes(OPERATION), written(*operation));

    MsgMetadata msg(1, 2, 3);
    msg.setCapName("cap");
    msg.setCapGroups({"g2", "g1"});
    msg.setMsgName("msg");
    msg.addMetaValue(operation.release());
    msg.addMetaValue(nullptr);
    msg.setTriggers({"trg"});
    msg.setTracepointNames({"tp"});
    EXPECT_EQ(bytes(MSG), written(msg));

    MetricMetadata metric(-1, 5);
    metric.addValue("k", "v");
    metric.addValue("k", "w");
    EXPECT_EQ(bytes(METRIC), written(metric));

    CollectorMetadata collector("col");
    collector.addValue("k", "v");
    EXPECT_EQ(bytes(COLLECTOR), written(collector));
}

TEST_F(MetadataTest, EveryKindReadsBackAndPrints)
{
    const auto msg = read<MsgMetadata>(bytes(MSG));
    ASSERT_TRUE(msg);
    EXPECT_EQ(1, static_cast<Metadata&>(*msg).getPluginID());
    EXPECT_EQ(PWSet<std::string>{"tp"}, msg->getTracepointNames());
    EXPECT_EQ("Msg Metadata Plugin ID: 1\nMsg Metadata Metric ID: 2\nMsg Metadata MSG ID: 3\n"
              "Msg Metadata Switch name: cap\nMsg Metadata group names: g1 g2 \nMsg Metadata Msg name: msg\n"
              "\tOperation Meta: Name = op, Operation = MSR, Size = 8, Org msg tag = tag\n"
              "Msg Metadata triggers: \ttrg\n",
              printed(*msg));
    EXPECT_EQ(bytes(MSG), written(*msg));

    const auto metric = read<MetricMetadata>(bytes(METRIC));
    ASSERT_TRUE(metric);
    EXPECT_EQ("Metric Metadata plugin ID: -1\nMetric Metadata metric ID: 5\n"
              "\tMetric Metadata payload[0]: key = k, value = v\n\tMetric Metadata payload[1]: key = k, value = w\n",
              printed(*metric));

    const auto collector = read<CollectorMetadata>(bytes(COLLECTOR));
    ASSERT_TRUE(collector);
    EXPECT_EQ(-1, collector->getPluginID());
    EXPECT_EQ("Collector Meta: Name = col\n\tCollector Metadata payload[0]: key = k, value = v\n", printed(*collector));
    EXPECT_EQ("", m_log.debug());
}

TEST_F(MetadataTest, ACutMsgRecordIsNoRecord)
{
    // Inside the nested record's tag only does a cut go on to fail later.
    const std::string warnings = warningsOfCutRecords(MSG);
    EXPECT_EQ(5u, m_log.count("WARNING: couldn't extract org msg tag!\n"));
    EXPECT_EQ(5 * std::string("WARNING: couldn't extract org msg tag!\n").size(), warnings.size());
}

TEST_F(MetadataTest, ACutRecordOfPairsSaysWhatIsMissing)
{
    const struct {
        const std::string& picture;
        const char* record;
        std::vector<std::pair<const char*, int>> cutsOfFields;
    } cases[] = {
        {METRIC,
         "metric",
         {{"plugin ID", 4}, {"metric ID", 4}, {"map size", 2}, {"key", 3}, {"value", 3}, {"key", 3}, {"value", 3}}},
        {COLLECTOR, "collector", {{"name", 5}, {"map size", 2}, {"key", 3}, {"value", 3}}},
    };
    for (const auto& c : cases) {
        std::string expected;
        for (const auto& [field, cuts] : c.cutsOfFields) {
            for (int i = 0; i < cuts; ++i) {
                expected += std::string("WARNING: ERROR reading ") + field + " while deserializing " + c.record +
                            " metadata message!\n";
            }
        }
        m_log.clear();
        EXPECT_EQ(expected, warningsOfCutRecords(c.picture));
    }
}

TEST_F(MetadataTest, OnlyTheTagOfAnOperationMayBeMissing)
{
    const std::vector<char> whole = bytes(OPERATION);
    const std::size_t required = whole.size() - 5;
    for (std::size_t n = 0; n < whole.size(); ++n) {
        const auto record = read<OperationMetadata>(cut(whole, n));
        EXPECT_EQ(n >= required, record != nullptr) << n;
        if (record) {
            EXPECT_EQ("Operation Meta: Name = op, Operation = MSR, Size = 8", printed(*record));
        }
    }
    EXPECT_EQ(5u, m_log.count("WARNING: couldn't extract org msg tag!\n"));

    m_log.environment().setVerbosity(3);
    ASSERT_TRUE(read<OperationMetadata>(whole));
    EXPECT_TRUE(m_log.contains("3DEBUG: OK, read org msg tag = tag\n"));
}

TEST_F(MetadataTest, AConstantReadsBackAsAPlainOperation)
{
    const CONSTANTOperationMetadata constant("c", {{"key", "value"}});
    EXPECT_EQ("key", constant.begin()->first);
    EXPECT_EQ(1, constant.end() - constant.begin());
    const auto record = read<OperationMetadata>(written(constant));
    ASSERT_TRUE(record);
    EXPECT_EQ(nullptr, dynamic_cast<CONSTANTOperationMetadata*>(record.get()));
    EXPECT_EQ("Operation Meta: Name = c, Operation = CONSTANT, Size = 0", printed(*record));
}

TEST_F(MetadataTest, ARecordWithAnEmptyRequiredTextIsNoRecord)
{
    const std::string ids = "00 00 00 00  01 00 00 00  02 00 00 00  03 00 00 00  ";
    const struct {
        const char* body;
        bool isRecord;
    } cases[] = {
        {"01 00 'c'  00 00  01 00 'm'  00 00  00 00  00 00", true},
        {"01 00 'c'  02 00  01 00 'g' 01 00 'g'  01 00 'm'  00 00  00 00  00 00", true},
        {"00 00  00 00  01 00 'm'  00 00  00 00  00 00", false},
        {"01 00 'c'  01 00  00 00  01 00 'm'  00 00  00 00  00 00", false},
        {"01 00 'c'  00 00  00 00  00 00  00 00  00 00", false},
        {"01 00 'c'  00 00  01 00 'm'  00 00  01 00 00 00  00 00", false},
        {"01 00 'c'  00 00  01 00 'm'  00 00  00 00  01 00 00 00", false},
    };
    for (const auto& c : cases) {
        const auto record = read<MsgMetadata>(bytes(ids + c.body));
        EXPECT_EQ(c.isRecord, record != nullptr) << c.body;
        if (record) {
            EXPECT_LE(record->getCapGroups().size(), 1u);
        }
    }
}

TEST_F(MetadataTest, AMessageHoldsOperationsOnly)
{
    const std::string head = "00 00 00 00  01 00 00 00  02 00 00 00  03 00 00 00  01 00 'c'  00 00  01 00 'm'  01 00  ";
    EXPECT_TRUE(read<MsgMetadata>(bytes(head + OPERATION + "00 00  00 00")));
    for (const std::string& nested : {MSG, METRIC, COLLECTOR}) {
        EXPECT_FALSE(read<MsgMetadata>(bytes(head + nested + "00 00  00 00")));
    }
    // A chain of messages is refused at its first link.
    std::string chain;
    for (int i = 0; i < 20000; ++i) {
        chain += head;
    }
    EXPECT_FALSE(read<MsgMetadata>(bytes(chain)));
}

TEST_F(MetadataTest, AnUnknownTagIsTold)
{
    testing::internal::CaptureStderr();
    EXPECT_FALSE(read<Metadata>(bytes("05 00 00 00  00 00 00 00")));
    EXPECT_FALSE(read<Metadata>(bytes("FF FF FF FF")));
    EXPECT_FALSE(read<Metadata>(bytes("05 00 00")));
    std::string told = testing::internal::GetCapturedStderr();
    std::erase(told, '\r');
    EXPECT_EQ("ERROR: unsupported Metadata Data Type 5\nERROR: unsupported Metadata Data Type 4294967295\n", told);
}

TEST_F(MetadataTest, AListThatIsTooLongIsCut)
{
    MetricMetadata metric;
    PWSet<std::string> groups;
    for (int i = 0; i < 65537; ++i) {
        metric.addValue("k", std::to_string(i));
        groups.insert(std::to_string(100000 + i));
    }
    const auto read65535 = read<MetricMetadata>(written(metric));
    ASSERT_TRUE(read65535);
    ASSERT_EQ(65535u, read65535->getValues().size());
    EXPECT_EQ("65534", read65535->getValues().back().second);

    MsgMetadata msg;
    msg.setCapName("cap");
    msg.setMsgName("msg");
    msg.setTriggers(groups);
    const auto readMsg = read<MsgMetadata>(written(msg));
    ASSERT_TRUE(readMsg);
    EXPECT_EQ("165534", *readMsg->getTriggers().rbegin());
}

}    // namespace
