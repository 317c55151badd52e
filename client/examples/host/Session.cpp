#include "Session.h"

#include "config/OutputConfig.h"
#include "output/WriterMessage.h"
#include "plugins/PluginCapability.h"
#include "plugins/QuorvaneHost.h"
#include "record/SystemMetadata.h"
#include "values/DataHandleProvider.h"
#include "values/UniqueId.h"

#include <ostream>

namespace host {

void StreamLogger::writeOut()
{
    m_target.write(m_buffer.data(), static_cast<std::streamsize>(m_buffer.size()));
    m_target.flush();
}

Session::Session(std::ostream& errors) : m_errorLogger(errors), m_previous(g_pluginEnvironment)
{
    m_environment.setErrorLogger(&m_errorLogger);
    m_environment.setDebugLogger(&m_errorLogger);
    m_environment.setNullLogger(&m_silentLogger);
    m_environment.setDefaultClock(&m_clock.getSource());
    g_pluginEnvironment = &m_environment;
    m_environment.setQuorvaneDirectory("");    // the program's, whatever is given
    pwr::UniqueId::initialize();
}

Session::~Session()
{
    pwr::UniqueId::destroy();
    pwr::WriterInterfaceConfigFileParser::instance()->destroy();
    g_pluginEnvironment = m_previous;
}

bool Session::useRecord(pwr::SystemMetadata& record)
{
    record.qvaClockFreqMHz = m_clock.getSource().getFreqMHz();
    useSavedRecord(record);
    return pwr::DataHandleProvider::initTopology(record) == 0;
}

// The time stamp counter runs at the base frequency where that is known.
void Session::useSavedRecord(const pwr::SystemMetadata& record)
{
    const float tscMHz = record.cpuFreqMHz > 0 ? record.cpuFreqMHz : record.qvaClockFreqMHz;
    m_environment.setDefaultClockToTSCRatio(record.qvaClockFreqMHz, tscMHz);
}

void OutputStream::addWriter(WriterPlugin& writer)
{
    m_writers.insert(&writer);
}

bool OutputStream::open(PluginEnvironment& environment, pwr::SystemMetadata& record)
{
    m_stream = QuorvaneHost::createWriterStream(m_writers);
    environment.setWriterStream(m_stream);
    tellTableClasses_i();
    if (pwr::DataHandleProvider::addStream(m_stream) != 0) return false;
    pwr::SystemMessage message(record);
    return m_stream->pushMessage(message) == 0;
}

void OutputStream::tellTableClasses_i()
{
    for (const WriterPlugin* writer : m_writers) {
        Plugin::Capabilities capabilities;
        writer->getAllCapabilities(capabilities);
        for (const pwr::PluginCapability* capability : capabilities) {
            const auto* output = dynamic_cast<const pwr::WriterPluginCapability*>(capability);
            if (output == nullptr) continue;
            for (const pwr::TableClass tableClass : output->getSupportedTables())
                QuorvaneHost::addSupportedTableClass(*m_stream, tableClass);
        }
    }
}

void OutputStream::flush(const pwr::SystemMetadata& record) const
{
    for (WriterPlugin* writer : m_writers)
        writer->flushContinuousResults(record);
}

void OutputStream::close()
{
    QuorvaneHost::destroyThermalSampleHandler();
    QuorvaneHost::destroyWriterStream(m_stream);
    m_stream = nullptr;
}

}    // namespace host
