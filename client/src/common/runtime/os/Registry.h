#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace pwr::os {

// The local machine's part of the registry. Statuses are Windows error codes on every system (0: success, 2: no such
// key or value, 5: access denied, 234: more data than room). Names of keys and values know no case.
//
// A system without a registry has a table in the process, empty at first and filled by `store`.
class Registry {
public:
    virtual ~Registry() = default;

    // Opens the key to read its values. `key`, null after a failure, is closed with `closeKey`.
    virtual long openKey(const char* path, void*& key) = 0;

    // Copies a value of any kind. `sizeBytes` is the room in `data` before and the value's own size after.
    virtual long queryValue(void* key, const char* name, void* data, std::uint32_t& sizeBytes) = 0;

    virtual void closeKey(void* key) = 0;

    // Puts a value into the table, in place of one of the same name; false where the system has a registry, which is
    // left alone. Not while another thread reads.
    virtual bool store(const std::string& path, const std::string& name, const std::vector<unsigned char>& value) = 0;
};

Registry& systemRegistry();

}    // namespace pwr::os
