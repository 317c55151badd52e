#pragma once

#include "values/Handles.h"

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

class WriterStream;

namespace pwr {

class DataHandleProvider;

// The registry behind UniqueId: owns every identified object, finds it by number, and announces it to the stream.
// Exists from UniqueId::initialize() to destroy(); factories go through instance(), which warns when there is none.
class IdManager {
public:
    static IdManager* instance();         // null, with a warning, without a registry
    static IdManager* instanceIfAny();    // null, silently

    IdManager(const IdManager&) = delete;
    IdManager& operator=(const IdManager&) = delete;

    // Owns the object from now on, enters it and announces it when there is a stream. Returns it.
    template <typename T>
    T* add(std::unique_ptr<T> object)
    {
        T* added = object.get();
        add_i(std::move(object));
        return added;
    }

    // Announces an object again, for instance with its end time. Nothing without a stream.
    void announce(const UniqueId& object) const;

    // Announces all objects in one message, then stores the stream.
    void announceAllTo(WriterStream& stream);

    // Makes the default attributes once. They, and only they, are found by type.
    void makeDefaultAttributes();

    const Attribute* findDefaultAttribute(AttributeType type) const;    // null: none
    const UniqueId* find(unsigned long long id) const;                  // null: none

    // The objects made so far for a key, in the order of making; the caller adds its own.
    std::vector<const Event*>& eventsOf(const std::string& key) { return m_eventsByKey[key]; }
    std::vector<const DataDescriptor*>& descriptorsOf(const std::string& key) { return m_descriptorsByKey[key]; }

    WriterStream* getStream() const { return m_stream; }
    void setStream(WriterStream* stream) { m_stream = stream; }

    // The registry owns the topology provider, which the environment publishes: it ends with the entities it knows.
    const DataHandleProvider* getProvider() const { return m_provider.get(); }
    void setProvider(std::unique_ptr<DataHandleProvider> provider);

private:
    friend class UniqueId;

    IdManager();
    ~IdManager();    // deletes the objects in creation order

    void add_i(std::unique_ptr<UniqueId> object);

    static IdManager* s_instance;

    WriterStream* m_stream = nullptr;                    // not owned; null until the host adds one
    std::vector<std::unique_ptr<UniqueId>> m_objects;    // creation order: of announcement and of deletion
    std::map<std::string, std::vector<const Event*>> m_eventsByKey;
    std::map<std::string, std::vector<const DataDescriptor*>> m_descriptorsByKey;
    std::map<unsigned long long, const UniqueId*> m_byId;
    std::map<AttributeType, const Attribute*> m_attributesByType;
    bool m_defaultAttributesMade = false;
    std::unique_ptr<DataHandleProvider> m_provider;
};

}    // namespace pwr
