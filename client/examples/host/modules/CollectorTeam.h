#pragma once

#include "plugins/CollectorPlugin.h"

#include <cstddef>
#include <string>
#include <vector>

namespace host {

// The host's collector and those of modules, driven as one. A message goes to the collector that the configuration
// chose for its kinds: the last one that offers a kind which works here. The host's collector gives the run its start,
// its clock and its moments: what the others write of those is not taken over, and they are asked for records whenever
// it made a round. A collector that doesn't support that delivers in the end. Where one refuses its messages, none
// collects. Members are not owned.
class CollectorTeam : public CollectorPlugin {
public:
    // `system` tells which kinds work here.
    CollectorTeam(CollectorPlugin& own, const std::vector<CollectorPlugin*>& others, const pwr::SystemMetadata& system);

    // What the configuration is loaded with.
    const std::vector<CollectorPlugin*>& getMembers() const { return m_members; }

    // 1, with an error line and nothing begun, when one of them refuses its messages.
    int startCollection(const std::vector<pwr::InputMsg*>& messages, pwr::SystemMetadata& system) override;
    int stopCollection(CollectionData& summary) override;
    int pauseCollection() override;
    int resumeCollection() override;
    int continuousCollectionTick() override;
    bool getContinuousResult(QVBuffer& buffer, CollectionData& summary) override;
    int getCollectionResults(QVBuffer& buffer) override;
    bool canCollectMessage(const pwr::InputMsg* message) override;
    int doImmediateRead(const pwr::InputMsg* message, Results& results) override;
    using CollectorPlugin::doImmediateRead;

private:
    void stopFirst_i(std::size_t count);
    CollectorPlugin* memberFor_i(const pwr::InputMsg& message) const;
    CollectorPlugin* memberFor_i(const std::string& kind) const;

    std::vector<CollectorPlugin*> m_members;    // the host's own in front
    const pwr::SystemMetadata& m_system;
};

}    // namespace host
