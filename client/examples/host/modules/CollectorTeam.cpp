#include "modules/CollectorTeam.h"

#include "records/QVBuffer.h"

#include "config/InputMsg.h"
#include "config/Operation.h"
#include "record/CollectionData.h"
#include "record/SystemMetadata.h"
#include "runtime/Log.h"

#include <cstddef>
#include <cstdint>
#include <tuple>
#include <utility>

namespace host {

namespace {

// Constants make no records: they need no collector.
const std::string CONSTANT = "CONSTANT";

void append(QVBuffer& buffer, const QVBuffer& more)
{
    if (more.isEmpty()) return;
    std::vector<std::uint8_t> bytes = buffer.getBytes();
    bytes.insert(bytes.end(), more.getBytes().begin(), more.getBytes().end());
    buffer = QVBuffer(bytes);
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
    for (CollectorPlugin* member : m_members) {
        std::vector<pwr::InputMsg*> own;
        for (pwr::InputMsg* message : messages) {
            if (message != nullptr && memberFor_i(*message) == member) own.push_back(message);
        }
        const auto start = std::make_pair(system.startTSC, system.startTimeval);
        const auto stop = std::make_pair(system.stopTSC, system.stopTimeval);
        if (member->startCollection(own, system) != 0) {
            QV_LOG_ERROR("ERROR: the collector %s refused its messages\n", member->getUUID().c_str());
            return 1;
        }
        if (member == m_members.front()) continue;
        std::tie(system.startTSC, system.startTimeval) = start;
        std::tie(system.stopTSC, system.stopTimeval) = stop;
    }
    return 0;
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
        if (m_members[i]->getContinuousResult(more, ignored)) append(buffer, more);
    }
    return !buffer.isEmpty();
}

int CollectorTeam::getCollectionResults(QVBuffer& buffer)
{
    int result = m_members.front()->getCollectionResults(buffer);
    for (std::size_t i = 1; i < m_members.size(); ++i) {
        QVBuffer more;
        if (m_members[i]->getCollectionResults(more) != 0) result = 1;
        append(buffer, more);
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
