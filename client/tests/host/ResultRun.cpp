#include "ResultRun.h"

#include "TreeCopy.h"

#include "metrics/Metric.h"
#include "output/TableMessage.h"
#include "output/TextNotes.h"
#include "output/WriterStream.h"
#include "values/Description.h"
#include "values/EntityHandle.h"
#include "values/Handles.h"
#include "values/Quantity.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <limits>

namespace test {

namespace {

using pwr::DataElement;
using pwr::Metric;
using Type = pwr::Metric::MetricType;

constexpr unsigned long long INTERVAL = 10'000'000;

std::vector<const pwr::DataDescriptor*> makeStates()
{
    std::vector<const pwr::DataDescriptor*> states;
    for (const char* name : {"Active", "C1", "C6", "C10"})
        states.push_back(pwr::DataDescriptor::create(pwr::DataDescriptorBuilder(name, "")));
    return states;
}

// Between 0 and 1, smooth, different for each entity.
double wave(int point, int entity, double speed)
{
    return 0.5 + 0.3 * std::sin(point * speed + entity) + 0.2 * std::sin(point * speed * 7.3 + entity * 2.0);
}

template <typename Sample>
void feed(Metric& metric, int points, const std::vector<const pwr::EntityHandle*>& entities, const Sample& sample)
{
    for (int point = 1; point <= points; ++point) {
        const unsigned long long now = ResultRun::START + static_cast<unsigned long long>(point) * INTERVAL;
        for (std::size_t i = 0; i < entities.size(); ++i)
            sample(now, point, static_cast<int>(i), entities[i]);
    }
    metric.finalize();
}

}    // namespace

ResultRun::ResultRun(const std::string& prefix, const Names& formats) : m_prefix(prefix)
{
    m_record.qvaClockFreqMHz = 1000;
    m_record.startTSC = START;
    m_record.startTimeval = 1'795'400'378'000'000'000;
    m_record.stopTimeval = m_record.startTimeval + 3'000'000'000;
    m_record.hostName = "bench-7";
    m_record.platformName = "Evaluation board";
    m_record.osName = "Linux";
    m_record.osVersion = "6.1.0";
    m_results.add(formats, prefix);
    EXPECT_TRUE(m_results.open()) << m_results.getError();
    for (const auto& writer : m_results.getWriters())
        m_stream.addWriter(*writer);
    EXPECT_TRUE(m_stream.open(m_session.getEnvironment(), m_record));
}

ResultRun::~ResultRun()
{
    m_stream.close();
    for (const std::string& path : m_results.getFiles())
        std::filesystem::remove(path);
}

void ResultRun::push(pwr::WriterMessage& message) const
{
    static_cast<WriterStream*>(g_pluginEnvironment->getWriterStream())->pushMessage(message);
}

std::string ResultRun::file(const std::string& ending) const
{
    return contentOf(m_prefix + ending);
}

void feedAllTypes(ResultRun& run, int points, int entityCount)
{
    std::vector<const pwr::EntityHandle*> cores;
    const pwr::EntityHandle* package = pwr::EntityHandle::create("Package_0", nullptr);
    for (int i = 0; i < entityCount; ++i)
        cores.push_back(pwr::EntityHandle::create("Core_" + std::to_string(i), package));
    const auto states = makeStates();
    const auto take = [](Metric& metric, unsigned long long now, DataElement& element, const auto& value) {
        element.setValue(value);
        metric.setData(now, element, 0);
    };

    Metric temperature("Core temperature", Type::SampledValue, "TEMP", "TEMP", run.record(),
                       pwr::Quantity::temperature());
    temperature.setEntityGroupInfo(pwr::FieldDescription("Core", ""));
    temperature.setPreMetricTextInfo("Read from the sensor of each core.");
    feed(temperature, points, cores, [&](auto now, int point, int i, const pwr::EntityHandle* core) {
        DataElement element(core, nullptr);
        take(temperature, now, element, std::floor(2 * (38 + 0.5 * i + 30 * wave(point, i, 0.05))) / 2);
    });

    Metric states1("Core states", Type::SampledResidency, "IDLE", "IDLE", run.record(), pwr::Quantity::time());
    states1.setEntityGroupInfo(pwr::FieldDescription("Core", ""));
    states1.setDescriptorGroupInfo(pwr::FieldDescription("State", ""));
    feed(states1, points, cores, [&](auto now, int point, int i, const pwr::EntityHandle* core) {
        double left = 1;
        for (std::size_t state = 0; state < states.size(); ++state) {
            const double part =
                state + 1 == states.size() ? left : left * wave(point, i + static_cast<int>(state), 0.03);
            left -= part;
            DataElement element(core, states[state]);
            take(states1, now, element, static_cast<unsigned long long>(part * static_cast<double>(INTERVAL)));
        }
    });

    Metric energy("Package energy", Type::SampledDelta, "ENERGY", "ENERGY", run.record(), pwr::Quantity::energy());
    energy.setEntityGroupInfo(pwr::FieldDescription("Domain", ""));
    feed(energy, points, {package}, [&](auto now, int point, int i, const pwr::EntityHandle* domain) {
        DataElement element(domain, nullptr);
        take(energy, now, element, 40 + 120 * wave(point, i, 0.04));
    });

    Metric link("Link state", Type::TracedValueTransition, "LINK", "LINK", run.record(), nullptr);
    link.setEntityGroupInfo(pwr::FieldDescription("Core", ""));
    feed(link, points, {cores.front()}, [&](auto now, int point, int i, const pwr::EntityHandle* core) {
        DataElement element(core, nullptr);
        take(link, now, element, wave(point, i, 0.2) > 0.5 ? "L0" : point % 3 == 0 ? "L1" : "L2");
    });

    Metric wakeups("Wake-ups", Type::TracedEvent, "WAKE", "WAKE", run.record(), nullptr);
    wakeups.setEntityGroupInfo(pwr::FieldDescription("Core", ""));
    wakeups.setValueGroupInfo(pwr::FieldDescription("Cause", ""));
    feed(wakeups, points, {cores.front()}, [&](auto now, int point, int i, const pwr::EntityHandle* core) {
        DataElement element(core, nullptr);
        const int cause = static_cast<int>(14 * wave(point, i, 0.9) * wave(point, 3, 0.4));
        take(wakeups, now, element, "irq/" + std::to_string(32 + cause) + "-device");
    });
}

void feedHostile(ResultRun& run, const std::string& text)
{
    const pwr::EntityHandle* entity = pwr::EntityHandle::create(text, nullptr);
    const pwr::DataDescriptor* descriptor = pwr::DataDescriptor::create(pwr::DataDescriptorBuilder(text, text));
    const pwr::Quantity* quantity =
        pwr::Quantity::create(pwr::QuantityType{20}, text.substr(0, 30), text.substr(0, 30), nullptr, 1);
    const auto feed = [&](Type type, const auto& value, const pwr::Quantity* unit) {
        Metric metric(text, type, text, text, run.record(), unit);
        metric.setPreMetricTextInfo(text);
        metric.setEntityGroupInfo(pwr::FieldDescription(text, ""));
        metric.setValueGroupInfo(pwr::FieldDescription(text, ""));
        DataElement element(entity, descriptor);
        element.setValue(value);
        for (unsigned long long at = 1; at <= 3; ++at)
            metric.setData(ResultRun::START + at * 1000, element, 0);
        metric.finalize();
    };
    feed(Type::SampledValue, text, quantity);
    feed(Type::SampledValue, std::numeric_limits<double>::quiet_NaN(), quantity);
    feed(Type::SampledDelta, std::numeric_limits<double>::infinity(), quantity);
    feed(Type::SampledResidency, 300ULL, pwr::Quantity::time());
    feed(Type::TracedValueTransition, text, nullptr);
    feed(Type::TracedEvent, text, nullptr);

    pwr::TextNotes notes;
    notes.addPreTableNote(text);
    notes.addPostTableNote(text);
    pwr::TableMessage table(text, nullptr);
    table.setTextNotes(&notes);
    table.addField(text, pwr::DataType::STRING, true);
    table.addField(text, pwr::DataType::REAL, false);
    table.addEntity(entity);
    table.createTable();
    run.push(table);
    table.setField(0, text);
    table.setField(entity, 1, -std::numeric_limits<double>::infinity());
    run.push(table);
}

const std::vector<std::string>& hostileTexts()
{
    static const std::vector<std::string> s_texts = {
        "say \"hi\", 'you'",
        "<script>document.title='owned'</script>",
        "</script></title></style><img src=x onerror=alert(1)>",
        "-->]]><!--",
        "&lt;&amp;",
        "=HYPERLINK(\"http://example.invalid\",\"x\")",
        "=1+1",
        "+1+1",
        "-2+3",
        "@SUM(A1)",
        "\tindented",
        "two\nlines",
        "two\r\nlines\r",
        "a,b;c\td",
        "back\\slash\\",
        "{\"a\": [1}",
        "${HOME} `id` $(id) ; rm | & > <",
        "%s%n %00",
        std::string("nul\0inside", 10),
        "bell\x07 escape\x1B[31m delete\x7F",
        "C1 \xC2\x9B"
        "31m",
        "bad utf-8 \xFF\xFE \xC3 \xC0\xAF \xED\xA0\x80 \xF4\x90\x80\x80 end\xE2\x82",
        "Zust\xC3\xA4nd \xE2\x82\xAC \xF0\x9F\x94\xA5",
        "../../etc/passwd",
        "C:\\con",
        "NaN",
        "-inf",
        "1e999",
        " ",
        "",
        std::string(5000, 'x'),
        "long words " + std::string(300, 'w') + " and " + std::string(300, '<'),
    };
    return s_texts;
}

std::string findProgram(const std::string& name)
{
    const char* path = std::getenv("PATH");
    std::istringstream folders(path != nullptr ? path : "");
    std::error_code ignored;
    for (std::string folder; std::getline(folders, folder, ':');) {
        if (std::filesystem::exists(folder + "/" + name, ignored)) return name;
    }
    return {};
}

int runCommand(const std::string& command, std::string& output)
{
    const std::string path = freshPath("output");
    const int status = std::system((command + " > " + path + " 2>&1").c_str());
    output = contentOf(path);
    std::filesystem::remove(path);
    return status;
}

}    // namespace test
