#include "plugins/QuorvaneHost.h"

#include "metrics/ThermalSampleHandler.h"
#include "output/WriterStream.h"
#include "values/EntityHandle.h"

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
