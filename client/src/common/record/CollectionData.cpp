#include "record/CollectionData.h"

CollectionData::CollectionData() = default;

CollectionData::CollectionData(unsigned long long startTimestamp, unsigned long long stopTimestamp,
                               unsigned long long startTimeval, unsigned long long stopTimeval,
                               unsigned long long samplesProduced, unsigned long long samplesDropped,
                               const std::string& clockUUID, const std::string& resultFile)
{
    init_i(startTimestamp, stopTimestamp, startTimeval, stopTimeval, samplesProduced, samplesDropped, clockUUID,
           resultFile);
}

void CollectionData::reset()
{
    init_i(0, 0, 0, 0, 0, 0, std::string(), std::string());
}

void CollectionData::init_i(unsigned long long startTimestamp, unsigned long long stopTimestamp,
                            unsigned long long startTimeval, unsigned long long stopTimeval,
                            unsigned long long samplesProduced, unsigned long long samplesDropped,
                            const std::string& clockUUID, const std::string& resultFile)
{
    m_startTimestamp = startTimestamp;
    m_stopTimestamp = stopTimestamp;
    m_startTimeval = startTimeval;
    m_stopTimeval = stopTimeval;
    m_samplesProduced = samplesProduced;
    m_samplesDropped = samplesDropped;
    m_clockUUID = clockUUID;
    m_resultFile = resultFile;
}
