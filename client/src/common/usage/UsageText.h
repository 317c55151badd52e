#pragma once

#include "usage/Option.h"

#include <map>
#include <string>
#include <vector>

namespace pwr::usage {

// All options of the tool by category, and the sub-options of single features: the one description behind the help text
// and the JSON form. The tables are there when the library is loaded. They have no lock: nobody may read them while
// another thread changes them. What changes them comes before the help text and the JSON form are made.
//
//   UsageText::updateTcssIpInfo(codeName);
//   nlohmann::json usage;
//   UsageText::formatJson(usage);    // usage["General Options"]["--help"]["abbreviation"] is "-h"
//
// A printer of help text derives from it to read the tables.
class QUORVANE_API UsageText {
public:
    explicit UsageText(const std::string& category = "General Options");

    // Writes every option of every category: j[category][option name][attribute key]. A null `j` becomes an object;
    // throws nlohmann::json::type_error where a value to be filled is neither null nor an object.
    static void formatJson(nlohmann::json& j);

    // Writes the feature's sub-options under j[feature name]["options"]; leaves `j` untouched where it has none. Throws
    // as formatJson does.
    static void appendArgsJson(nlohmann::json& j, const Option& feature);

    // Put the names that the chip offers behind the valid arguments of the first sub-option of "pch-ip-lat-limit" and
    // of "tcss-pm-dbg", again at each call. `chip` is a code name; an unknown one and "Unsupported" change nothing.
    static void updatePchDeviceInfo(const std::string& chip);
    static void updateTcssIpInfo(const std::string& chip);

    // The sub-options by feature name, in the order of the help text. The caller may change them.
    static std::map<std::string, std::vector<Option>>& getIndividualFeatureOptions();

protected:
    static const std::map<std::string, std::vector<Option>> s_usageConstants;    // by category, in order of the help
    static std::map<std::string, std::vector<Option>> s_IndividualFeatureOptions;
    static std::map<std::string, std::vector<std::string>> s_ltrDevices;       // by chip; empty until somebody fills it
    static const std::map<std::string, std::vector<std::string>> s_TCSSIps;    // by chip

    std::string m_category;    // title
};

}    // namespace pwr::usage
