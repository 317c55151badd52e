#pragma once

#include "writers/HtmlPage.h"
#include "writers/OutFile.h"
#include "writers/Picture.h"
#include "writers/ResultWriter.h"

#include <map>
#include <memory>

namespace host {

// Writes PREFIX.html, a report in one file for a browser or a printer: what is known of the run, the head of the
// results, then for each metric its notes, charts and tables. A table that is too long for a browser is cut, and says
// so. Tables go to the file row by row; the charts of a metric are drawn when its tables begin, from what Picture keeps
// of its timeline.
class HtmlWriter : public ResultWriter {
public:
    explicit HtmlWriter(const std::string& prefix);
    int openOutput() override;
    int closeOutput() override;

protected:
    void beginMetric_i(const std::string& banner) override;
    void writeNotes_i(const std::vector<std::string>& notes) override;
    void beginTable_i(const TableHead& head) override;
    void writeRow_i(const std::vector<TableCell>& cells) override;
    void endTable_i(const TableHead& head) override;

private:
    struct Chart {
        std::string name;                    // of the metric
        bool isKnown = false;                // by its first value
        std::unique_ptr<Picture> picture;    // null: nothing to draw
    };

    using ResultWriter::writeMessage;
    int writeMessage(const pwr::MetricContainerInfoMessage& message) override;
    int writeMessage(const pwr::Metric& metric) override;

    std::string& page_i();
    HtmlPage::Facts facts_i();
    void openSection_i(const std::string& title);
    void closeSection_i();
    void drawCharts_i(unsigned int metricId);
    void writeTitles_i(const TableHead& head);
    static std::size_t mostRows_i(std::size_t columns);

    std::string m_path;
    OutFile m_file;
    bool m_hasSection = false;
    unsigned int m_sections = 0;
    std::map<unsigned int, Chart> m_charts;    // by the metric's id, until they are drawn
    std::vector<ChartBar> m_topTen;            // of the table in progress
    bool m_isTopTen = false;
    std::size_t m_rows = 0;    // of that table
};

}    // namespace host
