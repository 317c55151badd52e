#include "writers/PrometheusWriter.h"

#include "writers/OutFile.h"
#include "writers/PrometheusNames.h"
#include "writers/Text.h"

#include "metrics/Metric.h"
#include "record/SystemMetadata.h"
#include "values/Data.h"
#include "values/EntityHandle.h"
#include "values/Handles.h"

#include <cmath>
#include <filesystem>
#include <system_error>

namespace host {

namespace {

void appendLabel(std::string& out, const char* name, const std::string& value)
{
    if (!out.empty()) out += ',';
    out += name;
    out += "=\"";
    appendPrometheusLabel(out, value);
    out += '"';
}

void appendValue(std::string& out, double value)
{
    if (std::isnan(value)) {
        out += "NaN";
    } else if (std::isinf(value)) {
        out += value > 0 ? "+Inf" : "-Inf";
    } else {
        appendNumber(out, value);
    }
}

void appendHead(std::string& out, const std::string& name, const std::string& help, bool isCounter)
{
    out += "# HELP " + name + " ";
    appendPrometheusHelp(out, help);
    out += "\n# TYPE " + name + (isCounter ? " counter\n" : " gauge\n");
}

void appendSample(std::string& out, const std::string& name, const std::string& labels, double value)
{
    out += name;
    if (!labels.empty()) out += "{" + labels + "}";
    out += ' ';
    appendValue(out, value);
    out += '\n';
}

std::string labelsOf(const pwr::DataElement& element, pwr::Metric::MetricType type)
{
    std::string labels;
    appendLabel(labels, "entity", qualifiedNameOf(element.getEntity()));
    const bool isState = type == pwr::Metric::MetricType::SampledResidency;
    if (element.getDescriptor() != nullptr)
        appendLabel(labels, isState ? "state" : "descriptor", element.getDescriptor()->getName());
    return labels;
}

}    // namespace

PrometheusWriter::PrometheusWriter(const std::string& prefix, std::chrono::milliseconds interval)
    : ResultWriter("quorvane-host-prometheus-writer", "prom", "the latest values for a monitoring engine", ".prom"),
      m_path(prefix + ".prom"), m_interval(interval)
{
}

int PrometheusWriter::openOutput()
{
    OutFile probe;
    if (!openFile_i(probe, m_path)) return 1;
    probe.close();    // Windows replaces no file that is open
    if (replaceFile_i()) return 0;
    fail_i(m_lastError);
    return 1;
}

int PrometheusWriter::closeOutput()
{
    finishTables_i();
    if (!getFiles().empty() && !replaceFile_i()) fail_i(m_lastError);
    return getError().empty() ? 0 : 1;
}

bool PrometheusWriter::flushContinuousResults(const pwr::SystemMetadata&)
{
    const auto now = std::chrono::steady_clock::now();
    if (now < m_next) return false;
    m_next = now + m_interval;
    return replaceFile_i();
}

// The names of what is told of the run are taken from now on.
int PrometheusWriter::writeMessage(const pwr::SystemMessage& message)
{
    ResultWriter::writeMessage(message);
    describeRun_i();
    return 0;
}

int PrometheusWriter::writeMessage(const pwr::Metric& metric)
{
    Source& source = sourceOf_i(metric);
    for (const pwr::DataElement* element : metric.getData().elements)
        take_i(source, *element);
    return 0;
}

PrometheusWriter::Source& PrometheusWriter::sourceOf_i(const pwr::Metric& metric)
{
    const auto [entry, isNew] = m_sources.try_emplace(metric.getId());
    Source& source = entry->second;
    if (!isNew) return source;
    source.type = metric.getMetricType();
    source.name = metric.getName();
    source.stem = familyStem(metric.getName());
    const ValueInfo info = valueInfoOf(metric);
    const BaseUnit unit = baseUnitOf(info.unit);
    source.unit = unit.name;
    source.factor = unit.factor;
    if (info.unit == "ticks" || info.isResidency) {
        source.unit = "seconds";
        source.factor = static_cast<double>(time_i().toNs(1'000'000'000)) * 1e-18;    // of a tick
    }
    return source;
}

// Two metrics whose names differ only in what such a name can't tell get a number each.
PrometheusWriter::Family& PrometheusWriter::familyOf_i(Family*& family, const Source& source, const std::string& end,
                                                       bool isCounter, const char* what)
{
    if (family != nullptr) return *family;
    const auto nameOfStem = [&](const std::string& stem) {
        if (end == "info") return stem + "_info";
        return isCounter ? counterName(stem, end) : gaugeName(stem, end);
    };
    const std::string stem =
        uniqueText(source.stem, "_", [&](const std::string& text) { return m_families.count(nameOfStem(text)) != 0; });
    family = &m_families[nameOfStem(stem)];
    family->help = source.name + ": " + what;
    family->isCounter = isCounter;
    return *family;
}

void PrometheusWriter::take_i(Source& source, const pwr::DataElement& element)
{
    using Type = pwr::Metric::MetricType;
    const std::string& labels = source.labels.get(element, [&] { return labelsOf(element, source.type); });
    const Reading reading = readValue(element.getValue());
    switch (source.type) {
    case Type::SampledValue:
        takeValue_i(source, labels, reading);
        break;
    case Type::TracedValueTransition:
        takeValue_i(source, labels, reading);
        familyOf_i(source.count, source, "transitions", true, "changes of the value.").samples[labels].value += 1;
        break;
    case Type::SampledDelta:
    case Type::SampledResidency:
        if (reading.isNumber()) takeAmount_i(source, labels, reading.real);
        break;
    case Type::TracedEvent:
        takeEvent_i(source, labels, element);
        break;
    }
}

void PrometheusWriter::takeValue_i(Source& source, const std::string& labels, const Reading& reading)
{
    if (reading.isNumber()) {
        Family& family = familyOf_i(source.numbers, source, source.unit, false, "the latest value.");
        family.samples[labels].value = reading.real * source.factor;
    } else if (reading.kind == Reading::Kind::TEXT) {
        Family& family = familyOf_i(source.texts, source, "info", false, "the latest value, as a label.");
        Sample& sample = family.samples[labels];
        sample.value = 1;
        sample.more.clear();
        appendLabel(sample.more, "value", reading.text);
        sample.more.insert(0, ",");
    }
}

void PrometheusWriter::takeAmount_i(Source& source, const std::string& labels, double amount)
{
    if (!std::isfinite(amount) || amount < 0) return;
    Family& family = familyOf_i(source.numbers, source, source.unit, true, "the sum since the start of the host.");
    family.samples[labels].value += amount * source.factor;
}

// Other values than identified objects may never come again: a label for each would grow without end.
void PrometheusWriter::takeEvent_i(Source& source, const std::string& labels, const pwr::DataElement& element)
{
    Family& family = familyOf_i(source.numbers, source, "events", true, "events since the start of the host.");
    const pwr::Data* value = element.getValue();
    const pwr::DataHandle* handle = nullptr;
    if (value == nullptr || value->getType() != pwr::DataType::HANDLE || value->toHandle(handle) != 0) {
        family.samples[labels].value += 1;
        return;
    }
    std::string named = labels;
    appendLabel(named, "event", nameOf(handle));    // processes come and go, their names come again
    family.samples[named].value += 1;
}

void PrometheusWriter::describeRun_i()
{
    const pwr::SystemMetadata* record = time_i().getRecord();
    if (record == nullptr) return;
    std::string labels;
    appendLabel(labels, "host", record->hostName);
    appendLabel(labels, "os", record->osName);
    appendLabel(labels, "platform", record->platformName);
    m_families["quorvane_host_info"] = {"The measured machine.", false, {{labels, {"", 1}}}};
    m_families["quorvane_collection_start_time_seconds"] = {
        "The start of the collection, since the epoch.",
        false,
        {{"", {"", static_cast<double>(record->startTimeval) * 1e-9}}}};
}

std::string PrometheusWriter::render_i()
{
    describeRun_i();
    std::string out;
    for (const auto& [name, family] : m_families) {
        appendHead(out, name, family.help, family.isCounter);
        for (const auto& [labels, sample] : family.samples)
            appendSample(out, name, labels + sample.more, sample.value);
    }
    return out;
}

// Engines look for names that end in ".prom": the unfinished file has another one.
bool PrometheusWriter::replaceFile_i()
{
    m_lastError.clear();
    const std::string unfinished = m_path + ".tmp";
    OutFile file;
    if (file.open(unfinished)) file.write(render_i());
    std::error_code trouble;
    if (!file.close()) {
        m_lastError = file.getError();
        std::filesystem::remove(unfinished, trouble);
        return false;
    }
    std::filesystem::rename(unfinished, m_path, trouble);
    if (!trouble) return true;
    m_lastError = m_path + " can't be replaced: " + trouble.message();
    std::filesystem::remove(unfinished, trouble);
    return false;
}

}    // namespace host
