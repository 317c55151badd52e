#pragma once

#include "modules/PluginModule.h"

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

class CollectorPlugin;
class MetricPlugin;
class WriterPlugin;

namespace host {

class ModuleFile;

// A writer, and what its capability says of it.
struct ModuleWriter {
    std::string name;    // as --result takes it: small letters and digits, "-" for all else
    std::string description;
    std::string fileSuffix;    // empty: it writes no file, or doesn't say so
    WriterPlugin* writer = nullptr;
};

// The plugins that stand in modules. A file that is no good module, or brings a plugin whose UUID or a writer whose
// name is there already, is left out and told in one line; the others are loaded all the same.
//
// The plugins end with destroyPlugins(), while the library's registry still stands; the code stays loaded until the
// object ends, since registered objects may still need it: make it before the session.
//
//   Modules modules([&](const std::string& line) { say(line); });
//   Session session(errors);
//   modules.load(folder);
//   ...
//   modules.destroyPlugins();
class Modules {
public:
    using Say = std::function<void(const std::string& line)>;

    explicit Modules(Say say);
    ~Modules();
    Modules(const Modules&) = delete;
    Modules& operator=(const Modules&) = delete;

    // Loads the modules of the folder beside the program, which may be missing, and those of `folder` unless that is
    // empty. Empty, or what is wrong with that folder.
    std::string loadAll(const std::string& folder);

    // Loads the modules of a folder in the order of their names; a folder that was loaded already is left alone. False
    // when it is no folder or can't be read.
    bool load(const std::string& folder);

    void destroyPlugins();

    // In the order of loading; the modules'.
    const std::vector<CollectorPlugin*>& getCollectors() const { return m_collectors; }
    const std::vector<MetricPlugin*>& getMetricPlugins() const { return m_metricPlugins; }
    const std::vector<ModuleWriter>& getWriters() const { return m_writers; }

    // The collector configuration that modules brought: "fan.conf" beside the module "fan".
    const std::vector<std::string>& getConfigFiles() const { return m_configFiles; }

private:
    struct Module;

    std::string load_i(const std::filesystem::path& path);
    std::string findFault_i(const QuorvaneModule& contents) const;
    std::string findNameFault_i(const ModuleWriter& writer) const;
    void adopt_i(const std::filesystem::path& path, const QuorvaneModule& contents);

    Say m_say;
    std::vector<std::filesystem::path> m_folders;
    std::vector<std::unique_ptr<Module>> m_modules;
    std::map<std::string, std::string> m_origins;        // of each UUID, a path
    std::map<std::string, std::string> m_nameOrigins;    // of each name of a writer, a path
    std::vector<CollectorPlugin*> m_collectors;
    std::vector<MetricPlugin*> m_metricPlugins;
    std::vector<ModuleWriter> m_writers;
    std::vector<std::string> m_configFiles;
};

}    // namespace host
