#include "output/WriterMessage.h"

#include "metrics/Metric.h"
#include "output/TableMessage.h"
#include "support/TestSession.h"
#include "values/Quantity.h"

#include <gtest/gtest.h>

#include <string>

using namespace pwr;

TEST(WriterMessageTest, MessagesAndMetricsDrawFromOneCounterAndCopiesKeepTheirNumber)
{
    test::TestSession session;
    const SystemMetadata system = test::makeSystem();
    const IdMessage first;
    const Metric metric("Temperature", Metric::MetricType::SampledValue, "TEMP", "TEMP", system,
                        Quantity::temperature());
    IdMessage second;
    const IdMessage third;
    EXPECT_GT(first.getMessageId(), 0u);
    EXPECT_GT(metric.getId(), first.getMessageId());
    EXPECT_GT(second.getMessageId(), metric.getId());
    EXPECT_EQ(second.getMessageId() + 1, third.getMessageId());

    second.addParentMessage(3);
    const IdMessage copy(second);
    EXPECT_EQ(second.getMessageId(), copy.getMessageId());
    EXPECT_TRUE(copy.isChildOf(3));
    EXPECT_FALSE(copy.isChildOf(4) || copy.isChildOf(copy.getMessageId()));
    second = third;
    EXPECT_EQ(third.getMessageId(), second.getMessageId());
}

TEST(WriterMessageTest, ContainerHeaderIsABannerOfThreeLines)
{
    const struct {
        const char* text;
        const char* banner;
    } cases[] = {{"abc", "===\nabc\n==="}, {"x", "=\nx\n="}, {"", "\n\n"}, {"a\nb", "===\na\nb\n==="}};
    MetricContainerInfoMessage message;
    EXPECT_EQ("", message.getContainerHeader());
    for (const auto& c : cases) {
        EXPECT_EQ(0, message.setContainerHeader(c.text));
        EXPECT_EQ(c.banner, message.getContainerHeader());
    }
}

TEST(WriterMessageTest, TextWithoutAStreamIsThrownBack)
{
    const auto thrownBy = [](auto make) -> std::string {
        try {
            make();
        } catch (const char* text) {
            return text;
        }
        return "nothing";
    };
    const auto makeText = [] { TextMessage(); };
    const auto makeHeader = [] { HeaderTextMessage(); };
    const std::string expected = "ERROR: Writer stream is not initialized";
    {
        const test::LogCapture environmentWithoutStream;
        EXPECT_EQ(expected, thrownBy(makeText));
        EXPECT_EQ(expected, thrownBy(makeHeader));
    }
    ASSERT_EQ(nullptr, g_pluginEnvironment);
    EXPECT_EQ(expected, thrownBy(makeText));
}

TEST(WriterMessageTest, SettingATextSendsItEachTimeUnderOneNumber)
{
    test::TestSession session;
    TextMessage message;
    EXPECT_TRUE(session.writer.texts.empty());
    EXPECT_EQ(0, message.setMessage("one"));
    EXPECT_EQ(0, message.setMessage("two"));

    const auto& texts = session.writer.texts;
    ASSERT_EQ(2u, texts.size());
    EXPECT_EQ("one", texts[0].text);
    EXPECT_EQ("two", texts[1].text);
    EXPECT_EQ(message.getMessageId(), texts[0].messageId);
    EXPECT_EQ(message.getMessageId(), texts[1].messageId);
}
