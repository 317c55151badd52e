#pragma once

#include "output/WriterPlugin.h"
#include "output/WriterStream.h"
#include "plugins/PluginEnvironment.h"
#include "plugins/QuorvaneHost.h"
#include "values/UniqueId.h"

#include <memory>
#include <set>
#include <utility>

namespace bench {

class IdleWriter : public WriterPlugin {
public:
    IdleWriter() : WriterPlugin("idle") {}
    ~IdleWriter() override = default;
    int openOutput() override { return 0; }
    int closeOutput() override { return 0; }
};

// A host with one writer, by default one that does nothing.
class StreamSession {
public:
    explicit StreamSession(std::shared_ptr<WriterPlugin> writer = std::make_shared<IdleWriter>())
        : m_writer(std::move(writer)), m_writers{m_writer.get()}
    {
        g_pluginEnvironment = &environment;
        pwr::UniqueId::initialize();
        stream = QuorvaneHost::createWriterStream(m_writers);
    }
    ~StreamSession()
    {
        QuorvaneHost::destroyWriterStream(stream);
        pwr::UniqueId::destroy();
        g_pluginEnvironment = nullptr;
    }
    StreamSession(const StreamSession&) = delete;
    StreamSession& operator=(const StreamSession&) = delete;

    PluginEnvironment environment;
    WriterStream* stream = nullptr;

private:
    std::shared_ptr<WriterPlugin> m_writer;
    std::set<WriterPlugin*> m_writers;
};

}    // namespace bench
