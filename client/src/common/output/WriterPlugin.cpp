#include "output/WriterPlugin.h"

#include "output/TableMessage.h"
#include "runtime/Log.h"
#include "values/EntityHandle.h"

namespace {

std::string nameOf(const pwr::DataHandle* handle)
{
    return handle != nullptr ? handle->getName() : std::string();
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
    for (auto handle = table.sharedHandleBegin(); handle != table.sharedHandleEnd(); ++handle) {
        out.push_back(nameOf(*handle));
    }
    const auto handlesBegin = table.handleBegin();
    const auto handlesEnd = table.handleEnd();
    if (table.getEntityCount() == 0) {
        for (auto handle = handlesBegin; handle != handlesEnd; ++handle)
            out.push_back(nameOf(*handle));
        return;
    }
    for (auto entity = table.entityBegin(); entity != table.entityEnd(); ++entity) {
        for (auto handle = handlesBegin; handle != handlesEnd; ++handle) {
            out.push_back(getFieldNameFromHandle(table, *entity, *handle));
        }
    }
}

void WriterPlugin::getRowValues(const pwr::TableMessage& table, std::deque<std::string>& out) const
{
    for (auto handle = table.sharedHandleBegin(); handle != table.sharedHandleEnd(); ++handle) {
        out.push_back(getFieldValueFromHandle(table, nullptr, *handle));
    }
    const auto handlesBegin = table.handleBegin();
    const auto handlesEnd = table.handleEnd();
    if (table.getEntityCount() == 0) {
        for (auto handle = handlesBegin; handle != handlesEnd; ++handle) {
            out.push_back(getFieldValueFromHandle(table, nullptr, *handle));
        }
        return;
    }
    for (auto entity = table.entityBegin(); entity != table.entityEnd(); ++entity) {
        for (auto handle = handlesBegin; handle != handlesEnd; ++handle) {
            out.push_back(getFieldValueFromHandle(table, *entity, *handle));
        }
    }
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
