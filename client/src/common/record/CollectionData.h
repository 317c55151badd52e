#pragma once

#include "runtime/Export.h"

#include <string>

// What a collector hands back of one run. A plain value.
class QUORVANE_API CollectionData {
public:
    CollectionData();    // zeros and empty texts
    CollectionData(unsigned long long startTimestamp, unsigned long long stopTimestamp, unsigned long long startTimeval,
                   unsigned long long stopTimeval, unsigned long long samplesProduced,
                   unsigned long long samplesDropped, const std::string& clockUUID, const std::string& resultFile);

    void reset();    // back to zeros and empty texts

    unsigned long long getStartTimestamp() const { return m_startTimestamp; }    // ticks of the collector's clock
    unsigned long long getStopTimestamp() const { return m_stopTimestamp; }
    unsigned long long getStartTimeval() const { return m_startTimeval; }    // ns since the epoch
    unsigned long long getStopTimeval() const { return m_stopTimeval; }
    unsigned long long getSamplesProduced() const { return m_samplesProduced; }
    unsigned long long getSamplesDropped() const { return m_samplesDropped; }
    const std::string& getClockUUID() const { return m_clockUUID; }
    const std::string& getResultFile() const { return m_resultFile; }

private:
    void init_i(unsigned long long startTimestamp, unsigned long long stopTimestamp, unsigned long long startTimeval,
                unsigned long long stopTimeval, unsigned long long samplesProduced, unsigned long long samplesDropped,
                const std::string& clockUUID, const std::string& resultFile);

    unsigned long long m_startTimestamp = 0;
    unsigned long long m_stopTimestamp = 0;
    unsigned long long m_startTimeval = 0;
    unsigned long long m_stopTimeval = 0;
    unsigned long long m_samplesProduced = 0;
    unsigned long long m_samplesDropped = 0;
    std::string m_clockUUID;
    std::string m_resultFile;
};
