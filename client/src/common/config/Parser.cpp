#include "config/Parser.h"

#include "config/ConfigCap.h"
#include "config/InputMsg.h"
#include "config/Operation.h"
#include "config/OriginReader.h"
#include "config/Platform.h"
#include "config/Specifier.h"
#include "config/pw_utils.h"
#include "config/qv_configfile_parser.h"
#include "runtime/Log.h"

#include <algorithm>

namespace pwr {

namespace {

// Lives until it is replaced or dropped; the end of the process leaves it alone, since the plugins that made its
// operations may be gone by then.
Parser* s_loaded = nullptr;

bool hasAny(const PWSet<std::string>& set, const std::vector<std::string>& texts)
{
    return std::any_of(texts.begin(), texts.end(), [&set](const std::string& text) { return set.count(text) != 0; });
}

// A message of constants needs no trigger: its values are there from the beginning.
bool isImplicitInit(const InputMsg& message)
{
    return message.getTriggers().empty() && message.getOperationCount() > 0 &&
           message.getOperations().front()->getOperation() == "CONSTANT";
}

void complainOfNames(const std::string& platformNames)
{
    QV_STREAM_ERROR << "couldn't retrieve valid list of platforms from platform name string = " << platformNames;
}

}    // namespace

Parser::Parser() : ConfigLanguage(LOG_TAG) {}

Parser::~Parser()
{
    for (auto& [name, platform] : m_platforms) {
        QV_STREAM_DEBUG << "Deleting platform " << name;
        platform.reset();
    }
}

Parser* Parser::loaded()
{
    return s_loaded;
}

void Parser::setLoaded(std::unique_ptr<Parser> parser)
{
    const std::unique_ptr<Parser> previous(s_loaded);
    s_loaded = parser.release();
}

bool Parser::load(const std::vector<std::string>& files, const std::vector<CollectorPlugin*>& collectors,
                  const SystemMetadata& system)
{
    for (CollectorPlugin* collector : collectors) {
        if (collector != nullptr) m_providers.addCollector(*collector, system);
    }
    for (const std::string& path : files) {
        if (readFile_i(path)) {
            m_files.push_back({path, fingerprint_i()});
            continue;
        }
        m_failedFile = path;
        QV_STREAM_FATAL << "ERROR parsing config file " << path << "!";
        return false;
    }
    if (areParentsKnown_i()) return true;
    QV_STREAM_FATAL << "config file parser sanity checks did NOT pass -- config files are invalid!";
    return false;
}

bool Parser::areParentsKnown_i() const
{
    if (m_orphans.empty()) return true;
    std::string missing;
    for (const auto& [parentName, children] : m_orphans)
        missing += " " + parentName;
    QV_STREAM_ERROR << "the following \"parent\" platforms have not been defined:" << missing;
    return false;
}

Platform* Parser::getOrCreatePlatform(std::string_view name, std::string_view parentName)
{
    if (name.empty()) return nullptr;
    const auto known = m_platforms.find(name);
    if (known != m_platforms.end()) return known->second.get();

    const bool isRoot = name == parentName;
    const auto parent = isRoot ? m_platforms.end() : m_platforms.find(parentName);
    const bool hasParent = parent != m_platforms.end();
    auto made = std::make_unique<Platform>(std::string(name), hasParent ? parent->second.get() : nullptr);
    Platform* platform = m_platforms.emplace(name, std::move(made)).first->second.get();
    if (!isRoot && !hasParent) {
        QV_STREAM_DEBUG << "found orphaned platform \"" << name << "\" with parent \"" << parentName << "\"";
        m_orphans[std::string(parentName)].push_back(platform);
    }
    adoptOrphans_i(*platform);
    return platform;
}

void Parser::adoptOrphans_i(Platform& platform)
{
    const auto waiting = m_orphans.find(platform.getName());
    if (waiting == m_orphans.end()) return;
    QV_STREAM_DEBUG << "platform \"" << platform.getName() << "\" has orphaned children!";
    for (Platform* child : waiting->second) {
        QV_STREAM_DEBUG << "assigning previously orphaned child \"" << child->getName() << "\" as a child of \""
                        << platform.getName() << "\"";
        platform.adopt(*child);
    }
    m_orphans.erase(waiting);
}

std::string Parser::getPlatformName_i(const std::string& type, const std::string& valueOrRange) const
{
    QV_LOG_INFO_FOR(LOG_TAG, "INFO: getPlatformName_i::type:%s, valueOrRange:%s\n", type.c_str(), valueOrRange.c_str());
    const std::string* exact = nullptr;
    const std::string* partial = nullptr;
    for (const auto& [name, platform] : m_platforms) {
        for (const auto& specifier : platform->getSpecifiers()) {
            const int match = specifier->is_match(type, valueOrRange);
            if (match == 0) continue;
            QV_STREAM_INFO_FOR(LOG_TAG) << (match == 2 ? "Found exact match for specifier: "
                                                       : "Found partial match for specifier: ")
                                        << type << "=" << valueOrRange << " in Platform specifier "
                                        << specifier->toString();
            if (match == 2) exact = &name;
            if (match == 1 && partial == nullptr) partial = &name;
        }
        if (exact != nullptr) return *exact;
    }
    return partial != nullptr ? *partial : "";
}

Platform* Parser::findPlatform_i(std::string_view name) const
{
    const auto found = m_platforms.find(name);
    if (found != m_platforms.end()) return found->second.get();
    QV_STREAM_ERROR << "ERROR: no platform \"" << name << "\" defined in config file!";
    return nullptr;
}

bool Parser::getAllPlatforms_i(std::vector<Platform*>& out, const std::string& platformNames) const
{
    const Tokenizer entries(platformNames, ",");
    Platform* root = nullptr;
    for (const std::string& entry : entries.get_all_tokens()) {
        QV_STREAM_INFO << "pwr::Parser::getAllPlatforms_i"
                       << " looking at token " << entry;
        const std::vector<std::string> tokens = Tokenizer(entry, "=").get_all_tokens();
        if (tokens.size() < 2) {
            QV_LOG_WARNING("WARNING: invalid platform name entry %s: MUST be of form <TYPE>=<NAME>!\n", entry.c_str());
            return false;
        }
        Platform* platform = findPlatform_i(tokens[1]);
        if (platform == nullptr) return false;
        for (; platform->getParent() != nullptr; platform = platform->getParent())
            out.push_back(platform);
        if (root == nullptr) root = platform;
    }
    if (root != nullptr) out.push_back(root);
    return true;
}

int Parser::getMessagesForPrefix_i(std::vector<InputMsg*>& out, const std::string& platformNames,
                                   const std::string& prefix) const
{
    out.clear();
    std::vector<Platform*> platforms;
    if (!getAllPlatforms_i(platforms, platformNames)) {
        complainOfNames(platformNames);
        return -1;
    }
    for (const Platform* platform : platforms) {
        if (collectLevels_i(out, platform, prefix)) break;
    }
    return out.empty() ? -1 : 0;
}

// The messages of a platform and, as long as EXTEND says so, those of the level above. A level of which one message has
// the name of a nearer one is left out as a whole. False for no messages.
bool Parser::collectLevels_i(std::vector<InputMsg*>& out, const Platform* platform, const std::string& prefix) const
{
    std::unordered_map<std::string_view, const InputMsg*> collected;
    std::vector<InputMsg*> level;
    for (; platform != nullptr; platform = platform->getParent()) {
        platform->getMessagesFor(level, prefix);
        const auto clash = std::find_if(level.begin(), level.end(), [&collected](const InputMsg* message) {
            return collected.count(message->getName()) != 0;
        });
        if (clash != level.end()) {
            QV_LOG_WARNING_FOR(LOG_TAG, "WARNING: Parent message (%s) clashes with child message (%s)\n",
                               (*clash)->getFullName().c_str(), collected[(*clash)->getName()]->getFullName().c_str());
            QV_LOG_ERROR("ERROR: Duplicate messages found\n");
            level.clear();
        }
        for (const InputMsg* message : level)
            collected.emplace(message->getName(), message);
        out.insert(out.end(), level.begin(), level.end());
        if (platform->doesExtend(prefix)) continue;
        QV_LOG_INFO_FOR(LOG_TAG, "INFO: OVERRIDE found for prefix %s\n", prefix.c_str());
        break;
    }
    return !collected.empty();
}

int Parser::getMessagesFor(std::vector<InputMsg*>& messages, const std::string& platformNames,
                           const std::string& prefix, const std::vector<std::string>& triggers,
                           CollectionType type) const
{
    const bool isInit = std::find(triggers.begin(), triggers.end(), "INIT") != triggers.end();
    std::vector<InputMsg*> all;
    if (getMessagesForPrefix_i(all, platformNames, prefix) != 0) return -1;
    for (InputMsg* message : all) {
        message->setTrigger(type == CollectionType::MAX_DETAIL, type == CollectionType::NORMAL_OR_MAX_DETAIL);
        if (hasAny(message->getTriggers(), triggers)) {
            messages.push_back(message);
        } else if (isInit && isImplicitInit(*message)) {
            QV_STREAM_DEBUG << "DEBUG: found IMPLICIT INIT for message: " << platformNames << "_" << prefix << "_"
                            << message->getName();
            messages.push_back(message);
        }
    }
    return 0;
}

int Parser::getCapabilitiesFor(std::vector<const ConfigCap*>& capabilities, const std::string& platformNames) const
{
    capabilities.clear();
    std::vector<Platform*> platforms;
    if (!getAllPlatforms_i(platforms, platformNames)) {
        complainOfNames(platformNames);
        return -1;
    }
    for (const Platform* platform : platforms) {
        for (const auto& [key, cap] : platform->getCapabilities()) {
            QV_STREAM_DEBUG << "platform " << platform->getName() << " is looking at cap pair: " << key << " :=> "
                            << cap->getName();
            capabilities.push_back(cap.get());
        }
    }
    return 0;
}

int Parser::getOrigins(ConfigOrigins& origins, const std::vector<std::pair<std::string, std::string>>& specifiers,
                       const std::string& platformNames, const std::string& prefix) const
{
    origins = {};
    std::vector<Platform*> platforms;
    if (!getAllPlatforms_i(platforms, platformNames)) {
        complainOfNames(platformNames);
        return -1;
    }
    if (!m_failedFile.empty()) {
        QV_STREAM_ERROR << "config file " << m_failedFile << " was not read to its end: nobody can tell what it says";
        return -1;
    }
    OriginReader reader(origins, platforms, prefix, specifiers, m_providers);
    for (const LoadedFile& file : m_files) {
        if (reader.read(file.path, file.fingerprint)) continue;
        QV_STREAM_ERROR << "config file " << file.path << " has changed since it was loaded!";
        origins = {};
        return -1;
    }
    reader.finish();
    std::vector<InputMsg*> messages;
    getMessagesForPrefix_i(messages, platformNames, prefix);
    origins.messages.assign(messages.begin(), messages.end());
    return 0;
}

CollectorPlugin* Parser::getCollectorFor(std::string_view operation) const
{
    const OperationProviders::Provider* provider = m_providers.find(operation);
    return provider != nullptr ? provider->collector : nullptr;
}

const Operation* Parser::getOperationFor(std::string_view operation, bool& available) const
{
    const OperationProviders::Provider* provider = m_providers.find(operation);
    if (provider == nullptr) return nullptr;
    available = provider->isAvailable;
    return provider->prototype;
}

Operation* Parser::addOperationToMessage(InputMsg* message, std::string_view name, std::string_view operation,
                                         bool& available)
{
    const OperationProviders::Provider* provider = m_providers.find(operation);
    if (provider == nullptr) return nullptr;
    available = provider->isAvailable;
    return message != nullptr ? addOperation_i(*message, name, *provider) : nullptr;
}

Operation* Parser::addOperation_i(InputMsg& message, std::string_view name,
                                  const OperationProviders::Provider& provider)
{
    const std::string& kind = provider.prototype->getOperation();
    if (isOfOtherCollector_i(message, provider)) {
        QV_STREAM_ERROR << "Cannot add operation " << kind << " to message " << message.getFullName()
                        << " because the collectors are different!";
        return nullptr;
    }
    if (Operation* known = findOperation_i(message, name)) return known;
    if (!provider.isAvailable) {
        QV_LOG_INFO("INFO: Didn't add operation %s to msg %s because op is not available on current platform!\n",
                    std::string(name).c_str(), message.getName().c_str());
        return nullptr;
    }
    std::unique_ptr<Operation> clone(provider.prototype->clone());
    if (!clone) return nullptr;
    clone->setName(m_key.assign(name));
    Operation* added = clone.get();
    message.addOperation(clone.release());
    return added;
}

bool Parser::isOfOtherCollector_i(const InputMsg& message, const OperationProviders::Provider& provider) const
{
    if (message.getOperationCount() == 0) return false;
    if (message.getOperations().front()->getOperation() == provider.prototype->getOperation()) return false;
    const CollectorPlugin* current = collectorOf_i(message);
    return current != nullptr && current != provider.collector;
}

// Null for a message without operations.
CollectorPlugin* Parser::collectorOf_i(const InputMsg& message) const
{
    return message.getOperationCount() != 0 ? getCollectorFor(message.getOperations().front()->getOperation())
                                            : nullptr;
}

Operation* Parser::findOperation_i(const InputMsg& message, std::string_view name)
{
    constexpr std::size_t FEW = 16;
    const std::vector<Operation*>& operations = message.getOperations();
    if (operations.size() <= FEW) {
        const auto found = std::find_if(operations.begin(), operations.end(),
                                        [name](const Operation* operation) { return operation->getName() == name; });
        return found != operations.end() ? *found : nullptr;
    }
    OperationIndex& index = m_operationIndexes[&message];
    for (; index.indexed < operations.size(); ++index.indexed) {
        Operation* operation = operations[index.indexed];
        index.byName.emplace(operation->getName(), operation);
    }
    const auto found = index.byName.find(name);
    return found != index.byName.end() ? found->second : nullptr;
}

CollectorPlugin* Parser::findCollectorToDispatch(const Operation* operation, const char* what)
{
    const auto refuse = [operation, what](const std::string& why) -> CollectorPlugin* {
        QV_STREAM_ERROR << "Trying to do immediate " << what << " of operation "
                        << (operation != nullptr ? operation->getName() : "") << why;
        return nullptr;
    };
    if (operation == nullptr || operation->getOperation().empty()) return refuse(" without a valid packet?!");
    if (s_loaded == nullptr) return refuse(" without a valid parser?!");
    CollectorPlugin* collector = s_loaded->getCollectorFor(operation->getOperation());
    if (collector == nullptr) return refuse(" with invalid type " + operation->getOperation() + "?!");
    QV_LOG_INFO("INFO: OK, found collector for operation %s; now dispatching!\n", operation->getName().c_str());
    return collector;
}

}    // namespace pwr
