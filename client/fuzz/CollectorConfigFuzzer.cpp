// Input: a collector configuration file, read with two collectors of which the second has a kind that doesn't work.
// Invariant: no crash, no leak; a load fails with a fatal line or succeeds without one; logging everything changes
// nothing that the queries tell; the statements name the operations of each message, no more and no less; after a
// failure the next load works.

#include "InputFile.h"

#include "config/ConfigCap.h"
#include "config/InputMsg.h"
#include "config/Operation.h"
#include "config/qv_configfile_parser.h"
#include "plugins/CollectorPlugin.h"
#include "record/Metadata.h"
#include "record/SystemMetadata.h"

#include <cstdlib>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

using namespace pwr;

namespace {

// Refuses a value that it has.
class KeyedOperation : public Operation {
public:
    KeyedOperation(const std::string& kind, PluginRequirement* requirement) : Operation(kind)
    {
        addCategory("CATEG");
        addCategory("OTHER");
        addRequirement(requirement);
    }
    KeyedOperation(const KeyedOperation&) = default;
    ~KeyedOperation() override = default;

    int set(const std::string& key, const std::string& value) override
    {
        return m_settings.insert(key + "=" + value).second ? 0 : -1;
    }
    OperationMetadata* getOperationMetadata() const override
    {
        return new OperationMetadata(getName(), getOperation(), 8);
    }
    Operation* clone() const override { return new KeyedOperation(*this); }

private:
    std::set<std::string> m_settings;
};

class Collector : public CollectorPlugin {
public:
    Collector() : CollectorPlugin("fuzzed") {}
    ~Collector() override = default;

    using CollectorPlugin::addOperation;

    int startCollection(const std::vector<InputMsg*>&, SystemMetadata&) override { return 0; }
    int stopCollection(CollectionData&) override { return 0; }
    int pauseCollection() override { return 0; }
    int resumeCollection() override { return 0; }
    int getCollectionResults(QVBuffer&) override { return 0; }
    using CollectorPlugin::doImmediateRead;
    int doImmediateRead(const InputMsg*, Results&) override { return 0; }
};

using Texts = std::vector<std::string>;

void tellMessage(Texts& told, InputMsg& message)
{
    told.push_back(message.getFullName() + message.getCPUString() + std::to_string(message.getMsgID()));
    told.insert(told.end(), message.getTriggers().begin(), message.getTriggers().end());
    for (const Operation* operation : message)
        told.push_back(operation->getName());
    const std::unique_ptr<MsgMetadata> record(message.getMetadata());
    if (record->getMetaValues().size() != message.getOperationCount()) std::abort();
    CollectorPlugin::Results results;
    if (message.execute(results) != 0 && message.getCommand() != QVOpCommand::WRITE) std::abort();
}

// The origins of a loaded configuration speak of the model as it is.
void tellOrigins(Texts& told, const std::string& names)
{
    ConfigOrigins origins;
    told.push_back(std::to_string(
        QVConfigFileParser::instance()->getOrigins(origins, {{"FMS", "6.142.9"}, {"CORES", "4"}}, names, "FEAT")));
    std::map<std::string, std::set<std::string>> named;
    for (const ConfigOrigins::Statement& one : origins.statements) {
        told.push_back(std::to_string(one.line) + one.message + one.matchedSpecifier);
        if (one.isAvailable && !one.operation.empty()) named[one.message].insert(one.operation);
    }
    for (const InputMsg* message : origins.messages) {
        std::set<std::string> known;
        for (const Operation* operation : *message)
            known.insert(operation->getName());
        if (known != named[message->getFullName()]) std::abort();
    }
}

// What the queries tell of the platforms that the input is likely to name.
Texts tell()
{
    auto* config = QVConfigFileParser::instance();
    Texts told;
    for (const char* value : {"6.142.9", "6.158", "VENDOR=0x1234,DEVICE=0x5678", "GUID=0x12", "4"}) {
        for (const char* type : {"FMS", "PCI", "PMT", "CORES"}) {
            std::string name;
            config->getPlatformName(name, {type, value});
            told.push_back(name);
        }
    }
    for (const char* names : {"F=ALL", "F=PLATA", "F=PLATA-B,F=PLATA", ""}) {
        tellOrigins(told, names);
        std::vector<const ConfigCap*> caps;
        config->getCapabilitiesFor(caps, names);
        for (const ConfigCap* cap : caps)
            told.push_back(cap->getName());
        for (const std::uint32_t type : {0U, 1U, 2U}) {
            std::vector<InputMsg*> messages;
            config->getMessagesFor(messages, names, "FEAT", {"POLL", "INIT"}, CollectionType{type});
            for (InputMsg* message : messages)
                tellMessage(told, *message);
        }
    }
    return told;
}

struct Run {
    int result;
    bool isFatal;
    Texts told;
};

Run load(unsigned short verbosity)
{
    OSNamePluginRequirement unmet("none", false);
    Collector first;
    first.addOperation(new KeyedOperation("OPKIND", nullptr));
    first.addOperation(new CONSTANTOperation("CONSTANT"));
    Collector second;
    second.addOperation(new KeyedOperation("OTHER", nullptr));
    second.addOperation(new KeyedOperation("ABSENT", &unmet));

    const LoggedEnvironment environment(verbosity);
    auto* config = QVConfigFileParser::instance();
    const SystemMetadata system;
    Run run{};
    run.result = config->parse({"input"}, {&first, &second}, system);
    run.isFatal = environment.errors.text.find("0FATAL: ") != std::string::npos;
    run.told = tell();
    if (config->parse({}, {}, system) != 0) std::abort();
    config->destroy();
    return run;
}

}    // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) return 0;    // no memory file has no bytes
    const os::Door previous = os::current();
    InputFile input(data, size);
    SilentConsole console;
    os::current().files = &input;
    os::current().console = &console;
    const Run quiet = load(0);
    const Run loud = load(4);
    os::current() = previous;

    const bool hasFailed = quiet.result != 0;
    if (quiet.result != loud.result || quiet.told != loud.told) std::abort();
    if (quiet.isFatal != hasFailed || loud.isFatal != hasFailed) std::abort();
    return 0;
}
