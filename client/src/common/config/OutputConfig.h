#pragma once

#include "runtime/Export.h"

#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace pwr {

class OutputConfigParser;
class SystemMetadata;

// How one summary table is presented: the settings of an output configuration file, by key. A plain value.
class QUORVANE_API TableInfo {
public:
    using const_iterator = std::map<std::string, std::string>::const_iterator;

    bool isEmpty() const { return m_entries.empty(); }
    const_iterator begin() const { return m_entries.begin(); }
    const_iterator end() const { return m_entries.end(); }
    bool isKeySet(const std::string& key) const;

    // False with a warning for a key that is there already, which keeps its value.
    bool setKeyValuePair(const std::string& key, const std::string& value);

    // True with the text; false, with the argument left alone, when the key is not set.
    bool getTableTitle(std::string& title) const;
    bool getPreTableNote(std::string& note) const;
    bool getPostTableNote(std::string& note) const;

    // "YES" in upper case is yes, anything else no. A table is displayed unless told otherwise.
    bool isTableDisplayed() const;
    bool isTableTransposed() const;
    bool suppressTotal() const;

private:
    friend class OutputConfigParser;    // insert_i(), for its many lines

    bool getConfigEntry(const std::string& key, std::string& value) const;
    bool isConfigEntryYesOrNo(const std::string& key) const;
    bool insert_i(std::string_view key, std::string_view value);    // false when the key is set, which stays

    std::map<std::string, std::string> m_entries;
};

// The output configuration of the process: in which order features, metrics and tables appear, and how each table is
// titled, noted, turned and shown. Load it on one thread before metrics are made; queries only read and copy. Without
// a load every query is false.
//
//   auto* config = WriterInterfaceConfigFileParser::instance();
//   if (config->parse({"output.conf"}, system) != 0) return fail();
//   TableInfo info;
//   if (config->getTableInfoFor(info, "RESID", "FEAT", "SAMPLE-COUNT")) info.getTableTitle(title);
//   config->destroy();
class QUORVANE_API WriterInterfaceConfigFileParser {
public:
    static WriterInterfaceConfigFileParser* instance();    // made at the first call, lives as long as the process

    // Forgets what was loaded.
    void destroy();

    // Replaces what was loaded by the statements of the files, in order. Returns 0; -1, with the reason in the error
    // log and on the standard error stream, at the first line or file that fails: what stood before it stays loaded.
    // `system` is not used.
    int parse(const std::vector<std::string>& files, const SystemMetadata& system);

    // Each is true with a copy, or false with the argument left alone. `metric` is the metric container tag, `feature`
    // the feature switch tag, `tableType` a name such as "MIN-MAX-AVG". Only statements for "ALL" are found.
    bool getTableInfoFor(TableInfo& info, const std::string& metric, const std::string& feature,
                         const std::string& tableType) const;
    bool getTableOrderForMetric(std::deque<std::string>& order, const std::string& metric,
                                const std::string& feature) const;
    bool getMetricOrderForFeature(std::deque<std::string>& order, const std::string& feature) const;
    bool getFeatureOrder(std::deque<std::string>& order) const;
    bool getAllFeaturePrefixes(std::deque<std::string>& prefixes) const;

private:
    WriterInterfaceConfigFileParser() = default;
    ~WriterInterfaceConfigFileParser() = default;
    WriterInterfaceConfigFileParser(const WriterInterfaceConfigFileParser&) = delete;
    WriterInterfaceConfigFileParser& operator=(const WriterInterfaceConfigFileParser&) = delete;
    void destroy_i();

    static WriterInterfaceConfigFileParser* s_instance;
};

}    // namespace pwr
