#include "record/Clocks.h"

#include "runtime/Log.h"
#include "runtime/Saturate.h"
#include "runtime/os/Os.h"

#include <limits>

namespace pwr {

namespace {

QVClockSource* defaultClock()
{
    return g_pluginEnvironment != nullptr ? g_pluginEnvironment->getDefaultClock() : nullptr;
}

unsigned long long convertedTimestamp(const QVClockSync& sync, unsigned long long timestamp)
{
    const unsigned long long delta = timestamp - sync.clockValue;
    if (delta == 0) return sync.defaultClockValue;
    if (sync.clockFreqMHz == 0) return std::numeric_limits<unsigned long long>::max();
    const double ratio = static_cast<double>(sync.defaultClockFreqMHz) / static_cast<double>(sync.clockFreqMHz);
    return saturate<unsigned long long>(static_cast<double>(delta) * ratio) + sync.defaultClockValue;
}

}    // namespace

QVClockSource::QVClockSource(const std::string& uuid, const std::string& name, const std::string& description)
    : m_uuid(uuid), m_name(name), m_description(description)
{
}

QVClockSource::~QVClockSource() = default;

QVTSCClock::QVTSCClock() : QVClockSource("5138ffc0-517d-11e5-b970-0800200c9a66", "TSC", "A TSC based clock source") {}

float QVTSCClock::getFreqMHz()
{
    return m_freqMHz;
}

unsigned long long QVTSCClock::getTimestamp()
{
    return os::current().clocks->timeStampCounter();
}

void QVTSCClock::setFreqMHz(float freqMHz)
{
    m_freqMHz = freqMHz;
}

QVQPCClock::QVQPCClock() : QVClockSource("d3ad8390-29cc-11e6-bdf4-0800200c9a66", "QPC", "A QPC based clock source") {}

float QVQPCClock::getFreqMHz()
{
    return static_cast<float>(static_cast<double>(os::current().clocks->performanceFrequencyHz()) / 1e6);
}

unsigned long long QVQPCClock::getTimestamp()
{
    return os::current().clocks->performanceCounter();
}

QVNanoClock::QVNanoClock()
    : QVClockSource("8ad42930-517d-11e5-b970-0800200c9a66", "NANO",
                    "A clock_gettime based clock source returning time in nanoseconds since the Epoch")
{
}

float QVNanoClock::getFreqMHz()
{
    return 1000.0F;
}

unsigned long long QVNanoClock::getTimestamp()
{
    return (os::current().clocks->systemTime100ns() - os::UNIX_EPOCH_100NS) * 100;
}

void getQVSystemClockSources(const SystemMetadata&, std::vector<QVClockSource*>& clocks)
{
    clocks.reserve(clocks.size() + 3);    // so that no new clock is lost to a failing push
    clocks.push_back(new QVQPCClock);
    clocks.push_back(new QVNanoClock);
    clocks.push_back(new QVTSCClock);
}

void freeQVSystemClockSources(std::vector<QVClockSource*>& clocks)
{
    for (QVClockSource* clock : clocks)
        delete clock;
}

unsigned long long getQVATimestamp()
{
    QVClockSource* clock = defaultClock();
    return clock != nullptr ? clock->getTimestamp() : 0;
}

const std::string& getQVAClockUUID()
{
    static const std::string s_noUUID;
    const QVClockSource* clock = defaultClock();
    return clock != nullptr ? clock->getUUID() : s_noUUID;
}

bool wasClockSynchronized(const std::string& uuid, const std::deque<QVClockSync>& syncs, QVClockSync& out)
{
    for (const QVClockSync& sync : syncs) {
        out = sync;
        QV_LOG_DEBUG("DEBUG: Looking at sync clock %s\n", sync.clockUUID.c_str());
        if (sync.clockUUID != uuid) continue;
        QV_LOG_DEBUG("DEBUG: Found clock UUID %s with freq %.2f and val %llu (Default = %s, %.2f, %llu)\n",
                     sync.clockUUID.c_str(), static_cast<double>(sync.clockFreqMHz), sync.clockValue,
                     sync.defaultClockUUID.c_str(), static_cast<double>(sync.defaultClockFreqMHz),
                     sync.defaultClockValue);
        return true;
    }
    return false;
}

unsigned long long convertTimestamp(const QVClockSync& sync, unsigned long long timestamp)
{
    const unsigned long long result = convertedTimestamp(sync, timestamp);
    QV_LOG_INFO("INFO: input TSC = %llu, output TSC = %llu\n", timestamp, result);
    return result;
}

}    // namespace pwr
