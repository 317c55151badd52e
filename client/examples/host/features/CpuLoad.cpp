#include "features/CpuLoad.h"

#include "machine/SystemTree.h"

#include "config/pw_utils.h"
#include "values/Description.h"
#include "values/EntityHandle.h"
#include "values/Quantity.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace host {

namespace {

constexpr auto LOAD_QUANTITY = static_cast<pwr::QuantityType>(8);    // the first number that is free for hosts

FeatureCapability* makeCapability()
{
    auto* capability = new FeatureCapability("cpu-load", "busy percent of each logical processor", "CPU-LOAD", 1);
    capability->require(new SourceRequirement("CPU-LOAD", "processor times"));
    return capability;
}

}    // namespace

CpuLoad::CpuLoad() : FeaturePlugin("quorvane-host-cpu-load", makeCapability()) {}

unsigned long long CpuLoad::wholePercent(double busy, double total)
{
    return static_cast<unsigned long long>(std::lround(std::clamp(100.0 * busy / total, 0.0, 100.0)));
}

void CpuLoad::takeBaseline_i(const Source&, const Items& items, unsigned long long tsc)
{
    learnColumns_i();
    for (const RecordItem& row : items)
        takeRow_i(row, tsc);
}

void CpuLoad::learnColumns_i()
{
    std::uint64_t count = 0;
    const bool isTold = SystemTree::parseNumber(constant_i("COLUMNS_COUNT", ""), count);
    m_columns = isTold ? static_cast<std::size_t>(std::min<std::uint64_t>(count, m_isIdle.size())) : m_isIdle.size();
    m_isIdle.fill(false);
    const pwr::Tokenizer idleColumns(constant_i("COLUMNS_IDLE", ""), ", ");
    for (const std::string& text : idleColumns.get_all_tokens()) {
        std::uint64_t column = 0;
        if (SystemTree::parseNumber(text, column) && column < m_isIdle.size()) m_isIdle.at(column) = true;
    }
}

std::unique_ptr<pwr::Metric> CpuLoad::makeMetric_i(const pwr::SystemMetadata& system)
{
    const pwr::Quantity* load = pwr::Quantity::create(LOAD_QUANTITY, "Load", "%", nullptr, 1.0);
    auto metric = std::make_unique<pwr::Metric>("CPU load", pwr::Metric::MetricType::SampledValue, "LOAD",
                                                getSwitchTag(), system, load);
    metric->setEntityGroupInfo(pwr::FieldDescription("Processor", ""));
    metric->setValueGroupInfo(pwr::FieldDescription("Load (%)", ""));
    return metric;
}

void CpuLoad::takeRound_i(const Source&, const Items& items, unsigned long long tsc)
{
    for (const RecordItem& row : items)
        takeRow_i(row, tsc);
}

void CpuLoad::takeRow_i(const RecordItem& row, unsigned long long tsc)
{
    const int processor = row.indices.count > 0 ? static_cast<int>(row.indices.values[0]) : ALL_PROCESSORS;
    // A processor that comes on line during the run has its baseline here.
    const auto [entry, isNew] = m_last.try_emplace(processor);
    Last& last = entry->second;
    if (!isNew && tsc <= last.tsc) return;    // a second row of the same name
    if (isNew || !last.hasBaseline) {
        last = {row.numbers, tsc, isNew ? 0 : tsc, true};
        return;
    }
    sample_i(processor, last, row.numbers, tsc);
    last.times = row.numbers;
    last.tsc = tsc;
}

void CpuLoad::sample_i(int processor, Last& last, const Times& now, unsigned long long tsc)
{
    double total = 0;
    double idle = 0;
    for (std::size_t i = 0; i < m_columns; ++i) {
        // Idle and waiting times may step back, and all begin anew when a processor was off line.
        const double passed = now.at(i) > last.times.at(i) ? static_cast<double>(now.at(i) - last.times.at(i)) : 0.0;
        total += passed;
        if (m_isIdle.at(i)) idle += passed;
    }
    const pwr::EntityHandle* entity = processor == ALL_PROCESSORS ? pwr::EntityHandle::getCPUEntityHandle(nullptr)
                                                                  : pwr::EntityHandle::getCPUThreadHandle(processor);
    if (total <= 0 || entity == nullptr) return;
    const unsigned long long duration = last.resetTsc != 0 ? tsc - last.resetTsc : 0;
    handIn_i(tsc, entity, nullptr, wholePercent(total - idle, total), duration);
    last.resetTsc = 0;
}

void CpuLoad::forgetBaselines_i(unsigned long long)
{
    for (auto& [processor, last] : m_last)
        last.hasBaseline = false;
}

}    // namespace host
