#include "config/OperationProviders.h"

#include "config/Operation.h"
#include "plugins/CollectorPlugin.h"
#include "runtime/Log.h"

namespace pwr {

void OperationProviders::addCollector(CollectorPlugin& collector, const SystemMetadata& system)
{
    for (const Operation* prototype : collector.getSupportedOperations()) {
        const bool isAvailable = prototype->isOperationSuitableFor(system) != PluginRequirementResult::NOT_SUITABLE;
        QV_LOG_INFO("INFO: requirements for operation %s %s met\n", prototype->getOperation().c_str(),
                    isAvailable ? "were" : "were NOT");
        add_i({prototype, &collector, isAvailable});
    }
}

const OperationProviders::Provider* OperationProviders::find(std::string_view kind) const
{
    const auto found = m_providers.find(kind);
    return found != m_providers.end() ? &found->second : nullptr;
}

void OperationProviders::add_i(const Provider& provider)
{
    const std::string& kind = provider.prototype->getOperation();
    if (find(kind) != nullptr) {
        if (!provider.isAvailable) {
            QV_LOG_DEBUG("DEBUG: multiple providers found for %s read operation and the current one is not available\n",
                         kind.c_str());
            return;
        }
        QV_LOG_INFO("INFO: multiple providers found for %s read operation, but allowing override since the current one "
                    "is available!\n",
                    kind.c_str());
    }
    m_providers[kind] = provider;
    QV_LOG_INFO("INFO: OK, added collector for op %s\n", kind.c_str());
}

}    // namespace pwr
