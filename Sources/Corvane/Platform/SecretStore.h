#pragma once

#include <QString>
#include <memory>
#include <optional>

namespace corvane {

struct AppPaths;

/// The user's secrets, by service and account. Every call is bounded to 5 seconds; a store that does not
/// answer in that time counts as a missing value or a failed write.
class SecretStore {
public:
    virtual ~SecretStore() = default;

    virtual std::optional<QString> get(const QString& service, const QString& account) = 0;
    virtual bool set(const QString& service, const QString& account, const QString& value) = 0; ///< adds or replaces
    virtual void remove(const QString& service, const QString& account) = 0;

    /// For the settings screen: where the secrets are, such as "the desktop's keyring".
    virtual QString description() const = 0;
};

/// The desktop's Secret Service where one answers, else a file of mode 0600 in a folder of mode 0700 under
/// application support. CORVANE_SECRETS=file or =keyring decides by hand.
std::unique_ptr<SecretStore> makeSecretStore(const AppPaths& paths);

}
