#pragma once

#include "runtime/Export.h"
#include "values/UniqueId.h"

#include <cstdint>
#include <string>
#include <vector>

namespace pwr {

enum class QuantityType : std::uint32_t {
    DUMMY = 0,
    TIME = 1,
    FREQUENCY = 2,
    DATA = 3,
    BANDWIDTH = 4,
    POWER = 5,
    ENERGY = 6,
    TEMPERATURE = 7,
    // 8 and 9 have no default quantity; custom quantities start here
    VOLTAGE = 10,
    CURRENT = 11,
    OPERATIONS = 12,
    THROUGHPUT = 13,
};

// A physical or counted magnitude with its unit text and, for some, the rate magnitude it turns into when divided by
// time. The registry owns every quantity from UniqueId::initialize() to destroy(); nobody else deletes one. One thread
// at a time.
//
//   std::string title;
//   Quantity::power()->toTitleString(title);    // "Power (mW)"
class QUORVANE_API Quantity : public UniqueId {
public:
    Quantity(const Quantity&) = default;
    Quantity& operator=(const Quantity&) = default;

    // The default quantities; only between UniqueId::initialize() and destroy().
    static const Quantity* frequency();
    static const Quantity* time();
    static const Quantity* bandwidth();
    static const Quantity* data();
    static const Quantity* power();
    static const Quantity* energy();
    static const Quantity* throughput();
    static const Quantity* operations();
    static const Quantity* temperature();
    static const Quantity* voltage();
    static const Quantity* current();

    // Makes a quantity of one's own, of a type from 8 up (types with a default quantity among them). A lower type is
    // refused with a warning and gives the quantity that reads "ERROR". `rate` may be null and is not owned. Null, with
    // a warning, without a registry.
    static const Quantity* create(QuantityType type, const std::string& name, const std::string& units,
                                  const Quantity* rate, double multiplier);

    UniqueIdType getIdType() const override;

    const std::string& toQuantityString() const;    // "Power"
    const std::string& toUnitsString() const;       // "mW"
    QuantityType toQuantity() const;
    void toTitleString(std::string& out) const;    // "Power (mW)"; the bare name without units

    // The magnitude in which a total per second is told (bytes/s * 1e-6 = MB/s). Returns 0; or 1, with `rate` null and
    // `multiplier` 1.0, when there is none.
    int getRateConversion(const Quantity*& rate, double& multiplier) const;

private:
    friend class UniqueId;

    struct Default;    // one row of the table of default quantities

    Quantity() = default;
    void init_i(QuantityType type, const std::string& name, const std::string& units, const Quantity* rate,
                double multiplier);
    static const std::vector<Default>& defaults_i();
    static void initDefaults_i();
    static void forgetDefaults_i();    // the accessors give null until the next initDefaults_i()
    static const Quantity* dummy();

    static const Quantity* s_frequency_i;
    static const Quantity* s_time_i;
    static const Quantity* s_bandwidth_i;
    static const Quantity* s_data_i;
    static const Quantity* s_power_i;
    static const Quantity* s_energy_i;
    static const Quantity* s_throughput_i;
    static const Quantity* s_operations_i;
    static const Quantity* s_temperature_i;
    static const Quantity* s_voltage_i;
    static const Quantity* s_current_i;
    static const Quantity* s_dummy_i;

    std::string m_name;
    std::string m_units;
    QuantityType m_type = QuantityType::DUMMY;
    double m_rateMultiplier = 1.0;
    const Quantity* m_rate = nullptr;    // not owned; null: no rate form
};

}    // namespace pwr
