#pragma once

#include "config/ConfigLanguage.h"
#include "config/OutputConfig.h"

#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace pwr {

// The output configuration that is loaded: reads the statements and keeps what they say. There is at most one, made by
// WriterInterfaceConfigFileParser::parse().
//
//   ALL_OUTPUT-ORDER_TAG_FEATURE_ORDER=FEAT,OTHER      the order of features
//   ALL_FEAT_TAG_TABLE_ORDER=RESID,OTHER               the order of a feature's metrics
//   ALL_FEAT_RESID_SAMPLE-COUNT_TITLE=Title text       a setting of one table
class OutputConfigParser : public ConfigLanguage {
public:
    static constexpr const char* LOG_TAG = "output-config-parser";

    OutputConfigParser();

    // False at the first file that fails; what was read before stays.
    bool load(const std::vector<std::string>& files);

    // Null: nothing is known of it. `metricKey` is ALL_<feature>_<metric>.
    const TableInfo* findTable(const std::string& metricKey, const std::string& tableType) const;
    const std::deque<std::string>* findTableOrder(const std::string& metricKey) const;
    const std::deque<std::string>* findMetricOrder(const std::string& feature) const;
    const std::deque<std::string>& getFeatureOrder() const { return m_featureOrder; }
    const std::deque<std::string>& getFeaturePrefixes() const { return m_featurePrefixes; }

private:
    // The tables of one metric, and their types in the order of their first lines.
    struct MetricTables {
        std::map<std::string, TableInfo, std::less<>> tables;
        std::deque<std::string> order;
    };

    bool statementRule_i(const ConfigStatement& statement) override;
    bool featureOrderRule_i(const ConfigStatement& statement);
    bool metricRule_i(const ConfigStatement& statement);
    bool metricOrderRule_i(const ConfigStatement& statement);
    bool tagSub_i(const ConfigStatement& statement);
    void value_i(const ConfigStatement& statement);
    MetricTables& tablesOf_i(std::string_view prefix);
    static bool readList_i(std::deque<std::string>& list, std::string_view value);

    void dump_i() const;
    void dumpTables_i() const;
    void compareOrders_i() const;
    void warnOfTags_i(const char* what, const std::vector<std::string>& tags, const char* end) const;

    using Metrics = std::map<std::string, MetricTables, std::less<>>;

    std::string m_metricKey;                        // of the line that is read
    Metrics m_metrics;                              // by F0_F1_F2
    Metrics::value_type* m_lastMetric = nullptr;    // the one that the last setting spoke of

    std::map<std::string, std::deque<std::string>, std::less<>> m_metricOrder;    // by feature switch tag
    std::deque<std::string> m_featureOrder;
    std::deque<std::string> m_featurePrefixes;    // one entry for each new metric, in order of appearance
};

}    // namespace pwr
