#include "runtime/EtwProvider.h"

#include "runtime/os/Os.h"

#include <cstdint>
#include <iterator>
#include <type_traits>

namespace {

EVENT_DATA_DESCRIPTOR item(const void* data, std::size_t bytes)
{
    EVENT_DATA_DESCRIPTOR result{};
    result.Ptr = static_cast<ULONGLONG>(reinterpret_cast<std::uintptr_t>(data));
    result.Size = static_cast<ULONG>(bytes);
    return result;
}

void appendUtf16(std::u16string& text, std::uint32_t codePoint)
{
    constexpr std::uint32_t replacement = 0xFFFD;
    if (codePoint > 0x10FFFF) codePoint = replacement;
    if (codePoint < 0x10000) {
        text += static_cast<char16_t>(codePoint);
        return;
    }
    codePoint -= 0x10000;
    text += static_cast<char16_t>(0xD800 + (codePoint >> 10));
    text += static_cast<char16_t>(0xDC00 + (codePoint & 0x3FF));
}

// The units of a wide text are UTF-16 on some systems, whole characters on others.
std::u16string utf16(const std::wstring& text)
{
    std::u16string result;
    result.reserve(text.size());
    for (const wchar_t unit : text) {
        appendUtf16(result, static_cast<std::make_unsigned_t<wchar_t>>(unit));
    }
    return result;
}

// Byte by byte, extended by the sign, as all wide texts of the tool are made.
std::u16string widened(const std::string& text)
{
    std::u16string result;
    for (const char byte : text) {
        result += static_cast<char16_t>(static_cast<signed char>(byte));
    }
    return result;
}

std::size_t bytesWithTerminator(const std::u16string& text)
{
    return (text.size() + 1) * sizeof(char16_t);
}

bool isData(const char* data, int size)
{
    return size == 0 || (size > 0 && data != nullptr);
}

char* dataBehind(EVENT_RECORD* record, std::size_t offset)
{
    if (record == nullptr || record->UserData == nullptr) return nullptr;
    return static_cast<char*>(record->UserData) + offset;
}

}    // namespace

EtwEvent::EtwEvent(const EVENT_DESCRIPTOR* type) : m_type(type) {}

EtwEvent::~EtwEvent()
{
    delete[] m_descriptors;
}

unsigned long EtwEvent::PackEvent()
{
    delete[] m_descriptors;
    m_descriptors = nullptr;
    m_count = 0;
    m_size = 0;
    m_descriptors =
        new EVENT_DATA_DESCRIPTOR[m_values64.size() + m_values32.size() + m_trailingValues64.size() + m_strings.size()];
    for (const unsigned long long& value : m_values64) {
        addItem_i(&value, sizeof value);
    }
    for (const unsigned int& value : m_values32) {
        addItem_i(&value, sizeof value);
    }
    for (const unsigned long long& value : m_trailingValues64) {
        addItem_i(&value, sizeof value);
    }
    m_packedStrings.clear();
    m_packedStrings.reserve(m_strings.size());    // the texts stay where they are
    for (const std::wstring& text : m_strings) {
        m_packedStrings.push_back(utf16(text));
        addItem_i(m_packedStrings.back().c_str(), bytesWithTerminator(m_packedStrings.back()));
    }
    return m_size;
}

void EtwEvent::addItem_i(const void* data, std::size_t bytes)
{
    m_descriptors[m_count++] = item(data, bytes);
    m_size += static_cast<unsigned long>(bytes);
}

EtwProvider::EtwProvider(const GUID* guid) : m_guid(guid != nullptr ? *guid : GUID{})
{
    if (guid != nullptr) pwr::os::current().tracing->registerProvider(m_guid, m_handle);
}

EtwProvider::~EtwProvider()
{
    pwr::os::current().tracing->unregisterProvider(m_handle);
}

bool EtwProvider::write_i(const EVENT_DESCRIPTOR* type, unsigned long count, EVENT_DATA_DESCRIPTOR* items)
{
    if (type == nullptr) return false;
    return pwr::os::current().tracing->write(m_handle, *type, count, items) == 0;
}

bool EtwProvider::WriteEvent(EtwEvent& event)
{
    event.PackEvent();
    return write_i(event.Type(), event.Count(), event.Descriptor());
}

bool EtwProvider::WriteIntEvent(const EVENT_DESCRIPTOR* type, unsigned long long value)
{
    EVENT_DATA_DESCRIPTOR items[] = {item(&value, sizeof value)};
    return write_i(type, 1, items);
}

bool EtwProvider::WriteStructEvent(const EVENT_DESCRIPTOR* type, const char* data, int size)
{
    if (!isData(data, size)) return false;
    EVENT_DATA_DESCRIPTOR items[] = {item(&size, sizeof size), item(data, static_cast<std::size_t>(size))};
    return write_i(type, static_cast<unsigned long>(std::size(items)), items);
}

bool EtwProvider::WriteOrderedStructEvent(const EVENT_DESCRIPTOR* type, char* data, int size, int order)
{
    if (!isData(data, size)) return false;
    EVENT_DATA_DESCRIPTOR items[] = {item(&order, sizeof order), item(&size, sizeof size),
                                     item(data, static_cast<std::size_t>(size))};
    return write_i(type, static_cast<unsigned long>(std::size(items)), items);
}

bool EtwProvider::WriteIntStringPairEvent(const EVENT_DESCRIPTOR* type, unsigned int value, std::string text)
{
    const std::u16string wide = widened(text);
    EVENT_DATA_DESCRIPTOR items[] = {item(&value, sizeof value), item(wide.c_str(), bytesWithTerminator(wide))};
    return write_i(type, static_cast<unsigned long>(std::size(items)), items);
}

char* EtwProvider::ReadStructEvent(EVENT_RECORD* record)
{
    return dataBehind(record, sizeof(int));
}

char* EtwProvider::ReadOrderedStructEvent(EVENT_RECORD* record)
{
    return dataBehind(record, 2 * sizeof(int));
}
