#include "runtime/EtwProvider.h"

#include "support/DoorGuard.h"
#include "support/FakeTracing.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Pieces = std::vector<std::string>;
using namespace std::string_literals;

constexpr GUID PROVIDER{7, 0, 0, {}};
constexpr EVENT_DESCRIPTOR EVENT{42, 0, 0, 4, 0, 0, 0};

class EtwProviderTest : public testing::Test {
protected:
    EtwProviderTest() { m_door->tracing = &m_tracing; }

    test::DoorGuard m_door;
    test::FakeTracing m_tracing;
    EtwProvider m_provider{guid()};

private:
    // The door must be replaced before the provider registers.
    const GUID* guid()
    {
        m_door->tracing = &m_tracing;
        return &PROVIDER;
    }
};

TEST_F(EtwProviderTest, PayloadsAreLittleEndianAndInOrder)
{
    char data[] = {'x', '\0', 'z'};
    EXPECT_TRUE(m_provider.WriteIntEvent(&EVENT, 0x0102030405060708ULL));
    EXPECT_EQ((Pieces{"\x08\x07\x06\x05\x04\x03\x02\x01"s}), m_tracing.payload);
    EXPECT_TRUE(m_provider.WriteStructEvent(&EVENT, data, 3));
    EXPECT_EQ((Pieces{"\3\0\0\0"s, "x\0z"s}), m_tracing.payload);
    EXPECT_TRUE(m_provider.WriteStructEvent(&EVENT, nullptr, 0));
    EXPECT_EQ((Pieces{"\0\0\0\0"s, ""}), m_tracing.payload);
    EXPECT_TRUE(m_provider.WriteOrderedStructEvent(&EVENT, data, 2, -2));
    EXPECT_EQ((Pieces{"\xFE\xFF\xFF\xFF"s, "\2\0\0\0"s, "x\0"s}), m_tracing.payload);
    EXPECT_TRUE(m_provider.WriteIntStringPairEvent(&EVENT, 0xA0B0C0D0U, "a\xE9"));
    EXPECT_EQ((Pieces{"\xD0\xC0\xB0\xA0"s, "a\0\xE9\xFF\0\0"s}), m_tracing.payload);
    EXPECT_EQ("write 153 event 42", m_tracing.calls.back());
}

TEST_F(EtwProviderTest, RefusedWritesGiveFalse)
{
    const std::size_t calls = m_tracing.calls.size();
    EXPECT_FALSE(m_provider.WriteStructEvent(&EVENT, nullptr, 1));
    EXPECT_FALSE(m_provider.WriteStructEvent(&EVENT, "x", -1));
    EXPECT_FALSE(m_provider.WriteOrderedStructEvent(&EVENT, nullptr, 1, 0));
    EXPECT_FALSE(m_provider.WriteIntEvent(nullptr, 1));
    EtwEvent untyped(nullptr);
    EXPECT_FALSE(m_provider.WriteEvent(untyped));
    EXPECT_EQ(calls, m_tracing.calls.size());
    m_tracing.codes["write"] = {8};
    EXPECT_FALSE(m_provider.WriteIntEvent(&EVENT, 1));
}

TEST_F(EtwProviderTest, RegistersForItsLife)
{
    {
        const EtwProvider other(&PROVIDER);
    }
    EXPECT_EQ((Pieces{"register 7", "register 7", "unregister 153"}), m_tracing.calls);
    m_tracing.codes["register"] = {8};
    EtwProvider refused(&PROVIDER);
    refused.WriteIntEvent(&EVENT, 1);
    EXPECT_EQ("write 0 event 42", m_tracing.calls.back());
}

TEST_F(EtwProviderTest, EventPacksItsItemsByKind)
{
    EtwEvent event(&EVENT);
    EXPECT_EQ(0U, event.PackEvent());
    EXPECT_EQ(0U, event.Count());
    event.AddString(L"ab");
    event.AddValue32(2);
    event.AddValue64(1);
    EXPECT_EQ(8U + 4 + 6, event.PackEvent());
    EXPECT_EQ(3U, event.Count());
    event.AddTrailingValue64(3);
    EXPECT_TRUE(m_provider.WriteEvent(event));    // packs anew
    EXPECT_EQ(26U, event.Size());
    EXPECT_EQ((Pieces{"\1\0\0\0\0\0\0\0"s, "\2\0\0\0"s, "\3\0\0\0\0\0\0\0"s, "a\0b\0\0\0"s}), m_tracing.payload);
}

TEST_F(EtwProviderTest, EventTextsAreUtf16)
{
    EtwEvent event(&EVENT);
    event.AddString(L"\u00e9\U0001F600");
    event.AddString(L"");
    EXPECT_TRUE(m_provider.WriteEvent(event));
    EXPECT_EQ((Pieces{"\xE9\0\x3D\xD8\x00\xDE\0\0"s, "\0\0"s}), m_tracing.payload);
    EXPECT_EQ(10U, event.Size());
}

TEST(EtwReadTest, DataBeginBehindSizeAndOrder)
{
    char data[] = "\0\0\0\0\0\0\0\0x";
    EVENT_RECORD record{};
    EXPECT_EQ(nullptr, EtwProvider::ReadStructEvent(&record));
    EXPECT_EQ(nullptr, EtwProvider::ReadOrderedStructEvent(nullptr));
    record.UserData = data;
    EXPECT_EQ(data + 4, EtwProvider::ReadStructEvent(&record));
    EXPECT_EQ(data + 8, EtwProvider::ReadOrderedStructEvent(&record));
}

}    // namespace
