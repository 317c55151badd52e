#include "config/OutputConfigParser.h"

#include "runtime/Log.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace pwr {

namespace {

constexpr const char* ORDER_WITHOUT_METRICS =
    "\nWARNING: Output Config: Ordering requested for the following features, but corresponding metric container "
    "ordering entries (ALL_<FEATURE-SWITCH-TAG>_TAG_TABLE_ORDER) missing:\n";

constexpr const char* METRICS_WITHOUT_ORDER =
    "\nWARNING: Output Config: Metric container table entries present for the following feature, but feature ordering "
    "not explicitly requested. Missing feature switch tags in "
    "'ALL_OUTPUT-ORDER_TAG_FEATURE_ORDER=<FEATURE-SWITCH-TAG>,...'. (This may be acceptable for metrics that don't "
    "need to be in specific order):\n";

bool isTableKey(std::string_view key)
{
    constexpr std::array<std::string_view, 8> keys = {"TABLE",           "TITLE",  "TRANSPOSE",  "PRE-TABLE-TEXT",
                                                      "POST-TABLE-TEXT", "STATES", "ATTRIBUTES", "SUPPRESS-TOTAL"};
    return std::find(keys.begin(), keys.end(), key) != keys.end();
}

// For printing a view in a format form.
std::string text(std::string_view view)
{
    return std::string(view);
}

template <typename Map, typename Key>
auto* findIn(Map& map, const Key& key)
{
    const auto found = map.find(key);
    return found != map.end() ? &found->second : nullptr;
}

// Those of `some` that are not in `others`, which is sorted. A tag that is listed twice is there as often.
std::vector<std::string> missingFrom(const std::vector<std::string>& some, const std::vector<std::string>& others)
{
    std::vector<std::string> missing;
    std::remove_copy_if(some.begin(), some.end(), std::back_inserter(missing), [&others](const std::string& tag) {
        return std::binary_search(others.begin(), others.end(), tag);
    });
    return missing;
}

}    // namespace

OutputConfigParser::OutputConfigParser() : ConfigLanguage(LOG_TAG) {}

bool OutputConfigParser::load(const std::vector<std::string>& files)
{
    for (const std::string& path : files) {
        QV_LOG_INFO_FOR(LOG_TAG, "INFO: Path is: %s\n", path.c_str());
        if (readFile_i(path)) continue;
        QV_STREAM_FATAL << "ERROR parsing config file " << path << "!";
        return false;
    }
    if (isLoggedFor(LogLevel::INFO, LOG_TAG)) dump_i();
    compareOrders_i();
    return true;
}

const TableInfo* OutputConfigParser::findTable(const std::string& metricKey, const std::string& tableType) const
{
    const MetricTables* metric = findIn(m_metrics, metricKey);
    return metric != nullptr ? findIn(metric->tables, tableType) : nullptr;
}

const std::deque<std::string>* OutputConfigParser::findTableOrder(const std::string& metricKey) const
{
    const MetricTables* metric = findIn(m_metrics, metricKey);
    return metric != nullptr ? &metric->order : nullptr;
}

const std::deque<std::string>* OutputConfigParser::findMetricOrder(const std::string& feature) const
{
    return findIn(m_metricOrder, feature);
}

bool OutputConfigParser::statementRule_i(const ConfigStatement& statement)
{
    if (!platformRule_i(statement.platform)) return false;
    const bool isDone = statement.prefix == "OUTPUT-ORDER" ? rule_i(featureOrderRule_i(statement), "featureOrderRule")
                                                           : rule_i(metricRule_i(statement), "metricRule");
    return rule_i(isDone, "platformSub");
}

bool OutputConfigParser::featureOrderRule_i(const ConfigStatement& statement)
{
    if (statement.tag != "TAG" || statement.keyword != "FEATURE" || statement.key != "ORDER") return false;
    QV_LOG_INFO_FOR(LOG_TAG, "INFO: Prefix %s, value %s\n", text(statement.prefix).c_str(),
                    text(statement.value).c_str());
    std::deque<std::string> features;
    if (!rule_i(readList_i(features, statement.value), "featureOrderValue")) return false;
    m_featureOrder.insert(m_featureOrder.end(), features.begin(), features.end());
    return true;
}

bool OutputConfigParser::metricRule_i(const ConfigStatement& statement)
{
    if (statement.tag.empty()) return rule_i(false, "tag");
    if (statement.tag == "TAG") return rule_i(metricOrderRule_i(statement), "metricOrderRule");
    return rule_i(tagSub_i(statement), "tagSub");
}

bool OutputConfigParser::metricOrderRule_i(const ConfigStatement& statement)
{
    if (statement.keyword != "TABLE" || statement.key != "ORDER") return false;
    QV_LOG_INFO_FOR(LOG_TAG, "INFO: Feature prefix %s, value %s\n", text(statement.prefix).c_str(),
                    text(statement.value).c_str());
    std::deque<std::string> metrics;
    if (!rule_i(readList_i(metrics, statement.value), "metricOrderValue")) return false;
    if (metrics.empty()) return true;
    std::deque<std::string>& order = m_metricOrder[text(statement.prefix)];
    order.insert(order.end(), metrics.begin(), metrics.end());
    return true;
}

bool OutputConfigParser::tagSub_i(const ConfigStatement& statement)
{
    if (!isTableKey(statement.key)) return false;
    statement.getPathTo(m_metricKey, statement.tag);
    QV_LOG_INFO_FOR(LOG_TAG, "INFO: key %s, table-type %s, value %s\n", text(statement.key).c_str(),
                    text(statement.keyword).c_str(), m_metricKey.c_str());
    value_i(statement);
    return true;
}

// The first setting of a key stays; a repeated one is told and does no harm.
void OutputConfigParser::value_i(const ConfigStatement& statement)
{
    MetricTables& metric = tablesOf_i(statement.prefix);
    auto table = metric.tables.find(statement.keyword);
    if (table == metric.tables.end()) {
        table = metric.tables.emplace(statement.keyword, TableInfo()).first;
        metric.order.emplace_back(statement.keyword);
    }
    if (table->second.insert_i(statement.key, trim_i(statement.value))) return;
    QV_LOG_WARNING_FOR(LOG_TAG,
                       "WARNING: Config table info (%s) entry already present for metric table %s for metric "
                       "container %s\n",
                       text(statement.key).c_str(), table->first.c_str(), m_metricKey.c_str());
}

// Settings of one metric mostly follow each other, so the last one is looked at first.
OutputConfigParser::MetricTables& OutputConfigParser::tablesOf_i(std::string_view prefix)
{
    if (m_lastMetric != nullptr && m_lastMetric->first == m_metricKey) return m_lastMetric->second;
    const auto [metric, isNew] = m_metrics.try_emplace(m_metricKey);
    if (isNew) m_featurePrefixes.emplace_back(prefix);
    m_lastMetric = &*metric;
    return metric->second;
}

bool OutputConfigParser::readList_i(std::deque<std::string>& list, std::string_view value)
{
    for (std::string_view entry; takeEntry(entry, value);) {
        const std::string_view tag = trim_i(entry);
        if (tag.empty()) return false;
        list.emplace_back(tag);
    }
    return true;
}

void OutputConfigParser::dump_i() const
{
    dumpTables_i();
    if (!m_metricOrder.empty()) QV_LOG_INFO_FOR(LOG_TAG, "INFO: Metric order per Feature:\n");
    for (const auto& [feature, metrics] : m_metricOrder) {
        QV_LOG_INFO_FOR(LOG_TAG, "INFO: curr Feature: %s\n", feature.c_str());
        for (const std::string& metric : metrics)
            QV_LOG_INFO_FOR(LOG_TAG, "INFO: \tcurr Metric: %s\n", metric.c_str());
    }
    if (!m_featureOrder.empty()) QV_LOG_INFO_FOR(LOG_TAG, "INFO: Feature order:\n");
    for (const std::string& feature : m_featureOrder) {
        QV_LOG_INFO_FOR(LOG_TAG, "INFO: \tcurr Feature: %s\n", feature.c_str());
    }
}

void OutputConfigParser::dumpTables_i() const
{
    for (const auto& [metricKey, metric] : m_metrics) {
        QV_LOG_INFO_FOR(LOG_TAG, "INFO: curr Key: %s\n", metricKey.c_str());
        for (const auto& [tableType, table] : metric.tables) {
            QV_LOG_INFO_FOR(LOG_TAG, "INFO: \tcurr Table: %s\n", tableType.c_str());
            for (const auto& [key, value] : table) {
                QV_LOG_INFO_FOR(LOG_TAG, "INFO: \t\tcurr Table-Info: %s, value: %s\n", key.c_str(), value.c_str());
            }
        }
    }
}

// Both orders should speak of the same features. Only a warning: a feature may be meant to have no order.
void OutputConfigParser::compareOrders_i() const
{
    if (m_featureOrder.empty() || m_featurePrefixes.empty()) return;
    std::vector<std::string> ordered(m_featureOrder.begin(), m_featureOrder.end());
    std::sort(ordered.begin(), ordered.end());
    std::vector<std::string> withMetricOrder;
    for (const auto& [feature, metrics] : m_metricOrder)
        withMetricOrder.push_back(feature);

    warnOfTags_i(ORDER_WITHOUT_METRICS, missingFrom(ordered, withMetricOrder), "\n");
    warnOfTags_i(METRICS_WITHOUT_ORDER, missingFrom(withMetricOrder, ordered), "\n\n");
}

void OutputConfigParser::warnOfTags_i(const char* what, const std::vector<std::string>& tags, const char* end) const
{
    if (tags.empty()) return;
    QV_LOG_WARNING_FOR(LOG_TAG, "%s", what);
    for (const std::string& tag : tags)
        QV_LOG_WARNING_FOR(LOG_TAG, "%s, ", tag.c_str());
    QV_LOG_WARNING_FOR(LOG_TAG, "%s", end);
}

}    // namespace pwr
