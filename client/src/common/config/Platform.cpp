#include "config/Platform.h"

#include "config/ConfigCap.h"
#include "config/InputMsg.h"
#include "config/Specifier.h"
#include "runtime/Log.h"

#include <unordered_set>

namespace pwr {

namespace {

// Makes `text` `head`_`tail`.
const std::string& join(std::string& text, std::string_view head, std::string_view tail)
{
    return text.assign(head).append(1, '_').append(tail);
}

}    // namespace

Platform::Platform(const std::string& name, Platform* parent) : m_name(name), m_parent(parent)
{
    if (m_parent != nullptr) m_parent->m_children.push_back(this);
}

Platform::~Platform() = default;

void Platform::adopt(Platform& child)
{
    child.m_parent = this;
    m_children.push_back(&child);
}

void Platform::addSpecifier(Specifier* specifier)
{
    m_specifiers.emplace_back(specifier);
}

ConfigCap* Platform::getOrCreateCap(std::string_view prefix, std::string_view path)
{
    join(m_key, path, prefix);
    if (m_lastCap == nullptr || m_lastCap->first != m_key) m_lastCap = &*m_capabilities.try_emplace(m_key).first;
    std::unique_ptr<ConfigCap>& cap = m_lastCap->second;
    if (!cap) {
        cap = std::make_unique<ConfigCap>();
        cap->setConfigfilePrefix(std::string(prefix));
    }
    QV_STREAM_DEBUG << "OK, got or created cap with config file prefix = " << prefix;
    return cap.get();
}

InputMsg* Platform::getOrCreateMessage(std::string_view tag, std::string_view prefixKey)
{
    return getOrCreateMessage(tag, prefixKey, join(m_key, prefixKey, tag));
}

InputMsg* Platform::getOrCreateMessage(std::string_view tag, std::string_view prefixKey, std::string_view messageKey)
{
    InputMsg*& message = messageEntry_i(messageKey).second.message;
    if (message != nullptr) return message;
    m_key = prefixKey;
    m_ownedMessages.push_back(std::make_unique<InputMsg>(std::string(tag), m_key));
    message = m_ownedMessages.back().get();
    message->setMsgID(++prefixEntry_i(withoutName_i(prefixKey)).created);
    return message;
}

InputMsg* Platform::findMessage(std::string_view key) const
{
    for (const Platform* platform = this; platform != nullptr; platform = platform->m_parent) {
        const auto found = platform->m_messages.find(key);
        if (found != platform->m_messages.end() && found->second.message != nullptr) return found->second.message;
    }
    return nullptr;
}

void Platform::addMessageKey(std::string_view prefixKey, std::string_view messageKey)
{
    Messages::value_type& entry = messageEntry_i(messageKey);
    if (entry.second.isListed) return;
    prefixEntry_i(withoutName_i(prefixKey)).listed.push_back(&entry);
    entry.second.isListed = true;
}

Platform::Messages::value_type& Platform::messageEntry_i(std::string_view key)
{
    const std::string_view ownKey = withoutName_i(key);
    if (m_lastMessage == nullptr || m_lastMessage->first != ownKey) m_lastMessage = &entryOf(m_messages, ownKey);
    return *m_lastMessage;
}

Platform::PrefixEntry& Platform::prefixEntry_i(std::string_view prefix)
{
    if (m_lastPrefix == nullptr || m_lastPrefix->first != prefix) m_lastPrefix = &entryOf(m_prefixes, prefix);
    return m_lastPrefix->second;
}

std::string_view Platform::withoutName_i(std::string_view key) const
{
    const std::size_t size = m_name.size();
    return key.size() > size && key[size] == '_' && key.starts_with(m_name) ? key.substr(size + 1) : key;
}

void Platform::setInheritMode(std::string_view prefix, int mode)
{
    prefixEntry_i(prefix).inheritMode = mode;
}

bool Platform::doesExtend(std::string_view prefix) const
{
    const auto found = m_prefixes.find(prefix);
    return found != m_prefixes.end() && found->second.inheritMode == EXTEND;
}

int Platform::appendMessage(InputMsg* target, CollectorPlugin* targetCollector, InputMsg* source,
                            CollectorPlugin* sourceCollector)
{
    if (target == nullptr || source == nullptr) return -1;
    if (targetCollector != nullptr && sourceCollector != nullptr && targetCollector != sourceCollector) {
        QV_STREAM_ERROR << "ERROR appending messages " << target->getFullName() << " and " << source->getFullName()
                        << "; CANNOT append messages if collectors are different!";
        return -1;
    }
    if (!mergeTriggers_i(*target, *source, false) || !mergeTriggers_i(*target, *source, true)) return -1;
    if (source != target) {
        for (Operation* operation : source->getOperations())
            target->addOperation(operation);
        source->resetOperations();
    }
    messageEntry_i(source->getFullName()).second.message = target;
    return 0;
}

// Messages in a group are read together, so the triggers are those of reads.
bool Platform::mergeTriggers_i(InputMsg& target, const InputMsg& source, bool maxDetail) const
{
    for (const std::string& trigger : source.getTriggers(maxDetail)) {
        if (target.addReadTrigger(trigger, maxDetail) == 0) continue;
        QV_STREAM_ERROR << "Msg " << target.getFullName() << " and " << source.getFullName() << " have incompatible "
                        << (maxDetail ? "max-detail " : "") << "read capabilities!";
        return false;
    }
    return true;
}

int Platform::getMessagesFor(std::vector<InputMsg*>& out, std::string_view prefix) const
{
    out.clear();
    QV_STREAM_DEBUG << "pwr::Platform::getMessagesFor"
                    << " called for prefix " << prefix << " on platform " << m_name;
    const auto found = m_prefixes.find(prefix);
    if (found == m_prefixes.end() || found->second.listed.empty()) {
        QV_STREAM_DEBUG << "combination of name " << m_name << " prefix " << prefix
                        << " was NOT specified in config file!";
        return -1;
    }
    std::unordered_set<const InputMsg*> known;
    for (const Messages::value_type* entry : found->second.listed) {
        InputMsg* message = entry->second.message;
        if (message == nullptr || known.count(message) != 0) continue;
        if (message->getOperationCount() == 0) {
            QV_LOG_INFO("INFO: not adding message %s because it doesn't have any operations!\n",
                        (m_name + "_" + entry->first).c_str());
            continue;
        }
        known.insert(message);
        out.push_back(message);
    }
    return out.empty() ? -1 : 0;
}

}    // namespace pwr
