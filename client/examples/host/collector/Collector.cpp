#include "collector/Collector.h"

#include "collector/HostRequirement.h"
#include "collector/NumberPattern.h"
#include "collector/SourceOperation.h"

#include "config/InputMsg.h"
#include "plugins/PluginEnvironment.h"
#include "record/CollectionData.h"
#include "record/Metadata.h"
#include "record/SystemMetadata.h"
#include "runtime/Log.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace host {

namespace {

// The system states that this host knows.
constexpr unsigned int NORMAL = 1;
constexpr unsigned int PAUSED = 2;
constexpr unsigned int SUSPENDED = 4;

// No suspend is shorter; what the clocks differ by beside suspends is.
constexpr long long SHORTEST_SUSPEND_NS = 100'000'000;

// Every kind of access that configuration files may name; "CONSTANT" is offered on each machine.
const char* const KINDS[] = {"SYSFS", "PROCFS", "PROCESSES", "SYSTEM-TIMES", "INTERFACES", "PROCESSORS"};

// A kind that other machines have.
class UnavailableOperation : public pwr::Operation {
public:
    explicit UnavailableOperation(const std::string& kind) : pwr::Operation(kind) {}
    int set(const std::string&, const std::string&) override { return 0; }
    pwr::OperationMetadata* getOperationMetadata() const override
    {
        return new pwr::OperationMetadata(getName(), getOperation(), 0);
    }
    pwr::Operation* clone() const override { return new UnavailableOperation(*this); }
};

const SourceOperation* sourceOf(const pwr::Operation* operation)
{
    return dynamic_cast<const SourceOperation*>(operation);
}

bool fitsByte(int id)
{
    return id >= 0 && id <= std::numeric_limits<std::uint8_t>::max();
}

bool hasAny(const pwr::InputMsg& message, const std::vector<std::string>& triggers)
{
    return std::any_of(triggers.begin(), triggers.end(),
                       [&message](const std::string& trigger) { return message.getTriggers().count(trigger) != 0; });
}

std::string textOf(BlockKind kind, const RecordItem& item)
{
    if (kind == BlockKind::TEXTS) return std::string(item.text);
    if (kind == BlockKind::NUMBERS) {
        return item.isSigned ? std::to_string(static_cast<std::int64_t>(item.number)) : std::to_string(item.number);
    }
    std::string text(item.text);    // the name of a row that has one
    for (std::size_t i = 0; i < item.numberCount; ++i)
        text += (text.empty() ? "" : " ") + std::to_string(item.numbers.at(i));
    return text;
}

void readNow(const SourceOperation& source, CollectorPlugin::Results& results)
{
    QVBuffer buffer;
    buffer.beginRecord(0, {});
    source.open()->read(buffer);
    buffer.endRecord();
    std::size_t offset = 0;
    PayloadReader payload(buffer.next(offset));
    RecordItem item;
    while (payload.nextBlock()) {
        while (payload.nextItem(item)) {
            if (!item.isRead) continue;
            results.emplace_back(fillPattern(source.describe(), item.indices), textOf(payload.getKind(), item));
        }
    }
}

}    // namespace

Collector::Collector(const std::string& uuid, MachineClock& clock) : CollectorPlugin(uuid), m_clock(clock)
{
    m_clockSource = &clock.getSource();
    addOperation(new pwr::CONSTANTOperation("CONSTANT"));
}

Collector::~Collector() = default;

void Collector::offer_i(SourceOperation* operation, std::unique_ptr<pwr::PluginRequirement> requirement)
{
    addOperation(operation);
    operation->addRequirement(requirement.get());
    if (requirement) m_requirements.push_back(std::move(requirement));
}

void Collector::addUnavailableKinds_i()
{
    m_requirements.push_back(std::make_unique<ElsewhereRequirement>());
    pwr::PluginRequirement* elsewhere = m_requirements.back().get();
    const auto& offered = getSupportedOperations();
    for (const std::string kind : KINDS) {
        const auto isKind = [&kind](const pwr::Operation* operation) { return operation->getOperation() == kind; };
        if (std::any_of(offered.begin(), offered.end(), isKind)) continue;
        auto* operation = new UnavailableOperation(kind);
        addOperation(operation);
        operation->addRequirement(elsewhere);
    }
}

int Collector::startCollection(const std::vector<pwr::InputMsg*>& messages, pwr::SystemMetadata& system)
{
    m_tasks.clear();
    m_initCount = 0;
    m_buffer.clear();
    for (const pwr::InputMsg* message : messages) {
        if (message == nullptr || open_i(*message)) continue;
        QV_LOG_ERROR("ERROR: the ids of the message %s don't fit into a record\n", message->getFullName().c_str());
        m_tasks.clear();
        return 1;
    }
    m_isRunning = true;
    m_isPaused = m_wasPaused = false;
    m_produced = 0;
    m_start = m_last = m_clock.read();
    system.startTSC = system.stopTSC = m_start.tick;
    m_startTimeval = m_lastTimeval = pwr::QVNanoClock().getTimestamp();
    system.startTimeval = system.stopTimeval = m_startTimeval;
    read_i(AT_START);
    return 0;
}

bool Collector::open_i(const pwr::InputMsg& message)
{
    if (!fitsByte(message.getPluginID()) || !fitsByte(message.getMetricID()) || !fitsByte(message.getMsgID()))
        return false;
    Task task;
    task.id = {static_cast<std::uint8_t>(message.getPluginID()), static_cast<std::uint8_t>(message.getMetricID()),
               static_cast<std::uint8_t>(message.getMsgID())};
    task.isRead[AT_START] = hasAny(message, {"INIT", "BEGIN"});
    task.isRead[AT_INTERVAL] = hasAny(message, {"POLL"});
    task.isRead[AT_STOP] = hasAny(message, {"END", "FINI"});
    for (const pwr::Operation* operation : message.getOperations()) {
        const SourceOperation* source = sourceOf(operation);
        task.readers.push_back(source != nullptr ? source->open() : nullptr);
    }
    // What stays as it is comes first, since it tells what the rest is about.
    const bool isInit = hasAny(message, {"INIT"});
    m_tasks.insert(isInit ? m_tasks.begin() + m_initCount : m_tasks.end(), std::move(task));
    if (isInit) ++m_initCount;
    return true;
}

int Collector::stopCollection(CollectionData& summary)
{
    if (!m_isRunning) return 1;
    if (m_isPaused) resumeCollection();
    if (std::any_of(m_tasks.begin(), m_tasks.end(), [](const Task& task) { return task.isRead[AT_STOP]; }) &&
        takeTick_i()) {
        read_i(AT_STOP);
    }
    m_isRunning = false;
    summary = summarize_i();
    return 0;
}

int Collector::pauseCollection()
{
    if (!m_isRunning || m_isPaused) return 1;
    m_isPaused = true;
    return 0;
}

int Collector::resumeCollection()
{
    if (!m_isPaused) return 1;
    m_isPaused = false;
    m_wasPaused = true;
    return 0;
}

int Collector::continuousCollectionTick()
{
    if (!m_isRunning || m_isPaused || !takeTick_i()) return 1;
    read_i(AT_INTERVAL);
    return 0;
}

bool Collector::getContinuousResult(QVBuffer& buffer, CollectionData& summary)
{
    getCollectionResults(buffer);
    summary = summarize_i();
    return !buffer.isEmpty();
}

int Collector::getCollectionResults(QVBuffer& buffer)
{
    std::swap(buffer, m_buffer);
    m_buffer.clear();
    return 0;
}

bool Collector::canCollectMessage(const pwr::InputMsg* message)
{
    if (message == nullptr) return false;
    const auto& operations = message->getOperations();
    return std::any_of(operations.begin(), operations.end(), [](const pwr::Operation* operation) {
        const SourceOperation* source = sourceOf(operation);
        return source != nullptr && source->findFault().empty();
    });
}

int Collector::doImmediateRead(const pwr::InputMsg* message, Results& results)
{
    if (message == nullptr) return -1;
    const std::size_t before = results.size();
    for (const pwr::Operation* operation : message->getOperations()) {
        if (const SourceOperation* source = sourceOf(operation)) readNow(*source, results);
    }
    return results.size() > before ? 0 : -1;
}

// The time of the next records, with what happened since the last ones. False while there can be none.
bool Collector::takeTick_i()
{
    const MachineClock::Reading now = m_clock.read();
    if (now.tick <= m_last.tick) return false;
    if (isPastSuspend_i(now)) {
        reportBreak_i(SUSPENDED, now.tick);
    } else if (m_wasPaused) {
        reportBreak_i(PAUSED, now.tick);
    }
    m_wasPaused = false;
    m_last = now;
    m_lastTimeval = pwr::QVNanoClock().getTimestamp();
    return true;
}

bool Collector::isPastSuspend_i(const MachineClock::Reading& now) const
{
    const unsigned long long booted = now.bootNs - m_last.bootNs;
    const unsigned long long awake = now.monotonicNs - m_last.monotonicNs;
    return static_cast<long long>(booted - awake) >= SHORTEST_SUSPEND_NS;
}

// Where the records follow at the very next tick there is one for both: the normal state counts.
void Collector::reportBreak_i(unsigned int state, unsigned long long tick)
{
    if (g_pluginEnvironment == nullptr) return;
    g_pluginEnvironment->addSystemStateEvent(m_last.tick, state);
    g_pluginEnvironment->addSystemStateEvent(tick - 1, NORMAL);
}

void Collector::read_i(Moment moment)
{
    for (Task& task : m_tasks) {
        if (task.isRead[moment]) produce_i(task);
    }
}

void Collector::produce_i(Task& task)
{
    m_buffer.beginRecord(m_last.tick, task.id);
    for (const std::unique_ptr<SourceReader>& reader : task.readers) {
        if (reader) {
            reader->read(m_buffer);
        } else {
            m_buffer.beginBlock(BlockKind::NOTHING);
        }
    }
    m_buffer.endRecord();
    ++m_produced;
    if (g_pluginEnvironment != nullptr) g_pluginEnvironment->checkAndRecordReset(task.id, m_last.tick);
}

CollectionData Collector::summarize_i() const
{
    return {m_start.tick, m_last.tick, m_startTimeval, m_lastTimeval, m_produced, 0, m_clockSource->getUUID(), ""};
}

}    // namespace host
