#include "runtime/os/Registry.h"

#include <algorithm>
#include <cstring>
#include <map>

namespace pwr::os {

namespace {

constexpr long NOT_FOUND = 2;
constexpr long MORE_DATA = 234;

std::string lowered(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return text;
}

// The table in the process. An open key is a pointer to its values.
class PosixRegistry : public Registry {
public:
    long openKey(const char* path, void*& key) override
    {
        key = nullptr;
        const auto found = m_keys.find(lowered(path));
        if (found == m_keys.end()) return NOT_FOUND;
        key = &found->second;
        return 0;
    }

    long queryValue(void* key, const char* name, void* data, std::uint32_t& sizeBytes) override
    {
        const Values& values = *static_cast<const Values*>(key);
        const auto found = values.find(lowered(name));
        if (found == values.end()) return NOT_FOUND;
        const std::vector<unsigned char>& value = found->second;
        const bool fits = value.size() <= sizeBytes;
        sizeBytes = static_cast<std::uint32_t>(value.size());
        if (!fits) return MORE_DATA;
        if (!value.empty()) std::memcpy(data, value.data(), value.size());
        return 0;
    }

    void closeKey(void*) override {}

    bool store(const std::string& path, const std::string& name, const std::vector<unsigned char>& value) override
    {
        m_keys[lowered(path)][lowered(name)] = value;
        return true;
    }

private:
    using Values = std::map<std::string, std::vector<unsigned char>>;
    std::map<std::string, Values> m_keys;
};

}    // namespace

Registry& systemRegistry()
{
    static PosixRegistry s_registry;
    return s_registry;
}

}    // namespace pwr::os
