#include "config/OutputConfig.h"

#include "config/OutputConfigParser.h"
#include "runtime/Log.h"

#include <memory>

namespace pwr {

namespace {

std::unique_ptr<OutputConfigParser> s_loaded;    // null: nothing is loaded

std::string metricKeyOf(const std::string& metric, const std::string& feature)
{
    return "ALL_" + feature + "_" + metric;
}

// Copies what was found; false for nothing.
template <typename T>
bool copyOut(const T* found, T& out)
{
    if (found == nullptr) return false;
    out = *found;
    return true;
}

bool copyOut(const std::deque<std::string>& list, std::deque<std::string>& out)
{
    return !list.empty() && copyOut(&list, out);
}

}    // namespace

bool TableInfo::isKeySet(const std::string& key) const
{
    return m_entries.count(key) != 0;
}

bool TableInfo::setKeyValuePair(const std::string& key, const std::string& value)
{
    if (insert_i(key, value)) return true;
    QV_LOG_WARNING_FOR(OutputConfigParser::LOG_TAG,
                       "WARNING: Config table info (%s) entry already present for metric table\n", key.c_str());
    return false;
}

bool TableInfo::getTableTitle(std::string& title) const
{
    return getConfigEntry("TITLE", title);
}

bool TableInfo::getPreTableNote(std::string& note) const
{
    return getConfigEntry("PRE-TABLE-TEXT", note);
}

bool TableInfo::getPostTableNote(std::string& note) const
{
    return getConfigEntry("POST-TABLE-TEXT", note);
}

bool TableInfo::isTableDisplayed() const
{
    return !isKeySet("TABLE") || isConfigEntryYesOrNo("TABLE");
}

bool TableInfo::isTableTransposed() const
{
    return isConfigEntryYesOrNo("TRANSPOSE");
}

bool TableInfo::suppressTotal() const
{
    return isConfigEntryYesOrNo("SUPPRESS-TOTAL");
}

bool TableInfo::getConfigEntry(const std::string& key, std::string& value) const
{
    const auto found = m_entries.find(key);
    if (found == m_entries.end()) return false;
    value = found->second;
    return true;
}

bool TableInfo::isConfigEntryYesOrNo(const std::string& key) const
{
    const auto found = m_entries.find(key);
    return found != m_entries.end() && found->second == "YES";
}

bool TableInfo::insert_i(std::string_view key, std::string_view value)
{
    return m_entries.try_emplace(std::string(key), value).second;
}

WriterInterfaceConfigFileParser* WriterInterfaceConfigFileParser::s_instance = nullptr;

WriterInterfaceConfigFileParser* WriterInterfaceConfigFileParser::instance()
{
    if (s_instance == nullptr) s_instance = new WriterInterfaceConfigFileParser;
    return s_instance;
}

void WriterInterfaceConfigFileParser::destroy()
{
    destroy_i();
}

void WriterInterfaceConfigFileParser::destroy_i()
{
    s_loaded.reset();
}

int WriterInterfaceConfigFileParser::parse(const std::vector<std::string>& files, const SystemMetadata&)
{
    destroy_i();
    s_loaded = std::make_unique<OutputConfigParser>();
    return s_loaded->load(files) ? 0 : -1;
}

bool WriterInterfaceConfigFileParser::getTableInfoFor(TableInfo& info, const std::string& metric,
                                                      const std::string& feature, const std::string& tableType) const
{
    return s_loaded && copyOut(s_loaded->findTable(metricKeyOf(metric, feature), tableType), info);
}

bool WriterInterfaceConfigFileParser::getTableOrderForMetric(std::deque<std::string>& order, const std::string& metric,
                                                             const std::string& feature) const
{
    return s_loaded && copyOut(s_loaded->findTableOrder(metricKeyOf(metric, feature)), order);
}

bool WriterInterfaceConfigFileParser::getMetricOrderForFeature(std::deque<std::string>& order,
                                                               const std::string& feature) const
{
    return s_loaded && copyOut(s_loaded->findMetricOrder(feature), order);
}

bool WriterInterfaceConfigFileParser::getFeatureOrder(std::deque<std::string>& order) const
{
    return s_loaded && copyOut(s_loaded->getFeatureOrder(), order);
}

bool WriterInterfaceConfigFileParser::getAllFeaturePrefixes(std::deque<std::string>& prefixes) const
{
    return s_loaded && copyOut(s_loaded->getFeaturePrefixes(), prefixes);
}

}    // namespace pwr
