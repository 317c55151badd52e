#include "plugins/CollectorPlugin.h"

#include "config/Operation.h"

CollectorPlugin::CollectorPlugin(const std::string& uuid) : Plugin(uuid) {}

CollectorPlugin::~CollectorPlugin()
{
    for (; !m_operations.empty(); m_operations.pop_back())
        delete m_operations.back();
}

int CollectorPlugin::continuousCollectionTick()
{
    return 1;
}

bool CollectorPlugin::getContinuousResult(QVBuffer&, CollectionData&)
{
    return false;
}

bool CollectorPlugin::canCollectMessage(const pwr::InputMsg*)
{
    return true;
}

int CollectorPlugin::doImmediateRead(pwr::Operation*, const pwr::EntityHandle*)
{
    return -1;
}

int CollectorPlugin::doImmediateRead(pwr::Operation*, const std::string&)
{
    return -1;
}

int CollectorPlugin::doImmediateWrite(const pwr::InputMsg*)
{
    return -1;
}

int CollectorPlugin::doImmediateWrite(pwr::Operation*, const std::string&)
{
    return -1;
}

bool CollectorPlugin::doesSupportLowOverhead() const
{
    return false;
}

void CollectorPlugin::addOperation(const pwr::Operation* operation)
{
    if (operation != nullptr) m_operations.push_back(operation);
}
