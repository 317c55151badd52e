#pragma once

#include "runtime/Export.h"

#include <cstdint>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace pwr::usage {

// Depth of an option in the help layout. The options of the categories stand at level 1, the sub-options of features at
// level 3.
enum class TabLevel : std::int32_t { LEVEL_1 = 1, LEVEL_2 = 2, LEVEL_3 = 3 };

// An option of the tool's command line as the help text and the JSON form tell it; it parses nothing. A value: copies
// are independent. One thread at a time.
//
//   Option quiet("--quiet", "Display nothing", TabLevel::LEVEL_1);
//   nlohmann::json options;
//   quiet.formatJson(options);    // {"--quiet": {"abbreviation": "", "alias": "quiet", ...}}
//
// A printer of help text derives from it to reach the operations and widths that lay out a line.
class QUORVANE_API Option {
public:
    // ALIAS and NORMAL_NAME are made of the name, the others are given.
    enum class Attribute : std::int32_t {
        NAME,
        DESCRIPTION,
        ABBREVIATION,
        NORMAL_NAME,
        ARG,
        ARG_DEFAULT,
        ARG_UNITS,
        ARG_TYPE,
        NOTES,
        ALIAS
    };

    // What is not given is empty; the level is 1.
    Option();
    Option(const std::string& name, const std::string& description, const TabLevel& level);
    Option(const std::string& name, const std::string& description, const TabLevel& level, const std::string& notes);
    Option(const std::string& name, const std::string& description, const std::string& abbreviation,
           const std::string& arg, const std::string& arg_type, const std::string& arg_units,
           const std::string& arg_default, const std::vector<std::string>& validArgs, const std::string& notes,
           const TabLevel& level);

    // The empty text for what is no attribute.
    std::string getAttribute(const Attribute& attribute) const;

    // The name, or the abbreviation where the name is empty: the option's key in the JSON form.
    std::string getName() const;

    // getName() in words: without the dashes at either end, each dash between them a blank. "--max-detail" gives
    // "max detail", "--" the empty text.
    std::string getNormalizedName() const;

    // Puts the values behind those that the argument may take already; doubles are kept.
    void appendValidArgs(const std::vector<std::string>& values);

    // Sets each attribute under j[getName()], and the valid arguments as an array under "valid args" where there are
    // any. Other keys stay. A null `j` becomes an object; throws nlohmann::json::type_error where `j` or the value
    // under the name is neither null nor an object.
    void formatJson(nlohmann::json& j) const;

protected:
    // Sets the option up anew: nothing stays of what it was.
    void init(const std::string& name, const std::string& description, const std::string& abbreviation,
              const std::string& arg, const std::string& arg_type, const std::string& arg_units,
              const std::string& arg_default, const std::vector<std::string>& validArgs, const std::string& notes,
              const TabLevel& level);

    // getName() without any dash: "maxdetail".
    std::string getAlias() const;

    // The help lines of this feature's sub-options, unwrapped. Each begins with a line end, the last has none behind
    // it; the empty text where there are no sub-options.
    std::string formatSubOption() const;

    // As many tabs as the level says.
    std::string getTabString() const;

    // What stands between name and abbreviation: ", ", or four blanks without abbreviation; empty for a name without
    // a dash in front.
    std::string getNameColumnFormat() const;

    // Indents a line. At level 3 all is written; at other levels the next item written is padded to `nameWidth`.
    void formatWhitespace(std::stringstream& out) const;

    // The text without the given characters.
    static std::string stripChars(const std::string& text, const std::vector<char>& chars);

    // Width in characters of the console that standard output shows on; 80 where it shows on none.
    static std::uint32_t getWindowsConsoleWidth();

    std::map<std::string, std::string> attributes;    // all ten; key order is the order in the JSON form
    std::vector<std::string> validArgs;
    TabLevel tabLevel = TabLevel::LEVEL_1;
    std::int32_t nameWidth = 0;    // characters of the name column
    std::int32_t descWidth = 0;    // characters left for the description in a line of 80

private:
    void formatAsSubOption_i(std::stringstream& out) const;
};

}    // namespace pwr::usage
