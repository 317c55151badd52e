#include "values/UniqueId.h"

#include "metrics/ThermalSampleHandler.h"
#include "runtime/os/Os.h"
#include "values/DataHandleProvider.h"
#include "values/IdManager.h"
#include "values/Process.h"
#include "values/Quantity.h"

#include <cstdint>
#include <functional>
#include <new>

namespace pwr {

namespace {

constexpr std::size_t MIB = std::size_t{1} << 20;

// The memory of identified objects: a range of addresses handed out upwards, so that address order is creation order.
// Freed memory is used again only when no object of the range is left; then everything starts over. Where the system
// gives no range, or no more memory for it, there is none here and the heap has to serve.
class IdentityRange {
public:
    constexpr IdentityRange() = default;

    void* allocate(std::size_t sizeBytes);    // null: none
    bool release(const void* memory);         // false: not from here

private:
    void reserve_i();
    bool commitUpTo_i(const std::byte* end);

    std::byte* m_begin = nullptr;
    std::byte* m_end = nullptr;
    std::byte* m_next = nullptr;
    std::byte* m_committedEnd = nullptr;
    std::size_t m_objectsAlive = 0;
    bool m_reserved = false;    // tried once
};

void* IdentityRange::allocate(std::size_t sizeBytes)
{
    if (!m_reserved) reserve_i();
    constexpr std::size_t ALIGNMENT = __STDCPP_DEFAULT_NEW_ALIGNMENT__;
    const std::size_t rounded = (sizeBytes + ALIGNMENT - 1) / ALIGNMENT * ALIGNMENT;
    if (rounded > static_cast<std::size_t>(m_end - m_next) || !commitUpTo_i(m_next + rounded)) return nullptr;
    void* memory = m_next;
    m_next += rounded;
    ++m_objectsAlive;
    return memory;
}

bool IdentityRange::release(const void* memory)
{
    const std::less<const void*> before;
    if (before(memory, m_begin) || !before(memory, m_end)) return false;
    if (--m_objectsAlive == 0) m_next = m_begin;
    return true;
}

void IdentityRange::reserve_i()
{
    m_reserved = true;
    for (const std::size_t sizeMiB : {64U << 10, 8U << 10, 1U << 10, 128U}) {
        auto* range = static_cast<std::byte*>(os::current().memory->reserve(sizeMiB * MIB));
        if (range == nullptr) continue;
        m_begin = m_next = m_committedEnd = range;
        m_end = range + sizeMiB * MIB;
        return;
    }
}

bool IdentityRange::commitUpTo_i(const std::byte* end)
{
    if (end <= m_committedEnd) return true;
    const std::size_t missing = static_cast<std::size_t>(end - m_committedEnd);
    const std::size_t piece = (missing + MIB - 1) / MIB * MIB;    // the range is a multiple of it
    if (!os::current().memory->commit(m_committedEnd, piece)) return false;
    m_committedEnd += piece;
    return true;
}

// Both belong to the registry: the numbers go on over its ends, the range is used by the next one again.
constinit unsigned long long s_nextId = 0;
constinit IdentityRange s_range;

}    // namespace

UniqueId::UniqueId() : m_id(s_nextId++) {}

UniqueId::~UniqueId() = default;

void* UniqueId::operator new(std::size_t sizeBytes)
{
    void* memory = s_range.allocate(sizeBytes);
    return memory != nullptr ? memory : ::operator new(sizeBytes);
}

void UniqueId::operator delete(void* memory, std::size_t) noexcept
{
    if (memory != nullptr && !s_range.release(memory)) ::operator delete(memory);
}

void UniqueId::initialize()
{
    if (IdManager::s_instance != nullptr) return;
    IdManager::s_instance = new IdManager;
    Quantity::initDefaults_i();    // quantities are registered as they are built
}

void UniqueId::destroy()
{
    if (IdManager::s_instance == nullptr) return;
    ThermalSampleHandler::destroy_i();
    DataHandleProvider::withdraw_i();
    ProcessManager::instance_i().clear_i();
    Quantity::forgetDefaults_i();
    delete IdManager::s_instance;
    IdManager::s_instance = nullptr;
}

}    // namespace pwr
