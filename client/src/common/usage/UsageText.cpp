#include "usage/UsageText.h"

#include "usage/OptionTables.h"

namespace pwr::usage {

namespace {

using NamesByChip = std::map<std::string, std::vector<std::string>>;

void appendChipNames(const NamesByChip& namesByChip, const std::string& chip, const char* feature)
{
    if (chip == "Unsupported") return;
    const auto names = namesByChip.find(chip);
    if (names == namesByChip.end()) return;
    auto& features = UsageText::getIndividualFeatureOptions();
    const auto found = features.find(feature);
    if (found == features.end() || found->second.empty()) return;
    found->second.front().appendValidArgs(names->second);
}

}    // namespace

const std::map<std::string, std::vector<Option>> UsageText::s_usageConstants = makeCategories();
std::map<std::string, std::vector<Option>> UsageText::s_IndividualFeatureOptions = makeFeatureOptions();
std::map<std::string, std::vector<std::string>> UsageText::s_ltrDevices;
const std::map<std::string, std::vector<std::string>> UsageText::s_TCSSIps = makeTcssIps();

UsageText::UsageText(const std::string& category) : m_category(category) {}

void UsageText::formatJson(nlohmann::json& j)
{
    for (const auto& [category, options] : s_usageConstants) {
        nlohmann::json& group = j[category];
        for (const Option& option : options)
            option.formatJson(group);
    }
}

void UsageText::appendArgsJson(nlohmann::json& j, const Option& feature)
{
    const std::string name = feature.getName();
    const auto found = s_IndividualFeatureOptions.find(name);
    if (found == s_IndividualFeatureOptions.end() || found->second.empty()) return;
    nlohmann::json& group = j[name]["options"];
    for (const Option& subOption : found->second)
        subOption.formatJson(group);
}

void UsageText::updatePchDeviceInfo(const std::string& chip)
{
    appendChipNames(s_ltrDevices, chip, "pch-ip-lat-limit");
}

void UsageText::updateTcssIpInfo(const std::string& chip)
{
    appendChipNames(s_TCSSIps, chip, "tcss-pm-dbg");
}

std::map<std::string, std::vector<Option>>& UsageText::getIndividualFeatureOptions()
{
    return s_IndividualFeatureOptions;
}

}    // namespace pwr::usage
