#pragma once

#include "runtime/Export.h"

#include <deque>
#include <string>
#include <vector>

namespace pwr {

class SystemMetadata;

// A time source of the measured system. Collectors stamp their samples with one of them; the tool reports in the
// default clock of the PluginEnvironment.
class QUORVANE_API QVClockSource {
public:
    virtual ~QVClockSource();
    QVClockSource(const QVClockSource&) = delete;
    QVClockSource& operator=(const QVClockSource&) = delete;

    virtual float getFreqMHz() = 0;
    virtual unsigned long long getTimestamp() = 0;    // ticks

    const std::string& getUUID() const { return m_uuid; }
    const std::string& getName() const { return m_name; }
    const std::string& getDescription() const { return m_description; }

protected:
    QVClockSource(const std::string& uuid, const std::string& name, const std::string& description);

private:
    std::string m_uuid;
    std::string m_name;
    std::string m_description;
};

// The processor's time stamp counter. Its frequency is 0 until told, for instance from the record.
class QUORVANE_API QVTSCClock : public QVClockSource {
public:
    QVTSCClock();
    float getFreqMHz() override;
    unsigned long long getTimestamp() override;
    void setFreqMHz(float freqMHz);

private:
    float m_freqMHz = 0;
};

// The system's steady performance counter.
class QUORVANE_API QVQPCClock : public QVClockSource {
public:
    QVQPCClock();
    float getFreqMHz() override;
    unsigned long long getTimestamp() override;
};

// Wall-clock nanoseconds since the Unix epoch: 1000 MHz.
class QUORVANE_API QVNanoClock : public QVClockSource {
public:
    QVNanoClock();
    float getFreqMHz() override;
    unsigned long long getTimestamp() override;
};

// A clock and the default clock read at the same moment.
struct QVClockSync {
    std::string clockUUID;
    std::string clockName;
    float clockFreqMHz = 0;
    unsigned long long clockValue = 0;    // ticks of the clock
    std::string defaultClockUUID;
    std::string defaultClockName;
    float defaultClockFreqMHz = 0;
    unsigned long long defaultClockValue = 0;    // ticks of the default clock
};

// Appends new clocks: performance counter, nanoseconds, time stamp counter. The caller owns them; the free operation
// deletes them and leaves the dead pointers in the vector.
QUORVANE_API void getQVSystemClockSources(const SystemMetadata& system, std::vector<QVClockSource*>& clocks);
QUORVANE_API void freeQVSystemClockSources(std::vector<QVClockSource*>& clocks);

// The default clock's reading in its ticks, and its UUID; 0 and the empty text while the environment has no default
// clock.
QUORVANE_API unsigned long long getQVATimestamp();
QUORVANE_API const std::string& getQVAClockUUID();

// Looks for the clock's synchronisation. True with the entry in `out`; else false, `out` then is the last entry looked
// at (untouched when there are none).
QUORVANE_API bool wasClockSynchronized(const std::string& uuid, const std::deque<QVClockSync>& syncs, QVClockSync& out);

// The same in the list of a record. A template, so that `{}` is an empty deque.
template <typename Sync>
bool wasClockSynchronized(const std::string& uuid, const std::vector<Sync>& syncs, QVClockSync& out)
{
    return wasClockSynchronized(uuid, std::deque<QVClockSync>(syncs.begin(), syncs.end()), out);
}

// Takes a reading of the sync's clock to ticks of the default clock. A reading before the sync wraps as an unsigned
// difference; what doesn't fit saturates, and so does any difference when the clock has the frequency 0.
QUORVANE_API unsigned long long convertTimestamp(const QVClockSync& sync, unsigned long long timestamp);

}    // namespace pwr
