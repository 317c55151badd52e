#include "usage/Option.h"

#include "runtime/os/Os.h"
#include "usage/UsageText.h"

#include <algorithm>
#include <array>
#include <iomanip>
#include <utility>

namespace pwr::usage {

namespace {

constexpr std::int32_t LINE_WIDTH = 80;
constexpr std::int32_t DEFAULT_NAME_WIDTH = 25;
constexpr std::uint32_t WIDTH_WITHOUT_CONSOLE = 80;

// Both tables are there before any option of the program: static options are made from them.
constexpr std::array<std::pair<TabLevel, std::int32_t>, 3> tabWidths = {{
    {TabLevel::LEVEL_1, 25},
    {TabLevel::LEVEL_2, 20},
    {TabLevel::LEVEL_3, 25},
}};

// Indexed by Option::Attribute.
constexpr std::array<const char*, 10> attributeKeys = {
    "name",        "description", "abbreviation", "normal name", "arg",
    "arg_default", "arg_units",   "arg_type",     "notes",       "alias",
};

const char* keyOf(Option::Attribute attribute)
{
    return attributeKeys[static_cast<std::size_t>(attribute)];
}

std::int32_t nameWidthOf(TabLevel level)
{
    for (const auto& [known, width] : tabWidths)
        if (known == level) return width;
    return DEFAULT_NAME_WIDTH;
}

std::string join(const std::vector<std::string>& values, const char* separator)
{
    std::string text;
    for (const std::string& value : values) {
        if (&value != &values.front()) text += separator;
        text += value;
    }
    return text;
}

}    // namespace

Option::Option() : Option("", "", TabLevel::LEVEL_1) {}

Option::Option(const std::string& name, const std::string& description, const TabLevel& level)
    : Option(name, description, level, "")
{
}

Option::Option(const std::string& name, const std::string& description, const TabLevel& level, const std::string& notes)
    : Option(name, description, "", "", "", "", "", {}, notes, level)
{
}

Option::Option(const std::string& name, const std::string& description, const std::string& abbreviation,
               const std::string& arg, const std::string& arg_type, const std::string& arg_units,
               const std::string& arg_default, const std::vector<std::string>& values, const std::string& notes,
               const TabLevel& level)
{
    init(name, description, abbreviation, arg, arg_type, arg_units, arg_default, values, notes, level);
}

void Option::init(const std::string& name, const std::string& description, const std::string& abbreviation,
                  const std::string& arg, const std::string& arg_type, const std::string& arg_units,
                  const std::string& arg_default, const std::vector<std::string>& values, const std::string& notes,
                  const TabLevel& level)
{
    attributes = {
        {keyOf(Attribute::NAME), name},
        {keyOf(Attribute::DESCRIPTION), description},
        {keyOf(Attribute::ARG), arg},
        {keyOf(Attribute::ABBREVIATION), abbreviation},
        {keyOf(Attribute::ARG_TYPE), arg_type},
        {keyOf(Attribute::ARG_UNITS), arg_units},
        {keyOf(Attribute::ARG_DEFAULT), arg_default},
        {keyOf(Attribute::NOTES), notes},
    };
    validArgs = values;
    attributes[keyOf(Attribute::ALIAS)] = getAlias();
    attributes[keyOf(Attribute::NORMAL_NAME)] = getNormalizedName();
    tabLevel = level;
    nameWidth = nameWidthOf(level);
    descWidth = LINE_WIDTH - nameWidth;
}

std::string Option::getAttribute(const Attribute& attribute) const
{
    if (static_cast<std::size_t>(attribute) >= attributeKeys.size()) return "";
    const auto found = attributes.find(keyOf(attribute));
    return found != attributes.end() ? found->second : "";
}

std::string Option::getName() const
{
    std::string name = getAttribute(Attribute::NAME);
    return !name.empty() ? name : getAttribute(Attribute::ABBREVIATION);
}

std::string Option::getNormalizedName() const
{
    const std::string name = getName();
    const std::size_t first = name.find_first_not_of('-');
    if (first == std::string::npos) return "";
    std::string words = name.substr(first, name.find_last_not_of('-') - first + 1);
    std::replace(words.begin(), words.end(), '-', ' ');
    return words;
}

std::string Option::getAlias() const
{
    return stripChars(getName(), {'-'});
}

void Option::appendValidArgs(const std::vector<std::string>& values)
{
    const std::vector<std::string> added = values;    // the given list may be this option's own
    validArgs.insert(validArgs.end(), added.begin(), added.end());
}

void Option::formatJson(nlohmann::json& j) const
{
    nlohmann::json& option = j[getName()];
    for (const auto& [key, value] : attributes)
        option[key] = value;
    if (!validArgs.empty()) option["valid args"] = validArgs;
}

std::string Option::formatSubOption() const
{
    const auto& features = UsageText::getIndividualFeatureOptions();
    const auto found = features.find(getName());
    if (found == features.end()) return "";
    std::stringstream out;
    for (const Option& subOption : found->second)
        subOption.formatAsSubOption_i(out);
    return out.str();
}

void Option::formatAsSubOption_i(std::stringstream& out) const
{
    out << '\n';
    formatWhitespace(out);
    out << "--option " << getName();
    const std::string arg = getAttribute(Attribute::ARG);
    if (!arg.empty()) out << '=' << arg;
    out << "; " << getAttribute(Attribute::DESCRIPTION);
    if (!validArgs.empty()) {
        out << '\n';
        formatWhitespace(out);
        out << "  Valid args: " << join(validArgs, ", ");
    }
    const std::string notes = getAttribute(Attribute::NOTES);
    if (!notes.empty()) {
        out << '\n';
        formatWhitespace(out);
        out << "  Note: " << notes;
    }
}

std::string Option::getTabString() const
{
    const auto tabs = std::max(static_cast<std::int32_t>(tabLevel), 0);
    return std::string(static_cast<std::size_t>(tabs), '\t');
}

std::string Option::getNameColumnFormat() const
{
    if (!getAttribute(Attribute::NAME).starts_with('-')) return "";
    return getAttribute(Attribute::ABBREVIATION).empty() ? "    " : ", ";
}

void Option::formatWhitespace(std::stringstream& out) const
{
    if (tabLevel == TabLevel::LEVEL_3) {
        out << "\t\t" << std::setfill(' ') << std::setw(nameWidth) << ' ';
        return;
    }
    out << getTabString() << std::setw(nameWidth) << std::left;
}

std::string Option::stripChars(const std::string& text, const std::vector<char>& chars)
{
    std::string stripped = text;
    std::erase_if(stripped, [&](char c) { return std::find(chars.begin(), chars.end(), c) != chars.end(); });
    return stripped;
}

std::uint32_t Option::getWindowsConsoleWidth()
{
    const std::uint32_t width = os::current().console->width();
    return width != 0 ? width : WIDTH_WITHOUT_CONSOLE;
}

}    // namespace pwr::usage
