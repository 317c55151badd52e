#pragma once

#include "runtime/Export.h"

#include <string>

// What every plugin is: an identity that the host numbers. The host creates plugins and deletes them.
class QUORVANE_API Plugin {
public:
    virtual ~Plugin();
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    // The small number that the host hands out for the run; -1 until then.
    void setSID(int sid);
    int getSID() const;
    const std::string& getUUID() const;    // never changes

protected:
    explicit Plugin(const std::string& uuid);

private:
    int m_sid = -1;
    std::string m_uuid;
};
