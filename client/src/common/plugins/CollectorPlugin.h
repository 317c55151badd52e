#pragma once

#include "plugins/Plugin.h"
#include "runtime/Export.h"

#include <string>
#include <utility>
#include <vector>

class CollectionData;
class QVBuffer;
namespace pwr {
class EntityHandle;
class InputMsg;
class Operation;
class QVClockSource;
}    // namespace pwr

// Gathers raw samples. Its operations tell the configuration which kinds of access exist; the host drives a collection:
// startCollection(), then continuousCollectionTick() and getContinuousResult() or at the end getCollectionResults(),
// pauses between, stopCollection(). QVBuffer is the host's: the records that a collector produces, see the host's
// header. 0 is success.
class QUORVANE_API CollectorPlugin : public Plugin {
public:
    using Results = std::vector<std::pair<std::string, std::string>>;

    ~CollectorPlugin() override;

    // Begins to gather what the messages ask for; `system` gets what only the collector knows (start time stamp,
    // clock).
    virtual int startCollection(const std::vector<pwr::InputMsg*>& messages, pwr::SystemMetadata& system) = 0;
    virtual int stopCollection(CollectionData& summary) = 0;
    virtual int pauseCollection() = 0;
    virtual int resumeCollection() = 0;

    // Called at each interval of a continuous collection. The default doesn't support it: 1.
    virtual int continuousCollectionTick();

    // True with the records of the last interval. The default has none.
    virtual bool getContinuousResult(QVBuffer& buffer, CollectionData& summary);

    // The records of the whole collection, or those since the last call.
    virtual int getCollectionResults(QVBuffer& buffer) = 0;

    virtual bool canCollectMessage(const pwr::InputMsg* message);    // true

    // Read or write at once, see InputMsg::execute and Operation::dispatchRead. The defaults offer none: -1.
    virtual int doImmediateRead(const pwr::InputMsg* message, Results& results) = 0;
    virtual int doImmediateRead(pwr::Operation* operation, const pwr::EntityHandle* entity);
    virtual int doImmediateRead(pwr::Operation* operation, const std::string& text);
    virtual int doImmediateWrite(const pwr::InputMsg* message);
    virtual int doImmediateWrite(pwr::Operation* operation, const std::string& text);

    virtual bool doesSupportLowOverhead() const;    // false

    const std::vector<const pwr::Operation*>& getSupportedOperations() const { return m_operations; }

    // What this collector stamps its samples with; null when it has no clock of its own. The derived plugin's.
    pwr::QVClockSource* getClockSource() const { return m_clockSource; }

protected:
    explicit CollectorPlugin(const std::string& uuid);

    void addOperation(const pwr::Operation* operation);    // takes ownership; null is left out

    pwr::QVClockSource* m_clockSource = nullptr;

private:
    std::vector<const pwr::Operation*> m_operations;    // owned
};
