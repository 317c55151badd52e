#pragma once

#include "output/TableTypes.h"
#include "output/WriterPlugin.h"
#include "values/Data.h"

#include <deque>
#include <string>
#include <vector>

namespace test {

struct RecordedTable {
    unsigned int messageId = 0;
    unsigned int metricId = 0;
    bool isChildOfMetric = false;
    std::string title;
    pwr::TableMessageType type{};
    std::vector<std::string> columns;
    std::vector<std::string> cells;
    std::vector<pwr::Data> values;    // of the cells; type NONE where a cell is not valid
    std::vector<std::string> preNotes;
    std::vector<std::string> postNotes;
};

struct RecordedElement {
    std::string entity;        // qualified names
    std::string descriptor;    // empty: none
    std::string scopraDescriptor;
    pwr::Data value;
    unsigned long long duration = 0;
};

struct RecordedPoint {
    std::string metric;
    unsigned long long timestamp = 0;
    std::vector<RecordedElement> elements;
};

struct RecordedInfo {
    unsigned int metricId = 0;
    std::string header;
    std::string tag;
    bool hasNotes = false;
    bool hasStaticTable = false;
    pwr::TimelineTableType timeline{};
};

struct RecordedText {
    pwr::MessageType type{};
    unsigned int messageId = 0;
    std::string text;
};

// Keeps a copy of every message it was given.
class RecordingWriter : public WriterPlugin {
public:
    explicit RecordingWriter(const std::string& name = "recorder") : WriterPlugin(name) {}
    ~RecordingWriter() override = default;

    int openOutput() override;
    int closeOutput() override;

    // All pushes of the tables with this title, in order: the header and then row after row.
    std::vector<RecordedTable> tablesNamed(const std::string& title) const;
    // The different titles, in order of their first push.
    std::vector<std::string> tableTitles() const;
    void clear();

    int result = 0;    // what the overloads answer
    int opened = 0;
    int closed = 0;
    std::vector<RecordedTable> tables;
    std::vector<RecordedPoint> points;
    std::vector<RecordedInfo> infos;
    std::vector<RecordedText> texts;
    std::vector<std::vector<unsigned long long>> ids;    // per message, the numbers it announced
    std::vector<const pwr::SystemMetadata*> systems;

private:
    int writeMessage(const pwr::MetricContainerInfoMessage& message) override;
    int writeMessage(const pwr::Metric& metric) override;
    int writeMessage(const pwr::IdMessage& message) override;
    int writeMessage(const pwr::SystemMessage& message) override;
    int writeMessage(const pwr::TextMessage& message) override;
    int writeMessage(const pwr::TableMessage& message) override;
};

}    // namespace test
