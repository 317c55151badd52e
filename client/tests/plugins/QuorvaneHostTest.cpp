#include "plugins/QuorvaneHost.h"

#include "output/WriterMessage.h"
#include "output/WriterStream.h"
#include "support/TestSession.h"
#include "values/EntityHandle.h"

#include <gtest/gtest.h>

using namespace pwr;

TEST(QuorvaneHostTest, StreamOverTheHostsOwnSetOfWriters)
{
    test::RecordingWriter first;
    test::RecordingWriter second;
    std::set<WriterPlugin*> writers{&first};
    WriterStream* stream = QuorvaneHost::createWriterStream(writers);
    writers.insert(&second);    // the set stays the host's
    IdMessage message;
    EXPECT_EQ(0, stream->pushMessage(message));
    EXPECT_EQ(1u, first.ids.size());
    EXPECT_EQ(1u, second.ids.size());

    EXPECT_EQ(0, first.closed);
    QuorvaneHost::destroyWriterStream(stream);
    EXPECT_EQ(1, first.closed);
    EXPECT_EQ(1, second.closed);
    EXPECT_EQ(0, first.opened) << "opening is the host's";
    QuorvaneHost::destroyWriterStream(nullptr);
}

TEST(QuorvaneHostTest, TableClassesAreThoseAdded)
{
    test::TestSession session;
    const auto tableClass = [](unsigned int number) { return static_cast<TableClass>(number); };
    EXPECT_FALSE(session.stream->isSupportedTableClass(tableClass(0)));
    QuorvaneHost::addSupportedTableClass(*session.stream, tableClass(0));
    QuorvaneHost::addSupportedTableClass(*session.stream, tableClass(0xFFFFFFFF));
    EXPECT_TRUE(session.stream->isSupportedTableClass(tableClass(0)));
    EXPECT_TRUE(session.stream->isSupportedTableClass(tableClass(0xFFFFFFFF)));
    EXPECT_FALSE(session.stream->isSupportedTableClass(tableClass(1)));
}

TEST(QuorvaneHostTest, ChildrenStandUnderTheirParent)
{
    test::TestSession session;
    EntityHandle* board = EntityHandle::create("Board", nullptr);
    EntityHandle* fan = EntityHandle::create("Fan", nullptr);
    EXPECT_EQ(1, QuorvaneHost::addChild(nullptr, fan));
    EXPECT_EQ(1, QuorvaneHost::addChild(board, nullptr));
    EXPECT_EQ(nullptr, fan->getParent());
    EXPECT_EQ(0, QuorvaneHost::addChild(board, fan));
    EXPECT_EQ(board, fan->getParent());
    EXPECT_EQ("Board/Fan", fan->getQualifiedName());
    EXPECT_EQ(1, QuorvaneHost::addChild(fan, board)) << "no cycle";
    EXPECT_EQ(nullptr, board->getParent());
}
