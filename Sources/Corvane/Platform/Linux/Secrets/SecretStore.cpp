#include "Platform/SecretStore.h"

#include "Foundation/Log.h"
#include "Platform/AppPaths.h"
#include "Platform/Linux/Secrets/FileSecretStore.h"
#include "Platform/Linux/Secrets/KeyringSecretStore.h"

#include <QFileInfo>

namespace corvane {

namespace {

/// The keyring, and behind it what an earlier run without a keyring had to leave in the file.
class KeyringBeforeFile final : public SecretStore {
public:
    KeyringBeforeFile(std::unique_ptr<SecretStore> keyring, std::unique_ptr<SecretStore> file)
        : m_keyring(std::move(keyring))
        , m_file(std::move(file))
    {
    }

    std::optional<QString> get(const QString& service, const QString& account) override
    {
        auto value = m_keyring->get(service, account);
        return value ? value : m_file->get(service, account);
    }

    bool set(const QString& service, const QString& account, const QString& value) override
    {
        if (!m_keyring->set(service, account, value))
            return false;
        m_file->remove(service, account);
        return true;
    }

    void remove(const QString& service, const QString& account) override
    {
        m_keyring->remove(service, account);
        m_file->remove(service, account);
    }

    QString description() const override { return m_keyring->description(); }

private:
    const std::unique_ptr<SecretStore> m_keyring;
    const std::unique_ptr<SecretStore> m_file;
};

/// Asked before the first call, because a missing bus would be looked for in ways of its own.
bool hasSessionBus()
{
    const QString runtimeFolder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return !qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")
        || (!runtimeFolder.isEmpty() && QFileInfo::exists(runtimeFolder + QStringLiteral("/bus")));
}

}

std::unique_ptr<SecretStore> makeSecretStore(const AppPaths& paths)
{
    auto file = std::make_unique<FileSecretStore>(paths.applicationSupport + QStringLiteral("/secrets/secrets.json"));
    auto keyring = std::make_unique<KeyringSecretStore>();
    const QString choice = qEnvironmentVariable("CORVANE_SECRETS");
    if (choice == QLatin1String("keyring"))
        return keyring;
    if (choice != QLatin1String("file") && hasSessionBus() && keyring->answers())
        return std::make_unique<KeyringBeforeFile>(std::move(keyring), std::move(file));
    log(QStringLiteral("SecretStore: secrets are kept in %1").arg(file->description()));
    return file;
}

}
