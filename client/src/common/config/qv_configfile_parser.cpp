#include "config/qv_configfile_parser.h"

#include "config/Parser.h"

#include <memory>

namespace pwr {

QVConfigFileParser* QVConfigFileParser::s_instance = nullptr;

QVConfigFileParser* QVConfigFileParser::instance()
{
    if (s_instance == nullptr) s_instance = new QVConfigFileParser;
    return s_instance;
}

void QVConfigFileParser::destroy()
{
    destroy_i();
}

void QVConfigFileParser::destroy_i()
{
    Parser::setLoaded(nullptr);
}

int QVConfigFileParser::parse(const std::vector<std::string>& files, const std::vector<CollectorPlugin*>& collectors,
                              const SystemMetadata& system)
{
    destroy_i();
    Parser::setLoaded(std::make_unique<Parser>());
    return Parser::loaded()->load(files, collectors, system) ? 0 : -1;
}

int QVConfigFileParser::getPlatformName(std::string& name, const std::pair<std::string, std::string>& specifier) const
{
    const Parser* loaded = Parser::loaded();
    name = loaded != nullptr ? loaded->getPlatformName_i(specifier.first, specifier.second) : "";
    return loaded != nullptr ? 0 : -1;
}

bool QVConfigFileParser::isPlatformPrefixSupported(const std::string& platformNames, const std::string& prefix) const
{
    std::vector<InputMsg*> messages;
    return Parser::loaded() != nullptr &&
           Parser::loaded()->getMessagesForPrefix_i(messages, platformNames, prefix) == 0;
}

int QVConfigFileParser::getMessagesFor(std::vector<InputMsg*>& messages, const std::string& platformNames,
                                       const std::string& prefix, const std::vector<std::string>& triggers,
                                       const CollectionType& type) const
{
    if (Parser::loaded() == nullptr) return -1;
    return Parser::loaded()->getMessagesFor(messages, platformNames, prefix, triggers, type);
}

int QVConfigFileParser::getCapabilitiesFor(std::vector<const ConfigCap*>& capabilities,
                                           const std::string& platformNames) const
{
    capabilities.clear();
    return Parser::loaded() != nullptr ? Parser::loaded()->getCapabilitiesFor(capabilities, platformNames) : -1;
}

int QVConfigFileParser::getOrigins(ConfigOrigins& origins,
                                   const std::vector<std::pair<std::string, std::string>>& specifiers,
                                   const std::string& platformNames, const std::string& prefix) const
{
    origins = {};
    return Parser::loaded() != nullptr ? Parser::loaded()->getOrigins(origins, specifiers, platformNames, prefix) : -1;
}

}    // namespace pwr
