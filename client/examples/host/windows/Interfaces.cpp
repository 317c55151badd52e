#include "Sources.h"

#include <memory>
#include <string>
// In this order.
#include <winsock2.h>
#include <ws2ipdef.h>
#include <iphlpapi.h>

namespace host {

namespace {

struct TableCloser {
    void operator()(MIB_IF_TABLE2* table) const { FreeMibTable(table); }
};

std::string utf8Of(const wchar_t* text)
{
    char bytes[4 * (IF_MAX_STRING_SIZE + 1)] = "";
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, bytes, sizeof(bytes), nullptr, nullptr);
    return size > 0 ? bytes : "";
}

}    // namespace

// Filters stand on an interface and count its bytes once more.
void readInterfaces(const TakeItem& take)
{
    MIB_IF_TABLE2* found = nullptr;
    if (GetIfTable2(&found) != NO_ERROR) return;
    const std::unique_ptr<MIB_IF_TABLE2, TableCloser> table(found);
    for (ULONG i = 0; i < table->NumEntries; ++i) {
        const MIB_IF_ROW2& entry = table->Table[i];
        if (entry.InterfaceAndOperStatusFlags.FilterInterface) continue;
        const std::string name = utf8Of(entry.Alias);
        RecordItem row;
        row.text = name;
        row.numbers[0] = entry.InOctets;
        row.numbers[1] = entry.OutOctets;
        row.numberCount = 2;
        take(row);
    }
}

}    // namespace host
