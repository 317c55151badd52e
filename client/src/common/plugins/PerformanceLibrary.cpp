#include "plugins/PluginEnvironment.h"
#include "runtime/Log.h"
#include "runtime/OsInfo.h"
#include "runtime/os/Os.h"

// The tool's directory, and the external performance library that the host loads: its functions are looked up by name
// at each use, and answer 0 for success.

namespace {

using ConfigEventCall = int (*)(const char* configurationFile);
using GetErrorMessageCall = int (*)(int status, char** text);
using GetVersionCall = int (*)(unsigned int* a, unsigned int* b, unsigned int* c);
using CollectCall = int (*)();

// Null without a library or without the function.
template <typename Function>
Function lookUp(void* library, const char* name)
{
    return reinterpret_cast<Function>(pwr::os::current().libraries->symbol(library, name));
}

void reportConfigurationError(void* library, int status)
{
    QV_LOG_ERROR("ERROR: System not configured to allow access to bandwidth data.\n");
    const auto getErrorMessage = lookUp<GetErrorMessageCall>(library, "MERIDX_Get_Error_Message");
    if (getErrorMessage == nullptr) return;
    char* text = nullptr;
    getErrorMessage(status, &text);
    QV_LOG_WARNING_FOR("meridx", "WARNING: MERIDX configuration error: %s.\n", text != nullptr ? text : "");
}

// Starting or stopping, and what is logged about it.
struct CollectionStep {
    const char* function;
    const char* missing;
    const char* done;
    const char* failed;
    bool unloads;    // the library, right after the call
};

constexpr CollectionStep START = {
    "MERIDX_Start_Collection",
    "WARNING: Error due to NULL meridxDllHandle or invalid address for MERIDX_Start_Collection function !\n !\n",
    "INFO: OK, starting MERIDX collection!\n",
    "WARNING: ERROR starting a MERIDX collection!\n",
    false,
};

constexpr CollectionStep STOP = {
    "MERIDX_Stop_Collection",
    "WARNING: Error due to NULL meridxDllHandle or invalid address for MERIDX_Stop_Collection function !\n",
    "INFO: OK, stopped MERIDX collection!\n",
    "WARNING: ERROR stopping a MERIDX collection!\n",
    true,
};

bool run(const CollectionStep& step, void* library)
{
    const auto collect = lookUp<CollectCall>(library, step.function);
    if (collect == nullptr) {
        QV_LOG_WARNING("%s", step.missing);
        return false;
    }
    const int status = collect();
    if (step.unloads) pwr::os::current().libraries->unload(library);
    QV_LOG_INFO("INFO: LUMEX: %s return status - %d\n", step.function, status);
    if (status != 0) {
        QV_LOG_WARNING("%s", step.failed);
        return false;
    }
    QV_LOG_INFO("%s", step.done);
    return true;
}

}    // namespace

void PluginEnvironment::setQuorvaneDirectory(const std::string&)
{
    const pwr::os::Door& door = pwr::os::current();
    std::string path;
    unsigned long lastError = 0;
    if (!door.libraries->executablePath(path, lastError)) {
        QV_LOG_ERROR("ERROR: Cannot get full pathname for quorvane executable. Error: %s\n",
                     formatErrorMessage(lastError).c_str());
        return;
    }
    const char separator = door.files->pathSeparator();
    const std::string directory = path.substr(0, path.rfind(separator));
    m_toolDirectory = directory + separator;
    door.libraries->setSearchDirectory(directory);
    door.libraries->addSearchDirectory(stringToWstring(m_toolDirectory + "plugins" + separator));
}

void PluginEnvironment::setMeridxDllHandle(void* handle)
{
    m_performanceLibrary = handle;
}

void PluginEnvironment::setMeridxConfigFileName(const std::string& fileName)
{
    m_performanceConfigFile = fileName;
}

bool PluginEnvironment::configureMeridx()
{
    if (m_performanceConfigFile.empty()) return false;
    const auto configure = lookUp<ConfigEventCall>(m_performanceLibrary, "MERIDX_Config_Event");
    if (configure == nullptr) return false;
    const int status = configure(m_performanceConfigFile.c_str());
    if (status == 0) {
        QV_LOG_DEBUG("DEBUG: Reconfigured MERIDX interface (%s)!\n", m_performanceConfigFile.c_str());
        return true;
    }
    reportConfigurationError(m_performanceLibrary, status);
    m_performanceConfigFile.clear();
    return false;
}

bool PluginEnvironment::getMeridxVersion(unsigned int* a, unsigned int* b, unsigned int* c)
{
    if (m_performanceConfigFile.empty() || a == nullptr || b == nullptr || c == nullptr) return false;
    const auto getVersion = lookUp<GetVersionCall>(m_performanceLibrary, "MERIDX_Get_Version");
    return getVersion != nullptr && getVersion(a, b, c) == 0;
}

// The run's environment says whether the library is in use, this one which it is.
bool PluginEnvironment::startMeridx()
{
    if (g_pluginEnvironment == nullptr || g_pluginEnvironment->m_performanceConfigFile.empty()) return false;
    return run(START, m_performanceLibrary);
}

bool PluginEnvironment::stopMeridx()
{
    if (g_pluginEnvironment == nullptr || g_pluginEnvironment->m_performanceConfigFile.empty()) return false;
    return run(STOP, m_performanceLibrary);
}
