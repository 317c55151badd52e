#include "WindowsCollector.h"

#include "Sources.h"
#include "collector/SourceOperation.h"

namespace host {

namespace {

struct Source {
    const char* kind;
    const char* field;     // the only value of FIELD
    const char* call;      // whom it asks
    const char* things;    // for the fault
    BlockKind block;
    void (*read)(const TakeItem& take);
};

const Source SOURCES[] = {
    {"SYSTEM-TIMES", "TOTAL", "GetSystemTimes", "processor times", BlockKind::ROWS, readSystemTimes},
    {"INTERFACES", "BYTES", "GetIfTable2", "network interfaces", BlockKind::NAMED_ROWS, readInterfaces},
    {"PROCESSORS", "KHZ", "CallNtPowerInformation *", "processor frequencies", BlockKind::NUMBERS, readProcessorSpeeds},
    {"PROCESSES", "ALL", "CreateToolhelp32Snapshot *", "processes", BlockKind::NAMED_ROWS, readProcesses},
};

class WindowsReader : public SourceReader {
public:
    explicit WindowsReader(const Source& source) : m_source(source) {}
    void read(QVBuffer& out) override
    {
        out.beginBlock(m_source.block);
        m_source.read([&out](const RecordItem& item) { out.addItem(item); });
    }

private:
    const Source& m_source;
};

class WindowsOperation : public SourceOperation {
public:
    explicit WindowsOperation(const Source& source) : SourceOperation(source.kind), m_source(&source)
    {
        addCategory("FIELD");
    }
    int set(const std::string&, const std::string& value) override { return value == m_source->field ? 0 : -1; }
    pwr::Operation* clone() const override { return new WindowsOperation(*this); }
    std::string findFault() const override
    {
        bool isTold = false;
        m_source->read([&isTold](const RecordItem&) { isTold = true; });
        return isTold ? "" : std::string("the system does not tell its ") + m_source->things;
    }
    std::string describe() const override { return m_source->call; }
    std::unique_ptr<SourceReader> open() const override { return std::make_unique<WindowsReader>(*m_source); }

private:
    const Source* m_source;
};

}    // namespace

WindowsCollector::WindowsCollector(MachineClock& clock) : Collector("quorvane-host-windows-collector", clock)
{
    for (const Source& source : SOURCES)
        offer_i(new WindowsOperation(source), nullptr);
    addUnavailableKinds_i();
}

}    // namespace host
