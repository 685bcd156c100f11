#pragma once

#include "Platform/SecretStore.h"

#include <chrono>

namespace corvane {

/// The desktop's Secret Service. Each call is made on a thread of its own and given up after `limit`, since a
/// locked keyring asks the user and a hung one never answers.
class KeyringSecretStore final : public SecretStore {
public:
    explicit KeyringSecretStore(std::chrono::milliseconds limit = std::chrono::seconds(5));

    /// Whether a value that is stored now can be read back.
    bool answers();

    std::optional<QString> get(const QString& service, const QString& account) override;
    bool set(const QString& service, const QString& account, const QString& value) override;
    void remove(const QString& service, const QString& account) override;
    QString description() const override;

private:
    const std::chrono::milliseconds m_limit;
};

}
