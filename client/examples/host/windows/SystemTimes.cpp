#include "Sources.h"

#include <windows.h>

namespace host {

namespace {

unsigned long long toNumber(const FILETIME& time)
{
    return static_cast<unsigned long long>(time.dwHighDateTime) << 32U | time.dwLowDateTime;
}

}    // namespace

void readSystemTimes(const TakeItem& take)
{
    FILETIME idle = {};
    FILETIME kernel = {};    // idle time included
    FILETIME user = {};
    if (!GetSystemTimes(&idle, &kernel, &user)) return;
    const unsigned long long kernelTime = toNumber(kernel);
    const unsigned long long idleTime = toNumber(idle);
    RecordItem row;
    row.numbers[0] = kernelTime > idleTime ? kernelTime - idleTime : 0;
    row.numbers[1] = toNumber(user);
    row.numbers[2] = idleTime;
    row.numberCount = 3;
    take(row);
}

}    // namespace host
