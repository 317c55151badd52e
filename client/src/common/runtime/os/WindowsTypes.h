#pragma once

// The structures of Windows that the library's interface speaks of. On Windows they are those of its own headers;
// elsewhere copies of the same names, the same layout and the same widths stand for them. The header leaves no macro
// of <windows.h> behind that would break other headers, unless the source had included that one itself.

#ifdef _WIN32

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN    // what else comes along claims names like `byte`
#define WIN32_LEAN_AND_MEAN
#endif
#pragma push_macro("ERROR")
#pragma push_macro("TEXT")
#pragma push_macro("GetMessage")
// clang-format off: each needs the ones before it
#include <windows.h>
#include <wmistr.h>
#include <evntrace.h>
#include <evntcons.h>
#include <evntprov.h>
#include <tdh.h>
// clang-format on
#pragma pop_macro("GetMessage")
#pragma pop_macro("TEXT")
#pragma pop_macro("ERROR")

#else

#include <cstdint>

using UCHAR = unsigned char;
using USHORT = std::uint16_t;
using ULONG = std::uint32_t;    // 32 bits, as on Windows
using LONG = std::int32_t;
using LONGLONG = long long;
using ULONGLONG = unsigned long long;
using ULONG64 = unsigned long long;
using HANDLE = void*;
using TRACEHANDLE = ULONG64;
using REGHANDLE = ULONGLONG;

struct GUID {
    ULONG Data1;
    USHORT Data2;
    USHORT Data3;
    UCHAR Data4[8];
};

inline bool operator==(const GUID& left, const GUID& right)
{
    if (left.Data1 != right.Data1 || left.Data2 != right.Data2 || left.Data3 != right.Data3) return false;
    for (int i = 0; i < 8; ++i) {
        if (left.Data4[i] != right.Data4[i]) return false;
    }
    return true;
}

union LARGE_INTEGER {
    struct {
        ULONG LowPart;
        LONG HighPart;
    } u;
    LONGLONG QuadPart;
};

struct SYSTEMTIME {
    USHORT wYear;
    USHORT wMonth;
    USHORT wDayOfWeek;
    USHORT wDay;
    USHORT wHour;
    USHORT wMinute;
    USHORT wSecond;
    USHORT wMilliseconds;
};

struct TIME_ZONE_INFORMATION {
    LONG Bias;
    char16_t StandardName[32];
    SYSTEMTIME StandardDate;
    LONG StandardBias;
    char16_t DaylightName[32];
    SYSTEMTIME DaylightDate;
    LONG DaylightBias;
};

// The system.

struct DISPLAY_DEVICEA {
    ULONG cb;
    char DeviceName[32];
    char DeviceString[128];
    ULONG StateFlags;
    char DeviceID[128];
    char DeviceKey[128];
};

struct OSVERSIONINFOEXA {
    ULONG dwOSVersionInfoSize;
    ULONG dwMajorVersion;
    ULONG dwMinorVersion;
    ULONG dwBuildNumber;
    ULONG dwPlatformId;
    char szCSDVersion[128];
    USHORT wServicePackMajor;
    USHORT wServicePackMinor;
    USHORT wSuiteMask;
    UCHAR wProductType;
    UCHAR wReserved;
};

// Sessions.

inline constexpr ULONG WNODE_FLAG_TRACED_GUID = 0x00020000;
inline constexpr ULONG EVENT_TRACE_FILE_MODE_SEQUENTIAL = 0x00000001;
inline constexpr ULONG EVENT_TRACE_CONTROL_QUERY = 0;
inline constexpr ULONG EVENT_TRACE_CONTROL_STOP = 1;
inline constexpr ULONG EVENT_TRACE_CONTROL_FLUSH = 3;
inline constexpr ULONG EVENT_CONTROL_CODE_DISABLE_PROVIDER = 0;
inline constexpr ULONG EVENT_CONTROL_CODE_ENABLE_PROVIDER = 1;
inline constexpr ULONG EVENT_CONTROL_CODE_CAPTURE_STATE = 2;
inline constexpr UCHAR TRACE_LEVEL_INFORMATION = 4;

struct WNODE_HEADER {
    ULONG BufferSize;
    ULONG ProviderId;
    ULONG64 HistoricalContext;
    LARGE_INTEGER TimeStamp;
    GUID Guid;
    ULONG ClientContext;
    ULONG Flags;
};

struct EVENT_TRACE_PROPERTIES {
    WNODE_HEADER Wnode;
    ULONG BufferSize;
    ULONG MinimumBuffers;
    ULONG MaximumBuffers;
    ULONG MaximumFileSize;
    ULONG LogFileMode;
    ULONG FlushTimer;
    ULONG EnableFlags;
    LONG AgeLimit;
    ULONG NumberOfBuffers;
    ULONG FreeBuffers;
    ULONG EventsLost;
    ULONG BuffersWritten;
    ULONG LogBuffersLost;
    ULONG RealTimeBuffersLost;
    HANDLE LoggerThreadId;
    ULONG LogFileNameOffset;
    ULONG LoggerNameOffset;
};

// Events.

inline constexpr USHORT EVENT_HEADER_FLAG_64_BIT_HEADER = 0x0040;
inline constexpr ULONG MAX_EVENT_DATA_DESCRIPTORS = 128;

struct EVENT_DESCRIPTOR {
    USHORT Id;
    UCHAR Version;
    UCHAR Channel;
    UCHAR Level;
    UCHAR Opcode;
    USHORT Task;
    ULONGLONG Keyword;
};

struct EVENT_DATA_DESCRIPTOR {
    ULONGLONG Ptr;
    ULONG Size;
    ULONG Reserved;
};

struct EVENT_HEADER {
    USHORT Size;
    USHORT HeaderType;
    USHORT Flags;
    USHORT EventProperty;
    ULONG ThreadId;
    ULONG ProcessId;
    LARGE_INTEGER TimeStamp;
    GUID ProviderId;
    EVENT_DESCRIPTOR EventDescriptor;
    ULONG64 ProcessorTime;
    GUID ActivityId;
};

struct ETW_BUFFER_CONTEXT {
    USHORT ProcessorIndex;
    USHORT LoggerId;
};

struct EVENT_HEADER_EXTENDED_DATA_ITEM {
    USHORT Reserved1;
    USHORT ExtType;
    USHORT Linkage;
    USHORT DataSize;
    ULONGLONG DataPtr;
};

struct EVENT_RECORD {
    EVENT_HEADER EventHeader;
    ETW_BUFFER_CONTEXT BufferContext;
    USHORT ExtendedDataCount;
    USHORT UserDataLength;
    EVENT_HEADER_EXTENDED_DATA_ITEM* ExtendedData;
    void* UserData;
    void* UserContext;
};

// Replay.

inline constexpr ULONG PROCESS_TRACE_MODE_RAW_TIMESTAMP = 0x00001000;
inline constexpr ULONG PROCESS_TRACE_MODE_EVENT_RECORD = 0x10000000;

struct EVENT_TRACE_HEADER {
    USHORT Size;
    USHORT FieldTypeFlags;
    ULONG Version;
    ULONG ThreadId;
    ULONG ProcessId;
    LARGE_INTEGER TimeStamp;
    ::GUID Guid;
    ULONG64 ProcessorTime;
};

struct EVENT_TRACE {
    EVENT_TRACE_HEADER Header;
    ULONG InstanceId;
    ULONG ParentInstanceId;
    GUID ParentGuid;
    void* MofData;
    ULONG MofLength;
    ULONG ClientContext;
};

struct TRACE_LOGFILE_HEADER {
    ULONG BufferSize;
    ULONG Version;
    ULONG ProviderVersion;
    ULONG NumberOfProcessors;
    LARGE_INTEGER EndTime;
    ULONG TimerResolution;
    ULONG MaximumFileSize;
    ULONG LogFileMode;
    ULONG BuffersWritten;
    ULONG StartBuffers;
    ULONG PointerSize;
    ULONG EventsLost;
    ULONG CpuSpeedInMHz;
    char16_t* LoggerName;
    char16_t* LogFileName;
    TIME_ZONE_INFORMATION TimeZone;
    LARGE_INTEGER BootTime;
    LARGE_INTEGER PerfFreq;
    LARGE_INTEGER StartTime;
    ULONG ReservedFlags;
    ULONG BuffersLost;
};

struct EVENT_TRACE_LOGFILEA;
using PEVENT_TRACE_BUFFER_CALLBACKA = ULONG (*)(EVENT_TRACE_LOGFILEA*);
using PEVENT_CALLBACK = void (*)(EVENT_TRACE*);
using PEVENT_RECORD_CALLBACK = void (*)(EVENT_RECORD*);

struct EVENT_TRACE_LOGFILEA {
    char* LogFileName;
    char* LoggerName;
    LONGLONG CurrentTime;
    ULONG BuffersRead;
    ULONG ProcessTraceMode;
    EVENT_TRACE CurrentEvent;
    TRACE_LOGFILE_HEADER LogfileHeader;
    PEVENT_TRACE_BUFFER_CALLBACKA BufferCallback;
    ULONG BufferSize;
    ULONG Filled;
    ULONG EventsLost;
    union {
        PEVENT_CALLBACK EventCallback;
        PEVENT_RECORD_CALLBACK EventRecordCallback;
    };
    ULONG IsKernelTrace;
    void* Context;
};

// Providers.

struct TRACE_PROVIDER_INFO {
    GUID ProviderGuid;
    ULONG SchemaSource;
    ULONG ProviderNameOffset;    // from the list's start, to a text of wchar_t
};

struct PROVIDER_ENUMERATION_INFO {
    ULONG NumberOfProviders;
    ULONG Padding;
    TRACE_PROVIDER_INFO TraceProviderInfoArray[1];
};

#endif

static_assert(sizeof(DISPLAY_DEVICEA) == 424 && sizeof(OSVERSIONINFOEXA) == 156);
static_assert(sizeof(EVENT_TRACE_PROPERTIES) == 120);
static_assert(sizeof(EVENT_HEADER) == 80 && sizeof(EVENT_RECORD) == 112);
static_assert(sizeof(EVENT_DESCRIPTOR) == 16 && sizeof(EVENT_DATA_DESCRIPTOR) == 16);
static_assert(sizeof(TRACE_LOGFILE_HEADER) == 280 && sizeof(EVENT_TRACE_LOGFILEA) == 448);
static_assert(sizeof(PROVIDER_ENUMERATION_INFO) == 32);
