#pragma once

#include "config/OutputConfig.h"
#include "metrics/Metric.h"
#include "support/TestSession.h"
#include "values/Description.h"
#include "values/EntityHandle.h"
#include "values/Handles.h"
#include "values/Quantity.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace test {

using Row = std::vector<std::string>;

// The tables of residencies, sampled or traced.
inline const std::string PERCENTAGE = "M Summary: Residency (Percentage)";
inline const std::string TIME = "M Summary: Residency (Time)";
inline const std::string COMBINED = "M Summary: Residency (Percentage and Time)";

// A session with a clock of 1000 MHz (1000 ticks are a microsecond) that started at tick 1000, and short ways to feed a
// metric and to read its tables.
class MetricFixture : public testing::Test {
protected:
    using Type = pwr::Metric::MetricType;

    ~MetricFixture() override { pwr::WriterInterfaceConfigFileParser::instance()->destroy(); }

    // Loads an output configuration for the metrics made afterwards.
    void configure(const std::string& statements)
    {
        std::ofstream("output.conf") << statements;
        ASSERT_EQ(0, pwr::WriterInterfaceConfigFileParser::instance()->parse({"output.conf"}, system));
    }

    // Statements for configure().
    static std::string transposed(const std::vector<std::string>& tableTypes)
    {
        std::string statements;
        for (const std::string& type : tableTypes)
            statements += "ALL_FEAT_BOX_" + type + "_TRANSPOSE=YES\n";
        return statements;
    }

    std::unique_ptr<pwr::Metric> makeMetric(Type type, const pwr::Quantity* quantity = nullptr)
    {
        if (type == Type::SampledResidency) quantity = pwr::Quantity::time();
        return std::make_unique<pwr::Metric>("M", type, "BOX", "FEAT", system, quantity);
    }

    static const pwr::EntityHandle* entity(const std::string& name, const pwr::EntityHandle* parent = nullptr)
    {
        return pwr::EntityHandle::create(name, parent);
    }

    static const pwr::DataDescriptor* descriptor(const std::string& name)
    {
        return pwr::DataDescriptor::create(pwr::DataDescriptorBuilder(name, ""));
    }

    template <typename T>
    static int sample(pwr::Metric& metric, unsigned long long timestamp, const pwr::EntityHandle* about,
                      const pwr::DataDescriptor* what, const T& value, unsigned long long duration = 0)
    {
        pwr::DataElement element(about, what);
        element.setValue(value);
        return metric.setData(timestamp, element, duration);
    }

    // The durations of all elements that the writer got, point by point.
    std::vector<std::vector<unsigned long long>> durations() const
    {
        std::vector<std::vector<unsigned long long>> all;
        for (const RecordedPoint& point : session.writer.points) {
            all.emplace_back();
            for (const RecordedElement& element : point.elements)
                all.back().push_back(element.duration);
        }
        return all;
    }

    Row columns(const std::string& title) const
    {
        const auto pushes = session.writer.tablesNamed(title);
        return pushes.empty() ? Row{"no such table"} : pushes.front().columns;
    }

    // The rows of a table, without the header push in front of them.
    std::vector<Row> rows(const std::string& title) const
    {
        const auto pushes = session.writer.tablesNamed(title);
        if (pushes.empty()) return {{"no such table"}};
        std::vector<Row> cells;
        for (const RecordedTable& push : pushes)
            cells.push_back(push.cells);
        cells.erase(cells.begin());
        return cells;
    }

    TestSession session;
    pwr::SystemMetadata system = makeSystem(1000, 1000);
};

}    // namespace test
