#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>

// Records that drivers and the library share. Their layout is fixed: fields are never moved.

// The identity of a driver message: which plugin, which of its metrics, which message. Ordered field by field.
struct id_config_t {
    std::uint8_t plugin_id;
    std::uint8_t metric_id;
    std::uint8_t msg_id;

    auto operator<=>(const id_config_t&) const = default;
};

// The head of the record that a driver delivers for each sample; what follows it is the business of the collector and
// of the plugin that the ids name. Time stamps are ticks.
#pragma pack(push, 1)
struct qv_driver_msg {
    std::uint64_t tsc;
    std::uint16_t reserved;
    std::uint8_t plugin_id;
    std::uint8_t metric_id;
    std::uint8_t msg_id;
};
#pragma pack(pop)

static_assert(sizeof(qv_driver_msg) == 13);
static_assert(offsetof(qv_driver_msg, tsc) == 0);
static_assert(offsetof(qv_driver_msg, plugin_id) == 10);
static_assert(offsetof(qv_driver_msg, metric_id) == 11);
static_assert(offsetof(qv_driver_msg, msg_id) == 12);

// One PMT endpoint as the driver describes it. The reserved fields are not looked at by the library.
#pragma pack(push, 1)
struct _qv_aggregator_info {
    std::uint64_t reserved0;
    std::uint32_t guid;
    std::uint32_t reserved1;
    std::uint16_t deviceKey;
    std::uint16_t reserved2;
    std::uint16_t collectionType;
};
#pragma pack(pop)

static_assert(sizeof(_qv_aggregator_info) == 22);
static_assert(offsetof(_qv_aggregator_info, guid) == 8);
static_assert(offsetof(_qv_aggregator_info, deviceKey) == 16);
static_assert(offsetof(_qv_aggregator_info, collectionType) == 20);
