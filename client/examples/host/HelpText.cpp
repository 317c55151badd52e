#include "HelpText.h"

#include "Options.h"
#include "features/Features.h"

#include "config/pw_utils.h"
#include "usage/UsageText.h"

#include <algorithm>
#include <vector>

namespace host {

namespace {

using pwr::usage::Option;
using pwr::usage::TabLevel;

constexpr std::size_t INDENT = 2;
constexpr std::size_t LEAST_ROOM = 20;    // for a description, however narrow the console

// Appends the words in lines below `width`, the first behind what the text's last line holds, the others behind
// `indent` blanks.
void appendWrapped(std::string& text, const std::string& words, std::size_t indent, std::size_t width)
{
    std::size_t column = text.size() - (text.rfind('\n') + 1);
    const std::size_t end = std::max(width, indent + LEAST_ROOM);
    bool isFirst = true;
    const pwr::Tokenizer tokens(words, " ");
    for (const std::string& word : tokens.get_all_tokens()) {
        if (!isFirst && column + 1 + word.size() >= end) {
            text += '\n' + std::string(indent, ' ');
            column = indent;
        } else if (!isFirst) {
            text += ' ';
            ++column;
        }
        text += word;
        column += word.size();
        isFirst = false;
    }
    text += '\n';
}

// One option as the help shows it.
class HelpOption : public Option {
public:
    HelpOption(const Option& option, std::size_t width) : Option(option), m_width(width) {}

    void appendTo(std::string& text) const
    {
        const std::string abbreviation = getAttribute(Attribute::ABBREVIATION);
        const std::string argument = getAttribute(Attribute::ARG);
        std::string head = std::string(INDENT, ' ') + getName() + getNameColumnFormat() + abbreviation;
        if (!argument.empty()) head += ' ' + argument;
        head.erase(head.find_last_not_of(' ') + 1);
        if (getAttribute(Attribute::DESCRIPTION).empty()) {
            text += head + '\n';
            appendSubOptions_i(text);
            return;
        }
        const std::size_t column = INDENT + static_cast<std::size_t>(nameWidth);
        head +=
            head.size() + INDENT > column ? '\n' + std::string(column, ' ') : std::string(column - head.size(), ' ');
        text += head;
        appendWrapped(text, getAttribute(Attribute::DESCRIPTION), column, m_width);
        appendSubOptions_i(text);
    }

private:
    // The lines that the description makes begin with tabs and blanks for the widest of consoles.
    void appendSubOptions_i(std::string& text) const
    {
        constexpr std::size_t SUB_INDENT = 6;
        const pwr::Tokenizer lines(formatSubOption(), "\n");
        for (const std::string& line : lines.get_all_tokens()) {
            text += std::string(SUB_INDENT, ' ');
            appendWrapped(text, pwr::LineReader::trim(line), SUB_INDENT + INDENT, m_width);
        }
    }

    std::size_t m_width;
};

class Help : public pwr::usage::UsageText {
public:
    explicit Help(std::size_t width) : m_width(width) {}

    std::string make(const std::vector<Option>& results)
    {
        m_text = "quorvane_host [OPTION]...\n\n";
        appendWrapped(m_text,
                      "Measures the machine it runs on, prints summary tables, and saves results and the session in "
                      "files. Ctrl-C ends a collection; what was collected so far is processed all the same.",
                      0, m_width);
        for (const char* category : {"General Options", "Post-processing Options", "Collection Options"})
            append_i(category, s_usageConstants.at(category));
        append_i("Host Options", hostOptions());
        append_i("Results, for --result", results);
        append_i("Features, for --feature; --list tells which of them this machine offers", features_i());
        append_i("Features with options of their own, offered where a plugin brings them", featuresWithOptions_i());
        m_text += '\n';
        appendWrapped(m_text, "Exit status: 0, 1 when something went wrong, 2 for arguments that make no sense.", 0,
                      m_width);
        return m_text;
    }

private:
    void append_i(const std::string& title, const std::vector<Option>& options)
    {
        m_text += '\n';
        appendWrapped(m_text, title + ":", 0, m_width);
        for (const Option& option : options)
            HelpOption(option, m_width).appendTo(m_text);
    }

    static std::vector<Option> features_i()
    {
        std::vector<Option> options;
        for (const Feature& feature : makeFeatures("")) {
            if (!feature.isHidden())
                options.emplace_back(feature.getName(), feature.getDescription(), TabLevel::LEVEL_1);
        }
        return options;
    }

    static std::vector<Option> featuresWithOptions_i()
    {
        std::vector<Option> options;
        for (const auto& [feature, subOptions] : getIndividualFeatureOptions()) {
            options.emplace_back(feature, "", TabLevel::LEVEL_1);
        }
        return options;
    }

    std::size_t m_width;
    std::string m_text;
};

class ConsoleOption : public Option {
public:
    static std::size_t width() { return getWindowsConsoleWidth(); }
};

}    // namespace

std::size_t consoleWidth()
{
    return ConsoleOption::width();
}

std::string helpText(std::size_t width, const std::vector<Option>& results)
{
    return Help(width).make(results);
}

}    // namespace host
