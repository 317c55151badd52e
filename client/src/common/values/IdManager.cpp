#include "values/IdManager.h"

#include "output/WriterMessage.h"
#include "output/WriterStream.h"
#include "runtime/Log.h"
#include "values/DataHandleProvider.h"
#include "values/Quantity.h"

namespace pwr {

IdManager* IdManager::s_instance = nullptr;

IdManager* IdManager::instance()
{
    if (s_instance == nullptr) QV_LOG_WARNING("WARNING: ID Manager wasn't initialized!");
    return s_instance;
}

IdManager* IdManager::instanceIfAny()
{
    return s_instance;
}

IdManager::IdManager() = default;

IdManager::~IdManager()
{
    for (auto& object : m_objects)
        object.reset();    // a vector promises no order of its own
}

void IdManager::add_i(std::unique_ptr<UniqueId> object)
{
    const UniqueId& added = *object;
    m_objects.push_back(std::move(object));
    m_byId.emplace_hint(m_byId.end(), added.getId(), &added);    // numbers ascend
    announce(added);
}

void IdManager::announce(const UniqueId& object) const
{
    if (m_stream == nullptr) return;
    IdMessage message;
    message.addUniqueId(&object);
    m_stream->pushMessage(message);
}

void IdManager::announceAllTo(WriterStream& stream)
{
    IdMessage message;
    const std::size_t announced = m_objects.size();
    for (const auto& object : m_objects)
        message.addUniqueId(object.get());
    stream.pushMessage(message);
    m_stream = &stream;

    // What writers made while they took the message has been announced nowhere yet.
    const std::size_t made = m_objects.size();
    for (std::size_t i = announced; i < made; ++i)
        announce(*m_objects[i]);
}

void IdManager::makeDefaultAttributes()
{
    if (m_defaultAttributesMade) return;
    m_defaultAttributesMade = true;
    const struct {
        const char* name;
        const Quantity* quantity;
        AttributeType type;
    } defaults[] = {
        {"Frequency", Quantity::frequency(), AttributeType::FREQUENCY},
        {"IRQ", nullptr, AttributeType::IRQ},
        {"Process", nullptr, AttributeType::PROCESS},
        {"Thread", nullptr, AttributeType::THREAD},
        {"Source", nullptr, AttributeType::SOURCE},
        {"Target", nullptr, AttributeType::TARGET},
    };
    for (const auto& row : defaults) {
        std::unique_ptr<Attribute> attribute(new Attribute(row.name, row.quantity, row.type));
        m_attributesByType.emplace(row.type, attribute.get());
        add(std::move(attribute));
    }
}

const Attribute* IdManager::findDefaultAttribute(AttributeType type) const
{
    const auto found = m_attributesByType.find(type);
    return found != m_attributesByType.end() ? found->second : nullptr;
}

const UniqueId* IdManager::find(unsigned long long id) const
{
    const auto found = m_byId.find(id);
    return found != m_byId.end() ? found->second : nullptr;
}

void IdManager::setProvider(std::unique_ptr<DataHandleProvider> provider)
{
    m_provider = std::move(provider);
}

int DataHandle::get(unsigned long long id, const DataHandle*& handle)
{
    const IdManager* registry = IdManager::instanceIfAny();
    if (registry == nullptr) return 1;
    const UniqueId* object = registry->find(id);
    if (object == nullptr) {
        QV_LOG_WARNING("WARNING: Handle id %llu not found in UniqueId map\n", id);
        return 1;
    }
    if (object->getIdType() != UniqueIdType::DATA_HANDLE) {
        handle = nullptr;
        QV_LOG_WARNING("WARNING: UniqueId isn't a DataHandle type\n");
        return 1;
    }
    handle = static_cast<const DataHandle*>(object);    // all of this type are: only the library adds objects
    return 0;
}

}    // namespace pwr
