#include "support/TestSession.h"

#include "plugins/QuorvaneHost.h"
#include "values/UniqueId.h"

namespace test {

TestSession::TestSession(unsigned short verbosity) : log(verbosity), writers{&writer}
{
    pwr::UniqueId::initialize();
    stream = QuorvaneHost::createWriterStream(writers);
    log.environment().setWriterStream(stream);
}

TestSession::~TestSession()
{
    QuorvaneHost::destroyWriterStream(stream);
    pwr::UniqueId::destroy();
}

std::string topologyText(int packages, int coresPerPackage, int threadsPerCore)
{
    std::string text;
    int logical = 0;
    for (int package = 0; package < packages; ++package) {
        for (int core = 0; core < coresPerPackage; ++core) {
            for (int thread = 0; thread < threadsPerCore; ++thread) {
                if (!text.empty()) text += ' ';
                text += std::to_string(logical++) + ' ' + std::to_string(package) + ' ' + std::to_string(core) + " -1";
            }
        }
    }
    return text;
}

pwr::SystemMetadata makeSystem(float clockMHz, unsigned long long startTSC)
{
    pwr::SystemMetadata system;
    system.platformName = "Testland";
    system.hostName = "host";
    system.osName = "os";
    system.osType = "type";
    system.osVersion = "1.0";
    system.driverBuildDate = "today";
    system.exeBuildDate = "today";
    system.nonNumericVersion = "0.1";
    system.buildRef = "ref";
    system.packageType = "socket";
    system.appVersion = 0x07E60100;
    system.qvaClockFreqMHz = clockMHz;
    system.cpuFreqMHz = clockMHz;
    system.startTSC = startTSC;
    return system;
}

}    // namespace test
