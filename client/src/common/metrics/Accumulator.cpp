#include "metrics/Accumulator.h"

#include "config/OutputConfig.h"
#include "output/WriterStream.h"
#include "plugins/PluginEnvironment.h"

namespace pwr {

Accumulator::Accumulator() : m_stream(nullptr), m_outputConfig(WriterInterfaceConfigFileParser::instance())
{
    if (g_pluginEnvironment != nullptr) m_stream = static_cast<WriterStream*>(g_pluginEnvironment->getWriterStream());
    if (m_stream == nullptr) throw "ERROR: Writer stream is not initialized";
}

Accumulator::~Accumulator() = default;

}    // namespace pwr
