#include "Session.h"

#include "config/OutputConfig.h"
#include "output/WriterMessage.h"
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
    m_environment.setDefaultClock(&m_clock);
    g_pluginEnvironment = &m_environment;
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
    record.qvaClockFreqMHz = m_clock.getFreqMHz();
    // The time stamp counter runs at the base frequency where that is known.
    const float tscMHz = record.cpuFreqMHz > 0 ? record.cpuFreqMHz : record.qvaClockFreqMHz;
    m_environment.setDefaultClockToTSCRatio(record.qvaClockFreqMHz, tscMHz);
    return pwr::DataHandleProvider::initTopology(record) == 0;
}

void OutputStream::addWriter(WriterPlugin& writer)
{
    writer.setSID(static_cast<int>(m_writers.size()));
    m_writers.insert(&writer);
}

bool OutputStream::open(PluginEnvironment& environment, pwr::SystemMetadata& record)
{
    m_stream = QuorvaneHost::createWriterStream(m_writers);
    environment.setWriterStream(m_stream);
    if (pwr::DataHandleProvider::addStream(m_stream) != 0) return false;
    for (const WriterPlugin* writer : m_writers)
        record.sidToUuid[writer->getSID()] = writer->getUUID();
    pwr::SystemMessage message(record);
    return m_stream->pushMessage(message) == 0;
}

void OutputStream::close()
{
    QuorvaneHost::destroyWriterStream(m_stream);
    m_stream = nullptr;
}

}    // namespace host
