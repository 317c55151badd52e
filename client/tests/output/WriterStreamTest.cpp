#include "output/WriterStream.h"

#include "metrics/Metric.h"
#include "output/TableMessage.h"
#include "output/WriterMessage.h"
#include "plugins/QuorvaneHost.h"
#include "support/TestSession.h"
#include "values/DataHandleProvider.h"
#include "values/EntityHandle.h"
#include "values/Quantity.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace pwr;

namespace {

struct StreamEnd {
    void operator()(WriterStream* stream) const { QuorvaneHost::destroyWriterStream(stream); }
};
using StreamPointer = std::unique_ptr<WriterStream, StreamEnd>;

// A writer that notes its name in a list when something arrives or ends, and can push on arrival.
class NotingWriter : public WriterPlugin {
public:
    NotingWriter(const std::string& name, std::vector<std::string>& notes) : WriterPlugin(name), m_notes(notes) {}
    ~NotingWriter() override = default;
    int openOutput() override { return 0; }
    int closeOutput() override { return note_i(); }

private:
    int writeMessage(const Metric&) override { return note_i(); }
    int writeMessage(const IdMessage&) override { return note_i(); }
    int note_i()
    {
        m_notes.push_back(getUUID());
        return 1;
    }

    std::vector<std::string>& m_notes;
};

// Claims to be another kind of message than it is.
class Impostor : public WriterMessage {
public:
    explicit Impostor(MessageType claimed) : m_claimed(claimed) {}
    MessageType getMessageType() const override { return m_claimed; }

private:
    MessageType m_claimed;
};

}    // namespace

TEST(WriterStreamTest, EachKindOfMessageArrivesAtItsOverload)
{
    test::TestSession session;
    WriterStream& stream = *session.stream;
    test::RecordingWriter& writer = session.writer;
    SystemMetadata system = test::makeSystem();

    SystemMessage systemMessage(system);
    EXPECT_EQ(0, stream.pushMessage(systemMessage));
    EXPECT_EQ(std::vector<const SystemMetadata*>{&system}, writer.systems);

    IdMessage ids;
    ids.addUniqueId(Quantity::power());
    ids.addUniqueId(Quantity::time());
    EXPECT_EQ(0, stream.pushMessage(ids));
    ASSERT_EQ(1u, writer.ids.size());
    EXPECT_EQ((std::vector<unsigned long long>{Quantity::power()->getId(), Quantity::time()->getId()}), writer.ids[0]);

    MetricContainerInfoMessage info;
    info.setMetricContainerTag("TEMP");
    EXPECT_EQ(0, stream.pushMessage(info));
    ASSERT_EQ(1u, writer.infos.size());
    EXPECT_EQ("TEMP", writer.infos[0].tag);

    HeaderTextMessage header;
    EXPECT_EQ(0, header.setMessage("head"));
    EXPECT_EQ(0, stream.pushTextMessage("text"));
    ASSERT_EQ(2u, writer.texts.size());
    EXPECT_EQ(MessageType::HEADER_TEXT, writer.texts[0].type);
    EXPECT_EQ("head", writer.texts[0].text);
    EXPECT_EQ(MessageType::TEXT, writer.texts[1].type);
    EXPECT_EQ("text", writer.texts[1].text);

    EXPECT_TRUE(writer.tables.empty());
    TableMessage table("Table", nullptr);
    EXPECT_EQ(0, stream.pushMessage(table));
    EXPECT_EQ(1u, writer.tables.size());
}

TEST(WriterStreamTest, DeliveryIgnoresAnswersAndEmptiesATable)
{
    test::TestSession session;
    session.writer.result = 1;
    TableMessage table("Table", nullptr);
    table.addField("Count", DataType::UINT, true);
    table.createTable();
    table.setField(0, 7u);
    EXPECT_EQ(0, session.stream->pushMessage(table));
    ASSERT_EQ(1u, session.writer.tables.size());
    EXPECT_EQ(std::vector<std::string>{"7"}, session.writer.tables[0].cells);

    const Data* value = nullptr;
    bool valid = true;
    EXPECT_EQ(0, table.getFieldValue(*table.sharedFieldBegin(), value, valid));
    EXPECT_FALSE(valid);
    EXPECT_EQ(1u, table.getSharedFieldCount());

    table.setField(0, 8u);
    session.writers.clear();
    EXPECT_EQ(0, session.stream->pushMessage(table));
    EXPECT_EQ(0, table.getFieldValue(*table.sharedFieldBegin(), value, valid));
    EXPECT_FALSE(valid) << "an empty set of writers empties the table too";
}

TEST(WriterStreamTest, MessagesOfAnotherClassThanTheyClaimAreNotDelivered)
{
    test::TestSession session;
    Impostor table(MessageType::TABLE);
    EXPECT_EQ(1, session.stream->pushMessage(table));
    for (int type = 1; type < 8; ++type) {
        Impostor other(static_cast<MessageType>(type));
        EXPECT_EQ(0, session.stream->pushMessage(other));
    }
    EXPECT_TRUE(session.writer.tables.empty() && session.writer.texts.empty() && session.writer.infos.empty());
    EXPECT_TRUE(session.writer.ids.empty() && session.writer.systems.empty());
}

TEST(WriterStreamTest, TextGoesToTheStreamOfTheEnvironment)
{
    test::TestSession session;
    test::RecordingWriter otherWriter;
    const std::set<WriterPlugin*> others{&otherWriter};
    const StreamPointer other(QuorvaneHost::createWriterStream(others));
    EXPECT_EQ(0, other->pushTextMessage("text"));
    EXPECT_TRUE(otherWriter.texts.empty());
    EXPECT_EQ(1u, session.writer.texts.size());

    session.log.environment().setWriterStream(nullptr);
    EXPECT_THROW(other->pushTextMessage("text"), const char*);
}

TEST(WriterStreamTest, MetricReachesEveryWriterAndOneFailureIsTold)
{
    test::RecordingWriter writers[2];
    test::TestSession session;
    const SystemMetadata system = test::makeSystem();
    const Metric metric("Temperature", Metric::MetricType::SampledValue, "TEMP", "TEMP", system,
                        Quantity::temperature());
    session.log.clear();
    EXPECT_EQ(1, session.stream->pushMessage(static_cast<const Metric*>(nullptr)));
    EXPECT_EQ("WARNING: Error pushing null Metric object to Writer stream.\n", session.log.debug());
    EXPECT_EQ(0, session.stream->pushMessage(&metric));

    session.writers = {&writers[0], &writers[1], nullptr};
    writers[0].result = 1;
    session.log.clear();
    EXPECT_EQ(1, session.stream->pushMessage(&metric));
    EXPECT_EQ("WARNING: Error pushing Metric object to writer plugin\n", session.log.debug());
    EXPECT_EQ(1u, writers[0].points.size());
    EXPECT_EQ(1u, writers[1].points.size());

    session.writers.clear();
    EXPECT_EQ(0, session.stream->pushMessage(&metric));
}

TEST(WriterStreamTest, WritersAreServedAndClosedInAddressOrder)
{
    test::TestSession session;
    std::vector<std::string> notes;
    NotingWriter writers[] = {{"a", notes}, {"b", notes}, {"c", notes}};
    const std::set<WriterPlugin*> set{&writers[2], nullptr, &writers[0], &writers[1]};
    StreamPointer stream(QuorvaneHost::createWriterStream(set));

    IdMessage message;
    EXPECT_EQ(0, stream->pushMessage(message));
    EXPECT_EQ((std::vector<std::string>{"a", "b", "c"}), notes);
    stream.reset();
    EXPECT_EQ((std::vector<std::string>{"a", "b", "c", "a", "b", "c"}), notes);
}

TEST(WriterStreamTest, EndedStreamIsForgottenByRegistryAndEnvironment)
{
    test::TestSession session;
    test::RecordingWriter otherWriter;
    const std::set<WriterPlugin*> others{&otherWriter};
    StreamPointer other(QuorvaneHost::createWriterStream(others));
    EXPECT_EQ(0, DataHandleProvider::addStream(other.get()));
    EXPECT_EQ(1u, otherWriter.ids.size());
    other.reset();
    EXPECT_EQ(1, otherWriter.closed);
    EXPECT_NE(nullptr, EntityHandle::create("Disk", nullptr));    // is announced to nobody
    EXPECT_EQ(1u, otherWriter.ids.size());
    EXPECT_EQ(session.stream, session.log.environment().getWriterStream()) << "another stream's end";

    EXPECT_EQ(0, DataHandleProvider::addStream(session.stream));
    QuorvaneHost::destroyWriterStream(session.stream);
    session.stream = nullptr;
    EXPECT_EQ(1, session.writer.closed);
    EXPECT_EQ(nullptr, session.log.environment().getWriterStream());
    EXPECT_NE(nullptr, EntityHandle::create("Fan", nullptr));
    EXPECT_EQ(1u, session.writer.ids.size());
}
