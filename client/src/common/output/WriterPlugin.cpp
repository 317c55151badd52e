#include "output/WriterPlugin.h"

#include "output/TableMessage.h"
#include "runtime/Log.h"
#include "values/EntityHandle.h"

#include <algorithm>

namespace {

std::string nameOf(const pwr::DataHandle* handle)
{
    return handle != nullptr ? handle->getName() : std::string();
}

// The columns of a flattened table in their order: the shared handles, then for each entity each handle. The entity is
// null for a shared handle and in a table without entities.
template <typename Visit>
void forEachColumn(const pwr::TableMessage& table, Visit visit)
{
    for (auto handle = table.sharedHandleBegin(); handle != table.sharedHandleEnd(); ++handle)
        visit(nullptr, *handle);
    const auto visitHandles = [&](const pwr::EntityHandle* entity) {
        std::for_each(table.handleBegin(), table.handleEnd(), [&](const auto* handle) { visit(entity, handle); });
    };
    if (table.getEntityCount() == 0) return visitHandles(nullptr);
    std::for_each(table.entityBegin(), table.entityEnd(), visitHandles);
}

}    // namespace

WriterPlugin::WriterPlugin(const std::string& name) : Plugin(name) {}

WriterPlugin::~WriterPlugin() = default;

void WriterPlugin::addCapability(pwr::PluginCapability* capability)
{
    if (hasCapabilities_i()) {
        QV_LOG_WARNING("WARNING: Illegal attempt to register a second capabliity for a writer plugin...ignored\n");
        return;
    }
    Plugin::addCapability(capability);
}

bool WriterPlugin::flushContinuousResults(const pwr::SystemMetadata&)
{
    return false;
}

int WriterPlugin::writeMessage(const pwr::MetricContainerInfoMessage&)
{
    return 0;
}

int WriterPlugin::writeMessage(const pwr::Metric&)
{
    return 0;
}

int WriterPlugin::writeMessage(const pwr::IdMessage&)
{
    return 0;
}

int WriterPlugin::writeMessage(const pwr::SystemMessage&)
{
    return 0;
}

int WriterPlugin::writeMessage(const pwr::TextMessage&)
{
    return 0;
}

int WriterPlugin::writeMessage(const pwr::TableMessage&)
{
    return 0;
}

void WriterPlugin::getColumnTitles(const pwr::TableMessage& table, std::deque<std::string>& out) const
{
    forEachColumn(table, [&](const pwr::EntityHandle* entity, const pwr::DataHandle* handle) {
        out.push_back(getFieldNameFromHandle(table, entity, handle));
    });
}

void WriterPlugin::getRowValues(const pwr::TableMessage& table, std::deque<std::string>& out) const
{
    forEachColumn(table, [&](const pwr::EntityHandle* entity, const pwr::DataHandle* handle) {
        out.push_back(getFieldValueFromHandle(table, entity, handle));
    });
}

std::string WriterPlugin::getFieldNameFromHandle(const pwr::TableMessage& table, const pwr::EntityHandle* entity,
                                                 const pwr::DataHandle* handle) const
{
    // A single column for each entity needs no other word.
    if (table.getHandleCount() == 1 && entity != nullptr) return entity->getName();
    return nameOf(handle);
}

std::string WriterPlugin::getFieldValueFromHandle(const pwr::TableMessage& table, const pwr::EntityHandle* entity,
                                                  const pwr::DataHandle* handle) const
{
    std::string cell = "Invalid";
    bool valid = false;
    if (entity != nullptr && table.getFieldAsString(entity, handle, cell, valid) == 0) {
        return valid ? cell : std::string();
    }
    if (handle == nullptr) return cell;

    // The first row serves a table whose field is not per-entity.
    const pwr::Data* value = nullptr;
    if (table.getFieldValue(handle, value, valid) != 0) return cell;
    if (!valid) return {};
    std::string text;
    return value->toFormattedString(text) == 0 ? text : cell;
}
