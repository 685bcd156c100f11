#pragma once

#include "Platform/SecretStore.h"

#include <QHash>

namespace corvane {

/// Secrets in memory; while `failing`, nothing is kept.
class FakeSecretStore final : public SecretStore {
public:
    std::optional<QString> get(const QString& service, const QString& account) override
    {
        const auto found = m_values.constFind({ service, account });
        return found == m_values.cend() ? std::nullopt : std::optional(*found);
    }
    bool set(const QString& service, const QString& account, const QString& value) override
    {
        if (!failing)
            m_values.insert({ service, account }, value);
        return !failing;
    }
    void remove(const QString& service, const QString& account) override { m_values.remove({ service, account }); }
    QString description() const override { return QStringLiteral("memory"); }

    bool failing = false;

private:
    QHash<std::pair<QString, QString>, QString> m_values;
};

}
