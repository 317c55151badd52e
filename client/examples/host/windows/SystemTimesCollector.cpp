#include "SystemTimesCollector.h"

#include "collector/SourceOperation.h"

#include <windows.h>

namespace host {

namespace {

unsigned long long toNumber(const FILETIME& time)
{
    return static_cast<unsigned long long>(time.dwHighDateTime) << 32U | time.dwLowDateTime;
}

// Kernel without idle, user, idle.
bool readTimes(RecordItem& row)
{
    FILETIME idle = {};
    FILETIME kernel = {};    // idle time included
    FILETIME user = {};
    if (!GetSystemTimes(&idle, &kernel, &user)) return false;
    const unsigned long long kernelTime = toNumber(kernel);
    const unsigned long long idleTime = toNumber(idle);
    row.numbers[0] = kernelTime > idleTime ? kernelTime - idleTime : 0;
    row.numbers[1] = toNumber(user);
    row.numbers[2] = idleTime;
    row.numberCount = 3;
    return true;
}

class SystemTimesReader : public SourceReader {
public:
    void read(QVBuffer& out) override
    {
        out.beginBlock(BlockKind::ROWS);
        RecordItem row;
        if (readTimes(row)) out.addItem(row);
    }
};

class SystemTimesOperation : public SourceOperation {
public:
    SystemTimesOperation() : SourceOperation("SYSTEM-TIMES") { addCategory("FIELD"); }
    int set(const std::string&, const std::string& value) override { return value == "TOTAL" ? 0 : -1; }
    pwr::Operation* clone() const override { return new SystemTimesOperation(*this); }
    std::string findFault() const override
    {
        RecordItem ignored;
        return readTimes(ignored) ? "" : "the system does not tell its processor times";
    }
    std::string describe() const override { return "GetSystemTimes"; }
    std::unique_ptr<SourceReader> open() const override { return std::make_unique<SystemTimesReader>(); }
};

}    // namespace

SystemTimesCollector::SystemTimesCollector(MachineClock& clock)
    : Collector("quorvane-host-system-times-collector", clock)
{
    offer_i(new SystemTimesOperation, nullptr);
    addUnavailableKinds_i();
}

}    // namespace host
