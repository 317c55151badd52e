#include "modules/CollectorTeam.h"

#include "records/QVBuffer.h"

#include "config/InputMsg.h"
#include "config/Operation.h"
#include "record/CollectionData.h"
#include "record/SystemMetadata.h"
#include "runtime/Log.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <tuple>

namespace host {

namespace {

// Constants make no records: they need no collector.
const std::string CONSTANT = "CONSTANT";

// What only the host's collector says of a run.
auto timesOf(pwr::SystemMetadata& system)
{
    return std::tie(system.startTSC, system.startTimeval, system.stopTSC, system.stopTimeval, system.qvaClockFreqMHz);
}

}    // namespace

CollectorTeam::CollectorTeam(CollectorPlugin& own, const std::vector<CollectorPlugin*>& others,
                             const pwr::SystemMetadata& system)
    : CollectorPlugin(own.getUUID()), m_members(1, &own), m_system(system)
{
    m_clockSource = own.getClockSource();
    m_members.insert(m_members.end(), others.begin(), others.end());
}

int CollectorTeam::startCollection(const std::vector<pwr::InputMsg*>& messages, pwr::SystemMetadata& system)
{
    for (std::size_t i = 0; i < m_members.size(); ++i) {
        std::vector<pwr::InputMsg*> own;
        std::copy_if(messages.begin(), messages.end(), std::back_inserter(own), [&](const pwr::InputMsg* message) {
            return message != nullptr && memberFor_i(*message) == m_members[i];
        });
        const std::tuple<std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t, float> times = timesOf(system);
        const int result = m_members[i]->startCollection(own, system);
        if (i != 0) timesOf(system) = times;
        if (result == 0) continue;
        QV_LOG_ERROR("ERROR: the collector %s refused its messages\n", m_members[i]->getUUID().c_str());
        stopFirst_i(i);
        return 1;
    }
    return 0;
}

// Those in front of the one that refused.
void CollectorTeam::stopFirst_i(std::size_t count)
{
    CollectionData ignored;
    for (std::size_t i = 0; i < count; ++i)
        m_members[i]->stopCollection(ignored);
}

// All are stopped; the summary and the result are of the host's collector.
int CollectorTeam::stopCollection(CollectionData& summary)
{
    for (std::size_t i = 1; i < m_members.size(); ++i) {
        CollectionData ignored;
        if (m_members[i]->stopCollection(ignored) != 0)
            QV_LOG_ERROR("ERROR: the collector %s could not be stopped\n", m_members[i]->getUUID().c_str());
    }
    return m_members.front()->stopCollection(summary);
}

int CollectorTeam::pauseCollection()
{
    int result = 0;
    for (CollectorPlugin* member : m_members)
        result |= member->pauseCollection();
    return result;
}

int CollectorTeam::resumeCollection()
{
    int result = 0;
    for (CollectorPlugin* member : m_members)
        result |= member->resumeCollection();
    return result;
}

int CollectorTeam::continuousCollectionTick()
{
    if (m_members.front()->continuousCollectionTick() != 0) return 1;
    for (std::size_t i = 1; i < m_members.size(); ++i)
        m_members[i]->continuousCollectionTick();
    return 0;
}

bool CollectorTeam::getContinuousResult(QVBuffer& buffer, CollectionData& summary)
{
    m_members.front()->getContinuousResult(buffer, summary);
    for (std::size_t i = 1; i < m_members.size(); ++i) {
        QVBuffer more;
        CollectionData ignored;
        if (m_members[i]->getContinuousResult(more, ignored)) buffer.append(more);
    }
    return !buffer.isEmpty();
}

int CollectorTeam::getCollectionResults(QVBuffer& buffer)
{
    int result = m_members.front()->getCollectionResults(buffer);
    for (std::size_t i = 1; i < m_members.size(); ++i) {
        QVBuffer more;
        if (m_members[i]->getCollectionResults(more) != 0) result = 1;
        buffer.append(more);
    }
    return result;
}

bool CollectorTeam::canCollectMessage(const pwr::InputMsg* message)
{
    CollectorPlugin* member = message != nullptr ? memberFor_i(*message) : nullptr;
    return member != nullptr && member->canCollectMessage(message);
}

int CollectorTeam::doImmediateRead(const pwr::InputMsg* message, Results& results)
{
    CollectorPlugin* member = message != nullptr ? memberFor_i(*message) : nullptr;
    return member != nullptr ? member->doImmediateRead(message, results) : -1;
}

// The operations of a message are of one collector.
CollectorPlugin* CollectorTeam::memberFor_i(const pwr::InputMsg& message) const
{
    for (const pwr::Operation* operation : message) {
        if (operation->getOperation() != CONSTANT) return memberFor_i(operation->getOperation());
    }
    return nullptr;
}

CollectorPlugin* CollectorTeam::memberFor_i(const std::string& kind) const
{
    CollectorPlugin* chosen = nullptr;
    for (CollectorPlugin* member : m_members) {
        for (const pwr::Operation* prototype : member->getSupportedOperations()) {
            if (prototype->getOperation() != kind) continue;
            const bool isAvailable =
                prototype->isOperationSuitableFor(m_system) != pwr::PluginRequirementResult::NOT_SUITABLE;
            if (isAvailable || chosen == nullptr) chosen = member;
        }
    }
    return chosen;
}

}    // namespace host
