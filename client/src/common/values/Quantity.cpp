#include "values/Quantity.h"

#include "runtime/Log.h"
#include "values/IdManager.h"

#include <memory>
#include <utility>

namespace pwr {

const Quantity* Quantity::s_frequency_i = nullptr;
const Quantity* Quantity::s_time_i = nullptr;
const Quantity* Quantity::s_bandwidth_i = nullptr;
const Quantity* Quantity::s_data_i = nullptr;
const Quantity* Quantity::s_power_i = nullptr;
const Quantity* Quantity::s_energy_i = nullptr;
const Quantity* Quantity::s_throughput_i = nullptr;
const Quantity* Quantity::s_operations_i = nullptr;
const Quantity* Quantity::s_temperature_i = nullptr;
const Quantity* Quantity::s_voltage_i = nullptr;
const Quantity* Quantity::s_current_i = nullptr;
const Quantity* Quantity::s_dummy_i = nullptr;

namespace {

// Lower types belong to the default quantities alone.
constexpr std::uint32_t FIRST_CUSTOM_TYPE = 8;

}    // namespace

struct Quantity::Default {
    const Quantity** slot;
    QuantityType type;
    const char* name;
    const char* units;
    const Quantity* const* rate;    // null: no rate form
    double multiplier;
};

const std::vector<Quantity::Default>& Quantity::defaults_i()
{
    // In the order of creation: a rate comes before what turns into it.
    static const std::vector<Default> s_defaults = {
        {&s_frequency_i, QuantityType::FREQUENCY, "Frequency", "MHz", nullptr, 1.0},
        {&s_time_i, QuantityType::TIME, "Time", "ticks", &s_frequency_i, 1e-6},
        {&s_bandwidth_i, QuantityType::BANDWIDTH, "Bandwidth", "MB/s", nullptr, 1.0},
        {&s_data_i, QuantityType::DATA, "Data", "bytes", &s_bandwidth_i, 1e-6},
        {&s_power_i, QuantityType::POWER, "Power", "mW", nullptr, 1.0},
        {&s_energy_i, QuantityType::ENERGY, "Energy", "mJ", &s_power_i, 1.0},
        {&s_throughput_i, QuantityType::THROUGHPUT, "Throughput", "Ops/sec", nullptr, 1.0},
        {&s_operations_i, QuantityType::OPERATIONS, "Operations", "OpsCount", &s_throughput_i, 1.0},
        {&s_temperature_i, QuantityType::TEMPERATURE, "Temperature", "oC", nullptr, 1.0},
        {&s_voltage_i, QuantityType::VOLTAGE, "Voltage", "mV", nullptr, 1.0},
        {&s_current_i, QuantityType::CURRENT, "Current", "mA", nullptr, 1.0},
        {&s_dummy_i, QuantityType::DUMMY, "ERROR", "ERROR", nullptr, 1.0},
    };
    return s_defaults;
}

void Quantity::initDefaults_i()
{
    for (const Default& row : defaults_i()) {
        std::unique_ptr<Quantity> quantity(new Quantity);
        quantity->init_i(row.type, row.name, row.units, row.rate != nullptr ? *row.rate : nullptr, row.multiplier);
        if (IdManager::instanceIfAny() == nullptr) {
            QV_LOG_PLAIN("Quorvane internal state wasn't initialized correctly, this can cause issues with result "
                         "correctness!");
        }
        IdManager* registry = IdManager::instance();
        if (registry == nullptr) return;
        *row.slot = registry->add(std::move(quantity));
    }
}

void Quantity::forgetDefaults_i()
{
    for (const Default& row : defaults_i())
        *row.slot = nullptr;
}

void Quantity::init_i(QuantityType type, const std::string& name, const std::string& units, const Quantity* rate,
                      double multiplier)
{
    m_name = name;
    m_units = units;
    m_type = type;
    m_rateMultiplier = multiplier;
    m_rate = rate;
}

const Quantity* Quantity::create(QuantityType type, const std::string& name, const std::string& units,
                                 const Quantity* rate, double multiplier)
{
    IdManager* registry = IdManager::instance();
    if (registry == nullptr) return nullptr;
    if (static_cast<std::uint32_t>(type) < FIRST_CUSTOM_TYPE) {
        QV_LOG_WARNING("WARNING: Can't create a custom quantity of specified type\n");
        return dummy();
    }
    std::unique_ptr<Quantity> quantity(new Quantity);
    quantity->init_i(type, name, units, rate, multiplier);
    return registry->add(std::move(quantity));
}

const Quantity* Quantity::frequency()
{
    return s_frequency_i;
}

const Quantity* Quantity::time()
{
    return s_time_i;
}

const Quantity* Quantity::bandwidth()
{
    return s_bandwidth_i;
}

const Quantity* Quantity::data()
{
    return s_data_i;
}

const Quantity* Quantity::power()
{
    return s_power_i;
}

const Quantity* Quantity::energy()
{
    return s_energy_i;
}

const Quantity* Quantity::throughput()
{
    return s_throughput_i;
}

const Quantity* Quantity::operations()
{
    return s_operations_i;
}

const Quantity* Quantity::temperature()
{
    return s_temperature_i;
}

const Quantity* Quantity::voltage()
{
    return s_voltage_i;
}

const Quantity* Quantity::current()
{
    return s_current_i;
}

const Quantity* Quantity::dummy()
{
    return s_dummy_i;
}

UniqueIdType Quantity::getIdType() const
{
    return UniqueIdType::QUANTITY;
}

const std::string& Quantity::toQuantityString() const
{
    return m_name;
}

const std::string& Quantity::toUnitsString() const
{
    return m_units;
}

QuantityType Quantity::toQuantity() const
{
    return m_type;
}

void Quantity::toTitleString(std::string& out) const
{
    out = m_name;
    if (!m_units.empty()) out += " (" + m_units + ")";
}

int Quantity::getRateConversion(const Quantity*& rate, double& multiplier) const
{
    rate = nullptr;
    multiplier = 1.0;
    if (m_rate == nullptr) return 1;
    rate = m_rate;
    multiplier = m_rateMultiplier;
    return 0;
}

}    // namespace pwr
