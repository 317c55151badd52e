#pragma once

#include "config/TextMap.h"

#include <string_view>

class CollectorPlugin;

namespace pwr {

class Operation;
class SystemMetadata;

// Which collector provides which kind of operation, and whether the kind works on this system. Of several providers the
// last one that works serves. Internal; collectors keep their prototypes.
class OperationProviders {
public:
    struct Provider {
        const Operation* prototype;
        CollectorPlugin* collector;
        bool isAvailable;
    };

    void addCollector(CollectorPlugin& collector, const SystemMetadata& system);

    const Provider* find(std::string_view kind) const;    // null: nobody provides it

private:
    void add_i(const Provider& provider);

    TextMap<Provider> m_providers;    // by kind
};

}    // namespace pwr
