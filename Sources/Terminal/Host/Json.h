#pragma once

#include "Terminal/Text/Concat.h"

#include <string>
#include <string_view>

namespace corvane::terminal {

/// Writes JSON on one line and inserts the commas.
class Json {
public:
    Json& openObject() { return open('{'); }
    Json& closeObject() { return close('}'); }
    Json& openArray() { return open('['); }
    Json& closeArray() { return close(']'); }
    Json& key(std::string_view name)
    {
        separate();
        quote(name);
        m_text.push_back(':');
        m_first = true;
        return *this;
    }
    Json& value(std::string_view text)
    {
        separate();
        quote(text);
        return *this;
    }
    Json& value(const char* text) { return value(std::string_view(text)); }
    Json& value(bool on)
    {
        separate();
        m_text += on ? "true" : "false";
        return *this;
    }
    template <std::integral Number> Json& value(Number number)
    {
        separate();
        appendPart(m_text, number);
        return *this;
    }
    /// With `decimals` digits after the point.
    Json& number(double value, int decimals);
    template <typename Value> Json& member(std::string_view name, const Value& content)
    {
        key(name);
        return value(content);
    }
    const std::string& text() const { return m_text; }

private:
    Json& open(char bracket)
    {
        separate();
        m_text.push_back(bracket);
        m_first = true;
        return *this;
    }
    Json& close(char bracket)
    {
        m_text.push_back(bracket);
        m_first = false;
        return *this;
    }
    void separate()
    {
        if (!m_first)
            m_text.push_back(',');
        m_first = false;
    }
    void quote(std::string_view text);

    std::string m_text;
    bool m_first = true;
};

}
