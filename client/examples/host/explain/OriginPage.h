#pragma once

#include "config/qv_configfile_parser.h"

#include <cstddef>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

namespace host {

// Texts with the place that they come from in front of them, in a column of its own. Long texts go on in the next line.
//
//   OriginPage page(std::cout, origins.statements);
//   page.title("Capability");
//   page.line(&statement, 0, "HELP-STRING = degrees");    // 10-all.conf:105  HELP-STRING = degrees
//   page.files();
class OriginPage {
public:
    using Statement = pwr::ConfigOrigins::Statement;

    OriginPage(std::ostream& out, const std::vector<Statement>& statements);    // all that the page will name

    void text(const std::string& text);    // without that column
    void title(const std::string& text);
    // `origin` may be null: then the text comes from nowhere in particular.
    void line(const Statement* origin, std::size_t depth, const std::string& text);
    void files();    // where those stand whose names were printed

private:
    void nameFiles_i(const std::vector<Statement>& statements);
    void write_i(std::string head, std::size_t indent, const std::string& text);
    std::string placeOf_i(const Statement& statement) const;

    std::ostream& m_out;
    std::map<std::string, std::string> m_names;    // by path
    std::size_t m_column = 0;
};

}    // namespace host
