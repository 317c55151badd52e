#pragma once

#include "writers/Text.h"
#include "writers/Values.h"

#include <cmath>
#include <string>
#include <vector>

namespace host {

// A number as it is; one without digits in JSON, a text and nothing as text and null.
inline void appendJson(std::string& out, const Reading& reading)
{
    const bool hasDigits = reading.kind != Reading::Kind::REAL || std::isfinite(reading.real);
    if (reading.isNumber() && hasDigits) {
        appendReading(out, reading);
    } else if (reading.kind == Reading::Kind::NOTHING) {
        out += "null";
    } else if (reading.kind == Reading::Kind::TEXT) {
        appendJson(out, std::string_view(reading.text));
    } else {
        out += '"';
        appendReading(out, reading);
        out += '"';
    }
}

// Appends one object, member by member, to a text that outlives it. Names are ours: they are not escaped.
//
//   JsonObject(text).text("type", "note").text("text", note).end();
class JsonObject {
public:
    explicit JsonObject(std::string& out) : m_out(out) { m_out += '{'; }

    // What follows appends the value to the text itself.
    JsonObject& name(const char* member)
    {
        if (!m_isEmpty) m_out += ',';
        m_isEmpty = false;
        m_out += '"';
        m_out += member;
        m_out += "\":";
        return *this;
    }
    JsonObject& text(const char* member, std::string_view value)
    {
        name(member);
        appendJson(m_out, value);
        return *this;
    }
    JsonObject& number(const char* member, std::uint64_t value)
    {
        name(member);
        appendNumber(m_out, value);
        return *this;
    }
    JsonObject& real(const char* member, double value)
    {
        name(member);
        if (std::isfinite(value)) {
            appendNumber(m_out, value);
        } else {
            m_out += "null";
        }
        return *this;
    }
    JsonObject& texts(const char* member, const std::vector<std::string>& values)
    {
        name(member);
        m_out += '[';
        for (const std::string& value : values) {
            if (&value != &values.front()) m_out += ',';
            appendJson(m_out, std::string_view(value));
        }
        m_out += ']';
        return *this;
    }
    void end(const char* behind = "\n")
    {
        m_out += '}';
        m_out += behind;
    }

private:
    std::string& m_out;
    bool m_isEmpty = true;
};

}    // namespace host
