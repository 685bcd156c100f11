#pragma once

#include "Platform/SecretStore.h"

#include <QMap>

namespace corvane {

/// Secrets that live as long as the test; `failing` makes every write fail.
class MemorySecrets final : public SecretStore {
public:
    std::optional<QString> get(const QString& service, const QString& account) override
    {
        const auto found = values.constFind({ service, account });
        return found == values.constEnd() ? std::nullopt : std::optional(*found);
    }
    bool set(const QString& service, const QString& account, const QString& value) override
    {
        if (!failing)
            values.insert({ service, account }, value);
        return !failing;
    }
    void remove(const QString& service, const QString& account) override { values.remove({ service, account }); }
    QString description() const override { return QStringLiteral("the memory of a test"); }

    QMap<std::pair<QString, QString>, QString> values;
    bool failing = false;
};

}
