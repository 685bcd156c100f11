#include "Platform/Keychain.h"

#include "Platform/SecretStore.h"

namespace corvane {

namespace {
const QString service = QStringLiteral("com.nimb.corvane");
}

std::optional<QString> Keychain::get(const QString& account)
{
    const auto value = m_store.get(service, account);
    return value ? std::optional(value->trimmed()) : std::nullopt;
}

bool Keychain::set(const QString& value, const QString& account)
{
    return m_store.set(service, account, value);
}

void Keychain::remove(const QString& account)
{
    m_store.remove(service, account);
}

QString Keychain::description() const
{
    return m_store.description();
}

}
