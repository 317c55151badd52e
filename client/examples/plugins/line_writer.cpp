// A writer as a module: each header and row of the tables as one line, behind the table's title. Writes
// <prefix>_lines.txt when the results have a prefix, else to the standard output stream.

#include "modules/PluginModule.h"

#include "output/TableMessage.h"
#include "output/WriterPlugin.h"
#include "plugins/PluginCapability.h"
#include "plugins/PluginEnvironment.h"

#include <deque>
#include <fstream>
#include <iostream>
#include <string>

namespace {

class LineWriter : public WriterPlugin {
public:
    LineWriter() : WriterPlugin("8a1f6c0e-7d3b-4c52-9f10-3b5f1f2d7a03")
    {
        addCapability(new pwr::WriterPluginCapability({}, "lines", "tables as plain lines", "_lines.txt", false));
    }

    int openOutput() override
    {
        const std::string& prefix = g_pluginEnvironment->getResultFilePrefix();
        if (!prefix.empty()) m_file.open(prefix + "_lines.txt");
        return prefix.empty() || m_file ? 0 : 1;
    }
    int closeOutput() override
    {
        out().flush();
        return out() ? 0 : 1;
    }

private:
    int writeMessage(const pwr::TableMessage& table) override
    {
        std::deque<std::string> cells;
        if (table.getTableMessageType() == pwr::TableMessageType::TABLE_LAYOUT) {
            getColumnTitles(table, cells);
        } else {
            getRowValues(table, cells);
        }
        out() << "line: " << table.getTitle() << ':';
        for (const std::string& cell : cells)
            out() << ' ' << cell;
        out() << '\n';
        return out() ? 0 : 1;
    }
    std::ostream& out() { return m_file.is_open() ? static_cast<std::ostream&>(m_file) : std::cout; }

    std::ofstream m_file;
};

}    // namespace

QUORVANE_MODULE(LineWriter)
