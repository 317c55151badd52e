#include "config/OriginReader.h"

#include "config/OperationProviders.h"
#include "config/Parser.h"
#include "config/Platform.h"
#include "config/Specifier.h"
#include "config/qv_configfile_parser.h"

#include <algorithm>
#include <iterator>

namespace pwr {

namespace {

// How many specifiers a model line makes.
std::size_t countSpecifiers(const ConfigStatement& statement, std::string_view values)
{
    if (statement.tag != "FMS") return 1;
    std::size_t count = 0;
    for (std::string_view entry; takeEntry(entry, values);)
        ++count;
    return count;
}

std::string operationName(std::string_view prefix, std::string_view tag, std::string_view kind)
{
    return std::string(prefix).append(1, '_').append(tag).append(1, '_').append(kind);
}

// Number and processor stay with the message that they were told of when it joins another.
bool isPassedOn(const ConfigOrigins::Statement& statement)
{
    return statement.keyword != "MSG" || (statement.key != "ID" && !statement.key.ends_with("-WHICH-CPU"));
}

bool isSetting(const ConfigOrigins::Statement& statement)
{
    return statement.keyword != "MSG" && statement.isAvailable;
}

}    // namespace

OriginReader::OriginReader(ConfigOrigins& origins, const std::vector<Platform*>& chain, const std::string& prefix,
                           const Specifiers& specifiers, const OperationProviders& providers)
    : ConfigLanguage(Parser::LOG_TAG), m_origins(origins), m_prefix(prefix), m_specifiers(specifiers),
      m_providers(providers)
{
    for (const Platform* platform : chain) {
        if (!m_levels.emplace(platform->getName(), Level{platform}).second) continue;
        const Platform* parent = platform->getParent();
        m_origins.platforms.push_back({platform->getName(), parent != nullptr ? parent->getName() : ""});
    }
}

bool OriginReader::read(const std::string& path, std::size_t fingerprint)
{
    m_path = path;
    return readFile_i(path) && fingerprint_i() == fingerprint;
}

void OriginReader::finish()
{
    for (const Message& message : m_messages) {
        for (const std::size_t index : message.statements)
            m_origins.statements[index].message = message.fullName;
    }
}

bool OriginReader::statementRule_i(const ConfigStatement& statement)
{
    const bool isModel = statement.prefix == "MODEL";
    if (!isModel && statement.prefix != m_prefix) return true;
    const auto level = m_levels.find(statement.platformName());
    if (level == m_levels.end()) return true;
    add_i(statement);
    if (isModel) {
        matchModel_i(level->second, statement);
    } else if (statement.tag != "CAPABILITY" && statement.tag != "INHERIT") {
        serveMessage_i(level->second, statement);
    }
    return true;
}

void OriginReader::add_i(const ConfigStatement& statement)
{
    ConfigOrigins::Statement& added = m_origins.statements.emplace_back();
    added.file = m_path;
    added.line = lineNumber_i();
    added.platform = statement.platformName();
    added.prefix = statement.prefix;
    added.tag = statement.tag;
    added.keyword = statement.keyword;
    added.key = statement.key;
    added.value = statement.value;
}

// A file that has changed may tell of more specifiers than there are.
void OriginReader::matchModel_i(Level& level, const ConfigStatement& statement)
{
    const auto& known = level.platform->getSpecifiers();
    ConfigOrigins::Statement& added = m_origins.statements.back();
    const std::size_t count = countSpecifiers(statement, trim_i(statement.value));
    const std::size_t end = std::min(level.specifiers + count, known.size());
    int best = 0;
    for (; level.specifiers < end; ++level.specifiers) {
        const Specifier& specifier = *known[level.specifiers];
        for (const auto& [type, value] : m_specifiers) {
            const int match = specifier.m_name == type ? specifier.is_match(type, value) : 0;
            if (match <= best) continue;
            best = match;
            added.matchedProperty = type + "=" + value;
            added.matchedSpecifier = specifier.toString();
        }
    }
}

void OriginReader::serveMessage_i(const Level& level, const ConfigStatement& statement)
{
    const std::size_t message = messageOf_i(*level.platform, statement.tag);
    const std::size_t index = m_origins.statements.size() - 1;
    m_messages[message].statements.push_back(index);
    if (statement.keyword != "MSG") {
        ConfigOrigins::Statement& added = m_origins.statements[index];
        const OperationProviders::Provider* provider = m_providers.find(statement.keyword);
        added.isAvailable = provider != nullptr && provider->isAvailable;
        added.operation = operationName(m_prefix, statement.tag, statement.keyword);
    } else if (statement.key == "GROUP") {
        merge_i(level, statement, message);
    } else if (statement.key == "SOURCE") {
        copySource_i(level, statement, message);
    }
}

void OriginReader::merge_i(const Level& level, const ConfigStatement& statement, std::size_t target)
{
    std::string_view rest = statement.value;
    for (std::string_view entry; takeEntry(entry, rest);) {
        const std::string_view tag = trim_i(entry);
        const std::size_t member = messageOf_i(*level.platform, tag);
        if (member == target) continue;
        std::vector<std::size_t>& left = m_messages[member].statements;
        std::vector<std::size_t>& joined = m_messages[target].statements;
        const auto moved = std::stable_partition(
            left.begin(), left.end(), [this](std::size_t index) { return !isPassedOn(m_origins.statements[index]); });
        joined.insert(joined.end(), moved, left.end());
        left.erase(moved, left.end());
        // The key of the member's own name leads to the group; where another tag leads to the member, it still does.
        const std::string& fullName = m_messages[member].fullName;
        m_messagesByTag[level.platform][fullName.substr(fullName.rfind('_') + 1)] = target;
    }
}

// The statement itself says nothing when there is nothing to copy.
void OriginReader::copySource_i(const Level& level, const ConfigStatement& statement, std::size_t target)
{
    const std::size_t* source = findMessage_i(*level.platform, statement.value);
    std::vector<std::size_t> copied;
    if (source != nullptr && *source != target) {
        const std::vector<std::size_t>& all = m_messages[*source].statements;
        std::copy_if(all.begin(), all.end(), std::back_inserter(copied),
                     [this](std::size_t index) { return isSetting(m_origins.statements[index]); });
    }
    const std::size_t copier = m_origins.statements.size() - 1;
    m_origins.statements[copier].isAvailable = !copied.empty();
    for (const std::size_t index : copied) {
        ConfigOrigins::Statement copy = m_origins.statements[index];
        copy.operation = operationName(m_prefix, statement.tag, copy.keyword);
        m_origins.statements[copier].operation = copy.operation;
        m_messages[target].statements.push_back(m_origins.statements.size());
        m_origins.statements.push_back(std::move(copy));
    }
}

// Made for the first statement that names it.
std::size_t OriginReader::messageOf_i(const Platform& platform, std::string_view tag)
{
    TextMap<std::size_t>& byTag = m_messagesByTag[&platform];
    const auto known = byTag.find(tag);
    if (known != byTag.end()) return known->second;
    m_messages.push_back({operationName(platform.getName(), m_prefix, tag), {}});
    return byTag.emplace(tag, m_messages.size() - 1).first->second;
}

// Here or on the nearest ancestor; null: nowhere.
const std::size_t* OriginReader::findMessage_i(const Platform& platform, std::string_view tag) const
{
    for (const Platform* level = &platform; level != nullptr; level = level->getParent()) {
        const auto byTag = m_messagesByTag.find(level);
        if (byTag == m_messagesByTag.end()) continue;
        const auto found = byTag->second.find(tag);
        if (found != byTag->second.end()) return &found->second;
    }
    return nullptr;
}

}    // namespace pwr
