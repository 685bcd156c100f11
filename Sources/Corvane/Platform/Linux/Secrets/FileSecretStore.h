#pragma once

#include "Platform/SecretStore.h"

#include <QJsonObject>

namespace corvane {

/// The secrets in one JSON file of mode 0600, in a folder of mode 0700 of its own. A file that does not read,
/// belongs to somebody else or could have been written by others counts as empty, and is copied aside before
/// the first write.
class FileSecretStore final : public SecretStore {
public:
    explicit FileSecretStore(const QString& path);

    std::optional<QString> get(const QString& service, const QString& account) override;
    bool set(const QString& service, const QString& account, const QString& value) override;
    void remove(const QString& service, const QString& account) override;
    QString description() const override;

private:
    std::optional<QJsonObject> read() const; ///< nothing where a file stands that is not to be trusted
    bool write(const QJsonObject& secrets) const;

    const QString m_path;
};

}
