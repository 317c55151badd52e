// The rules of a statement down to its prefix, and those of model, capability and inherit lines.

#include "config/Parser.h"
#include "config/ParserRules.h"

#include "config/ConfigCap.h"
#include "config/Platform.h"
#include "config/Specifier.h"
#include "config/pw_utils.h"
#include "runtime/Log.h"

namespace pwr {

namespace {

constexpr std::string_view ROOT_PLATFORM = "ALL";

struct InheritWord {
    std::string_view word;
    Platform::InheritMode mode;
};

constexpr InheritWord INHERIT_WORDS[] = {
    {"OVERRIDE", Platform::OVERRIDE},
    {"EXTEND", Platform::EXTEND},
};

bool isConstantValue(const ConfigStatement& statement)
{
    return statement.keyword == "CONSTANT" && statement.key == "VALUE";
}

// F4 of a capability line.
bool isValueKey(const ConfigStatement& statement)
{
    if (statement.key == "VALUE") return true;
    QV_LOG_WARNING("WARNING: invalid token %s; expected \"VALUE\"\n", std::string(statement.key).c_str());
    return false;
}

// What stands before the last "-" of a platform's name; the root for a name of one part and for one that ends in "-".
std::string_view parentNameOf(std::string_view platform)
{
    const std::size_t dash = platform.rfind('-');
    const bool hasTail = dash != std::string_view::npos && dash + 1 != platform.size();
    return hasTail ? platform.substr(0, dash) : ROOT_PLATFORM;
}

}    // namespace

// platformSub
bool Parser::statementRule_i(const ConfigStatement& statement)
{
    m_message = nullptr;
    m_operation = nullptr;
    if (!platformRule_i(statement.platform)) return false;
    m_platform = platformOf_i(statement);
    m_path = statement.platformName();
    const bool isDone = statement.prefix == "MODEL"
                            ? rule_i(modelRule_i(statement), "modelRule")
                            : prefixRule_i(statement) && rule_i(metricRule_i(statement), "metricRule");
    return rule_i(isDone, "platformSub");
}

// The lines of a platform mostly stand together.
Platform* Parser::platformOf_i(const ConfigStatement& statement)
{
    const std::string_view name = statement.platformName();
    if (m_platform != nullptr && m_platform->getName() == name) return m_platform;
    return getOrCreatePlatform(name, parentNameOf(statement.platform));
}

void Parser::extendPath_i(std::string_view field)
{
    m_path.append(1, '_').append(field);
}

std::string_view Parser::prefixKey_i() const
{
    return std::string_view(m_path).substr(0, m_prefixKeySize);
}

bool Parser::modelRule_i(const ConfigStatement& statement)
{
    if (statement.tag == "FMS") return rule_i(modelFMSRule_i(statement), "modelFMSRule");
    if (statement.tag == "PCI") return rule_i(modelPCIRule_i(statement), "modelPCIRule");
    if (statement.tag == "PMT") return rule_i(modelPMTRule_i(statement), "modelPMTRule");
    return rule_i(modelOtherRule_i(statement), "modelOtherRule");
}

// The root stands for every processor.
bool Parser::modelFMSRule_i(const ConfigStatement& statement)
{
    if (m_platform->getName() == ROOT_PLATFORM) {
        QV_STREAM_ERROR << "ERROR: \"" << m_platform->getName()
                        << "\" is NOT allowed to have \"FMS\" as a model specifier!";
        return false;
    }
    return isConstantValue(statement) && rule_i(fmsValues_i(statement.value), "fmsValues");
}

bool Parser::fmsValues_i(std::string_view values)
{
    std::string_view rest = trim_i(values);
    std::string_view entry;
    while (takeEntry(entry, rest)) {
        if (!rule_i(fmsValue_i(trim_i(entry)), "fmsValue")) return false;
    }
    return true;
}

bool Parser::fmsValue_i(std::string_view value)
{
    if (value.empty()) return false;
    const std::string text(value);
    std::uint8_t family = 0;
    std::uint8_t model = 0;
    std::uint8_t stepping = 0;
    if (FMSSpecifier::extract_fms_i(family, model, stepping, text) != 0) {
        throw "ERROR: " + text + " is NOT a valid FMS specifier!";
    }
    m_platform->addSpecifier(new FMSSpecifier(family, model, stepping));
    return true;
}

bool Parser::modelPCIRule_i(const ConfigStatement& statement)
{
    return isConstantValue(statement) && rule_i(pciValue_i(statement.value), "pciValue");
}

bool Parser::pciValue_i(std::string_view value)
{
    std::uint32_t vendor = 0;
    std::uint32_t device = 0;
    if (!PCISpecifier::parse(std::string(value), vendor, device)) {
        QV_LOG_ERROR("ERROR: Invalid syntax for \"PCI\" model specifier\n");
        return false;
    }
    if (vendor == 0 || device == 0) {
        QV_STREAM_ERROR << "Invalid version and/or device passed to PCI specifier";
        return false;
    }
    m_platform->addSpecifier(new PCISpecifier(vendor, device));
    return true;
}

bool Parser::modelPMTRule_i(const ConfigStatement& statement)
{
    return isConstantValue(statement) && rule_i(PMTValue_i(statement.value), "PMTValue");
}

bool Parser::PMTValue_i(std::string_view value)
{
    std::uint32_t guid = 0;
    if (!PMTSpecifier::parse(std::string(value), guid)) {
        QV_LOG_ERROR("ERROR: Invalid syntax for \"PMT\" GUID specifier\n");
        return false;
    }
    if (guid == 0) {
        QV_STREAM_ERROR << "Invalid version and/or device passed to PMT specifier";
        return false;
    }
    m_platform->addSpecifier(new PMTSpecifier(guid));
    return true;
}

bool Parser::modelOtherRule_i(const ConfigStatement& statement)
{
    return rule_i(startsWithLetter(statement.tag), "tag") && rule_i(modelSpec_i(statement), "modelSpec");
}

bool Parser::modelSpec_i(const ConfigStatement& statement)
{
    if (statement.keyword != "CONSTANT") return false;
    if (statement.key == "VALUE") return rule_i(modelValue_i(statement), "modelValue");
    if (statement.key == "RANGE") return rule_i(modelRange_i(statement), "modelRange");
    return false;
}

bool Parser::modelValue_i(const ConfigStatement& statement)
{
    m_platform->addSpecifier(new ValueSpecifier(std::string(statement.tag), std::string(statement.value)));
    return true;
}

bool Parser::modelRange_i(const ConfigStatement& statement)
{
    return rule_i(modelRangeSub_i(statement), "modelRangeSub");
}

bool Parser::modelRangeSub_i(const ConfigStatement& statement)
{
    std::string_view rest = statement.value;
    std::uint32_t bounds[2] = {};
    for (std::uint32_t& bound : bounds) {
        std::string_view entry;
        if (!takeEntry(entry, rest)) return false;
        const std::string number(trim_i(entry));
        if (!isNumber(number)) return false;
        bound = static_cast<std::uint32_t>(extract_number_i(number));
    }
    m_platform->addSpecifier(new RangeSpecifier(std::string(statement.tag), bounds[0], bounds[1]));
    return true;
}

bool Parser::prefixRule_i(const ConfigStatement& statement)
{
    extendPath_i(statement.prefix);
    m_prefixKeySize = m_path.size();
    return true;
}

bool Parser::metricRule_i(const ConfigStatement& statement)
{
    if (statement.tag == "CAPABILITY") return rule_i(capRule_i(statement), "capRule");
    if (statement.tag == "INHERIT") return rule_i(inheritRule_i(statement), "inheritRule");
    return rule_i(startsWithLetter(statement.tag), "tag") && rule_i(tagSub_i(statement), "tagSub");
}

bool Parser::capRule_i(const ConfigStatement& statement)
{
    m_cap = m_platform->getOrCreateCap(statement.prefix, m_path);
    QV_STREAM_DEBUG << "found cap! capName = " << statement.prefix << ", platformPrefix = " << m_path;
    return rule_i(capSub_i(statement), "capSub");
}

bool Parser::capSub_i(const ConfigStatement& statement)
{
    static constexpr KeywordRule rules[] = {
        {"COMMAND-LINE", "capSubCmdline", &Parser::capSubCmdline_i},
        {"HELP-STRING", "capSubHelp", &Parser::capSubHelp_i},
        {"GROUP", "capSubGroup", &Parser::capSubGroup_i},
        {"HIDDEN", "capSubHidden", &Parser::capSubHidden_i},
    };
    return keywordRule_i(rules, statement.keyword, statement);
}

bool Parser::capSubCmdline_i(const ConfigStatement& statement)
{
    if (!isValueKey(statement)) return false;
    m_cap->setName(std::string(trim_i(statement.value)));
    QV_STREAM_DEBUG << "cap has name: " << m_cap->getName();
    return true;
}

bool Parser::capSubHelp_i(const ConfigStatement& statement)
{
    if (!isValueKey(statement)) return false;
    m_cap->setDescription(std::string(trim_i(statement.value)));
    QV_STREAM_DEBUG << "cap has help text: " << m_cap->getDescription();
    return true;
}

bool Parser::capSubGroup_i(const ConfigStatement& statement)
{
    if (!isValueKey(statement)) return false;
    const std::string group(trim_i(statement.value));
    m_cap->addGroup(group);
    QV_STREAM_DEBUG << "cap has added group : " << group;
    return true;
}

bool Parser::capSubHidden_i(const ConfigStatement& statement)
{
    if (!isValueKey(statement)) return false;
    const std::string value(trim_i(statement.value));
    QV_LOG_INFO_FOR(LOG_TAG, "INFO: HIDDEN attribute = %s\n", value.c_str());
    const std::string word = getUpperCaseString(value);
    if (word == "TRUE") m_cap->setHidden();
    if (word == "TRUE" || word == "FALSE") return true;
    QV_LOG_WARNING("WARNING: invalid value %s passed to \"HIDDEN\" attribute; must be one of \"TRUE\" or \"FALSE\"\n",
                   value.c_str());
    return false;
}

bool Parser::inheritRule_i(const ConfigStatement& statement)
{
    return rule_i(inheritSub_i(statement), "inheritSub");
}

bool Parser::inheritSub_i(const ConfigStatement& statement)
{
    return statement.keyword == "MODE" && rule_i(inheritMode_i(statement), "inheritMode");
}

bool Parser::inheritMode_i(const ConfigStatement& statement)
{
    return statement.key == "VALUE" && rule_i(inheritValue_i(statement), "inheritValue");
}

bool Parser::inheritValue_i(const ConfigStatement& statement)
{
    const std::string value(statement.value);
    QV_LOG_INFO_FOR(LOG_TAG, "INFO: prefix = %s, inherit value = %s\n", std::string(statement.prefix).c_str(),
                    value.c_str());
    for (const InheritWord& entry : INHERIT_WORDS) {
        if (entry.word != value) continue;
        m_platform->setInheritMode(statement.prefix, entry.mode);
        return true;
    }
    QV_LOG_ERROR("ERROR: Invalid \"inherit\" value %s -- MUST be one of \"OVERRIDE\" or \"EXTEND\"\n", value.c_str());
    return false;
}

}    // namespace pwr
