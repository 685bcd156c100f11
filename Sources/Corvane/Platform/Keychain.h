#pragma once

#include <QString>
#include <optional>

namespace corvane {

class SecretStore;

/// The program's own secrets: everything under the service "com.nimb.corvane".
class Keychain {
public:
    explicit Keychain(SecretStore& store)
        : m_store(store)
    {
    }

    std::optional<QString> get(const QString& account); ///< white space around the value is trimmed
    bool set(const QString& value, const QString& account);
    void remove(const QString& account);
    QString description() const; ///< where the secrets are, for the settings screen

private:
    SecretStore& m_store;
};

}
