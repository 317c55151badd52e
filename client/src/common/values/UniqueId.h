#pragma once

#include "runtime/Export.h"

#include <cstddef>
#include <cstdint>

namespace pwr {

enum class UniqueIdType : std::uint32_t { QUANTITY = 0, DATA_HANDLE = 1 };

// Everything long-lived that a result can refer to has one number, unique in the process, and is owned by one registry
// from initialize() to destroy(). Writers are told of each object before any table refers to its number. Numbers are
// never reused. A copy answers to the number of its source and is not registered. One thread at a time.
//
//   UniqueId::initialize();    // before anything else of values/
//   ...
//   UniqueId::destroy();       // deletes every identified object
class QUORVANE_API UniqueId {
public:
    // Makes the registry and the default quantities. Does nothing while a registry exists.
    static void initialize();

    // Ends the shared temperature metric, drops the topology provider, forgets all processes and deletes all identified
    // objects in creation order. Harmless without a registry. Pointers to identified objects, the default quantities
    // among them, are dead afterwards.
    static void destroy();

    virtual ~UniqueId();
    virtual UniqueIdType getIdType() const = 0;

    unsigned long long getId() const { return m_id; }

    // Identified objects come from one range of addresses, so that address order is creation order wherever an ordered
    // container is keyed by pointer.
    static void* operator new(std::size_t sizeBytes);
    static void operator delete(void* memory, std::size_t sizeBytes) noexcept;

protected:
    UniqueId();    // takes the next number of the process
    UniqueId(const UniqueId&) = default;
    UniqueId& operator=(const UniqueId&) = default;

private:
    unsigned long long m_id;
};

}    // namespace pwr
