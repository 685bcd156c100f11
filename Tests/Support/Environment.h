#pragma once

#include <QByteArray>
#include <QList>

namespace corvane {

/// Sets environment variables of this process and restores the old values on destruction.
class Environment {
public:
    Environment() = default;
    Environment(std::initializer_list<std::pair<const char*, QByteArray>> variables)
    {
        for (const auto& [name, value] : variables)
            set(name, value);
    }
    ~Environment()
    {
        for (const auto& [name, value] : m_before)
            put(name, value);
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

    /// A null value unsets the variable.
    void set(const char* name, const QByteArray& value)
    {
        m_before.prepend({ name, qgetenv(name) });
        put(name, value);
    }

private:
    static void put(const char* name, const QByteArray& value)
    {
        value.isNull() ? qunsetenv(name) : qputenv(name, value);
    }

    QList<std::pair<const char*, QByteArray>> m_before;
};

}
