#include "modules/Modules.h"

#include "ConfigFiles.h"
#include "system/ModuleFile.h"
#include "system/ProgramFolder.h"
#include "writers/Results.h"
#include "writers/Text.h"

#include "output/WriterPlugin.h"
#include "plugins/CollectorPlugin.h"
#include "plugins/MetricPlugin.h"
#include "plugins/PluginCapability.h"

#include <algorithm>
#include <exception>
#include <set>
#include <system_error>
#include <utility>

namespace host {

namespace {

namespace fs = std::filesystem;

// The host's own plugins begin so.
const std::string OWN_UUID = "quorvane-host-";

constexpr std::size_t LONGEST_RESULT_NAME = 40;

// System texts may have line ends.
std::string oneLine(std::string text)
{
    while (!text.empty() && static_cast<unsigned char>(text.back()) <= ' ')
        text.pop_back();
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < ' '; }, ' ');
    return text;
}

bool isOfKnownKind(Plugin* plugin)
{
    return dynamic_cast<CollectorPlugin*>(plugin) != nullptr || dynamic_cast<MetricPlugin*>(plugin) != nullptr ||
           dynamic_cast<WriterPlugin*>(plugin) != nullptr;
}

// Without a name where its capability has none that a command line can take.
ModuleWriter describeWriter(WriterPlugin& writer)
{
    ModuleWriter description{"", "", "", &writer};
    Plugin::Capabilities capabilities;
    writer.getAllCapabilities(capabilities);
    if (capabilities.empty()) return description;
    const auto* capability = dynamic_cast<const pwr::WriterPluginCapability*>(capabilities.front());
    if (capability == nullptr || capability->getName().empty()) return description;
    const std::string name = plainWord(capability->getName(), '-', LONGEST_RESULT_NAME);
    if (name.find_first_not_of('-') != std::string::npos) description.name = name;
    description.description = oneLine(capability->getDescription());
    description.fileSuffix = capability->getFileSuffix();
    return description;
}

bool isOwnResult(const std::string& name)
{
    const std::vector<ResultFormat> formats = resultFormats();
    return std::any_of(formats.begin(), formats.end(),
                       [&name](const ResultFormat& format) { return name == format.name; });
}

// The modules of a folder by name. False when it can't be read.
bool listModules(const fs::path& folder, std::vector<fs::path>& files)
{
    std::error_code error;
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        std::error_code ignored;
        if (entry->path().extension() == ModuleFile::EXTENSION && !entry->is_directory(ignored))
            files.push_back(fs::absolute(entry->path(), ignored));
    }
    std::sort(files.begin(), files.end());
    return !error;
}

}    // namespace

// One loaded file and what its entry gave.
struct Modules::Module {
    std::unique_ptr<ModuleFile> file;
    QuorvaneModule contents{};

    // Has the entry fill the contents. Empty, or what is wrong with them; they then have nothing to destroy.
    std::string enter();
    void destroyPlugins();
};

std::string Modules::Module::enter()
{
    const QuorvaneModuleEntry entry = file->findEntry();
    if (entry == nullptr) return "it has no entry " QUORVANE_MODULE_ENTRY;
    std::string fault;
    try {
        const int result = entry(QUORVANE_ABI, &contents);
        if (result != 0) fault = "its entry failed with " + std::to_string(result);
    } catch (const std::exception& trouble) {
        fault = std::string("its entry threw: ") + trouble.what();
    } catch (const char* trouble) {    // how the library's constructors refuse
        fault = std::string("its entry threw: ") + trouble;
    } catch (...) {
        fault = "its entry threw";
    }
    if (fault.empty() && contents.abi != QUORVANE_ABI) {
        fault = "it was built for ABI " + std::to_string(contents.abi) + ", this program for " +
                std::to_string(QUORVANE_ABI);
    }
    if (!fault.empty()) contents = {};
    return fault;
}

void Modules::Module::destroyPlugins()
{
    if (contents.destroy != nullptr) contents.destroy(&contents);
    contents = {};
}

Modules::Modules(Say say) : m_say(std::move(say)) {}

// What an exception on its way holds may be a module's: its code stays then.
Modules::~Modules()
{
    destroyPlugins();
    if (std::uncaught_exceptions() == 0) return;
    for (std::unique_ptr<Module>& module : m_modules)
        module->file->keepLoaded();
}

// The folder is never wherever the user happens to stand.
std::string Modules::loadAll(const std::string& folder)
{
    const std::string program = programFolder();
    if (!program.empty()) load(program + "plugins");
    if (folder.empty() || load(folder)) return {};
    return "there is no folder " + folder + ": give --plugin-dir one that holds modules";
}

bool Modules::load(const std::string& folder)
{
    std::vector<fs::path> files;
    if (!listModules(folder, files)) return false;
    std::error_code ignored;
    for (const fs::path& known : m_folders) {
        if (fs::equivalent(known, folder, ignored)) return true;
    }
    m_folders.emplace_back(folder);
    for (const fs::path& file : files) {
        const std::string fault = load_i(file);
        if (!fault.empty()) m_say(oneLine(file.string() + " is left out: " + fault));
    }
    return true;
}

// Empty, or why the module is left out.
std::string Modules::load_i(const fs::path& path)
{
    auto module = std::make_unique<Module>();
    std::string fault;
    module->file = ModuleFile::open(path, fault);
    if (!module->file) return "it can't be loaded: " + fault;
    fault = module->enter();
    if (fault.empty()) fault = findFault_i(module->contents);
    if (fault.empty()) {
        adopt_i(path, module->contents);
    } else {
        module->destroyPlugins();
    }
    m_modules.push_back(std::move(module));    // what plugins registered that are gone again may need its code too
    return fault;
}

std::string Modules::findFault_i(const QuorvaneModule& contents) const
{
    if (contents.plugins == nullptr || contents.pluginCount == 0) return "its entry gave no plugin";
    std::set<std::string> own;
    std::set<std::string> ownNames;
    for (std::uint32_t i = 0; i < contents.pluginCount; ++i) {
        Plugin* plugin = contents.plugins[i];
        if (plugin == nullptr) return "its entry gave no plugin";
        const std::string& uuid = plugin->getUUID();
        if (!isOfKnownKind(plugin)) return "its plugin " + uuid + " is of no known kind";
        const auto origin = m_origins.find(uuid);
        if (origin != m_origins.end()) return "its plugin " + uuid + " is there already, from " + origin->second;
        if (uuid.starts_with(OWN_UUID)) return "its plugin " + uuid + " is named like the host's own";
        if (!own.insert(uuid).second) return "its plugin " + uuid + " is there twice";
        auto* writer = dynamic_cast<WriterPlugin*>(plugin);
        if (writer == nullptr) continue;
        const ModuleWriter named = describeWriter(*writer);
        std::string fault = findNameFault_i(named);
        if (!fault.empty()) return fault;
        if (!ownNames.insert(named.name).second) return "its result '" + named.name + "' is there twice";
    }
    return {};
}

std::string Modules::findNameFault_i(const ModuleWriter& writer) const
{
    if (writer.name.empty())
        return "its writer " + writer.writer->getUUID() + " has no capability with a name for --result";
    if (isOwnResult(writer.name)) return "its result '" + writer.name + "' is named like one of the host's own";
    const auto origin = m_nameOrigins.find(writer.name);
    if (origin == m_nameOrigins.end()) return {};
    return "its result '" + writer.name + "' is there already, from " + origin->second;
}

void Modules::adopt_i(const fs::path& path, const QuorvaneModule& contents)
{
    for (std::uint32_t i = 0; i < contents.pluginCount; ++i) {
        Plugin* plugin = contents.plugins[i];
        m_origins[plugin->getUUID()] = path.string();
        if (auto* collector = dynamic_cast<CollectorPlugin*>(plugin)) m_collectors.push_back(collector);
        if (auto* metrics = dynamic_cast<MetricPlugin*>(plugin)) m_metricPlugins.push_back(metrics);
        auto* writer = dynamic_cast<WriterPlugin*>(plugin);
        if (writer == nullptr) continue;
        m_writers.push_back(describeWriter(*writer));
        m_nameOrigins[m_writers.back().name] = path.string();
    }
    const std::string config = fs::path(path).replace_extension(".conf").string();
    if (isReadableFile(config)) m_configFiles.push_back(config);
}

// The last one loaded first.
void Modules::destroyPlugins()
{
    m_collectors.clear();
    m_metricPlugins.clear();
    m_writers.clear();
    for (auto module = m_modules.rbegin(); module != m_modules.rend(); ++module)
        (*module)->destroyPlugins();
}

}    // namespace host
