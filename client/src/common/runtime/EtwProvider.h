#pragma once

#include "runtime/Export.h"
#include "runtime/os/WindowsTypes.h"

#include <string>
#include <vector>

// A payload of values, put together one by one. Its items go out in the order of their kinds, whatever the order of the
// calls: 8-byte values, 4-byte values, trailing 8-byte values, strings. The owner keeps it until it is written, and may
// add to it and write it again. One thread at a time.
//
//   EtwEvent event(&PHASE_EVENT);
//   event.AddValue64(count);
//   event.AddString(L"collect");
//   provider.WriteEvent(event);
class QUORVANE_API EtwEvent {
public:
    // `type` says which event this is; it stays the caller's and must live as long as the event.
    explicit EtwEvent(const EVENT_DESCRIPTOR* type);
    virtual ~EtwEvent();
    EtwEvent(const EtwEvent&) = delete;
    EtwEvent& operator=(const EtwEvent&) = delete;

    // Describes the items for the system, in place of an earlier packing, and returns the payload's size in bytes.
    // Adding an item makes another packing necessary.
    virtual unsigned long PackEvent();

    const EVENT_DESCRIPTOR* Type() { return m_type; }

    // Of the last packing: number of items, bytes of payload, the items. 0, 0 and null before.
    unsigned long Count() { return m_count; }
    unsigned long Size() { return m_size; }
    EVENT_DATA_DESCRIPTOR* Descriptor() { return m_descriptors; }

    void AddValue64(unsigned long long value) { m_values64.push_back(value); }
    void AddValue32(unsigned int value) { m_values32.push_back(value); }
    void AddTrailingValue64(unsigned long long value) { m_trailingValues64.push_back(value); }

    // Goes out as UTF-16 with its terminator on every system.
    void AddString(const std::wstring& text) { m_strings.push_back(text); }

private:
    void addItem_i(const void* data, std::size_t bytes);

    std::vector<unsigned long long> m_values64;
    std::vector<unsigned int> m_values32;
    std::vector<unsigned long long> m_trailingValues64;
    std::vector<std::wstring> m_strings;
    std::vector<std::u16string> m_packedStrings;       // what the descriptors of the strings point at
    EVENT_DATA_DESCRIPTOR* m_descriptors = nullptr;    // owned
    const EVENT_DESCRIPTOR* m_type;                    // not owned
    unsigned long m_count = 0;
    unsigned long m_size = 0;
};

// Writes the tool's own events into the tracing sessions that enable its GUID. Registered while it lives; where the
// system refuses that, every write gives false. A write may be called from any thread.
//
//   EtwProvider provider(&PROVIDER_GUID);
//   provider.WriteIntStringPairEvent(&PHASE_EVENT, 1, "collect");
//
// Each write gives true when the system took the event, also when no session wants it. False, among others, without an
// event descriptor, for an event that is too large for a session, or when its file can't be written. Integers are
// little-endian in the payload.
class QUORVANE_API EtwProvider {
public:
    explicit EtwProvider(const GUID* guid);
    virtual ~EtwProvider();
    EtwProvider(const EtwProvider&) = delete;
    EtwProvider& operator=(const EtwProvider&) = delete;

    // Packs the event and writes it.
    virtual bool WriteEvent(EtwEvent& event);

    // Payload: the value, 8 bytes.
    virtual bool WriteIntEvent(const EVENT_DESCRIPTOR* type, unsigned long long value);

    // Payload: `size` (4 bytes, not negative) and `size` bytes of `data`, which may be null for none.
    virtual bool WriteStructEvent(const EVENT_DESCRIPTOR* type, const char* data, int size);

    // Payload: `order` and `size` (4 bytes each) and `size` bytes of `data`, which may be null for none.
    virtual bool WriteOrderedStructEvent(const EVENT_DESCRIPTOR* type, char* data, int size, int order);

    // Payload: the value, 4 bytes, and the text as UTF-16 with its terminator. Each byte is widened by itself: only
    // ASCII keeps its meaning.
    virtual bool WriteIntStringPairEvent(const EVENT_DESCRIPTOR* type, unsigned int value, std::string text);

    // Where the data of a struct event begin, in the record's own memory: behind the numbers. Null for a record without
    // user data. Whether the data are there, UserDataLength tells.
    static char* ReadStructEvent(EVENT_RECORD* record);
    static char* ReadOrderedStructEvent(EVENT_RECORD* record);

private:
    bool write_i(const EVENT_DESCRIPTOR* type, unsigned long count, EVENT_DATA_DESCRIPTOR* items);

    REGHANDLE m_handle = 0;
    GUID m_guid;
};
