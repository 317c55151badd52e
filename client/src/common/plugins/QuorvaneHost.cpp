#include "plugins/QuorvaneHost.h"

#include "metrics/ThermalSampleHandler.h"
#include "output/WriterStream.h"
#include "runtime/os/Os.h"
#include "values/EntityHandle.h"

#include <cstdint>
#include <cstring>
#include <vector>

WriterStream* QuorvaneHost::createWriterStream(const std::set<WriterPlugin*>& plugins)
{
    return new WriterStream(plugins);
}

void QuorvaneHost::destroyWriterStream(WriterStream* stream)
{
    delete stream;
}

void QuorvaneHost::addSupportedTableClass(WriterStream& stream, pwr::TableClass tableClass)
{
    stream.m_supportedTableClasses.insert(tableClass);
}

MetricPlugin::ProcessMessageCode QuorvaneHost::processMessage(MetricPlugin& plugin, const pwr::SystemMetadata& system,
                                                              const qv_driver_msg* message)
{
    return plugin.processMessage(system, message);
}

int QuorvaneHost::addChild(pwr::EntityHandle* parent, pwr::EntityHandle* child)
{
    if (parent == nullptr || child == nullptr) return 1;
    return parent->addChild(child);
}

void QuorvaneHost::destroyThermalSampleHandler()
{
    pwr::ThermalSampleHandler::destroy_i();
}

bool QuorvaneHost::setRegistryNumber(const std::string& key, const std::string& value, unsigned int number)
{
    const std::uint32_t stored = number;
    std::vector<unsigned char> bytes(sizeof stored);
    std::memcpy(bytes.data(), &stored, sizeof stored);
    return pwr::os::current().registry->store(key, value, bytes);
}
