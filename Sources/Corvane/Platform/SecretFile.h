#pragma once

#include <QHash>
#include <QString>

namespace corvane {

/// Where the current value of a secret is stored.
struct SecretPlace {
    enum class Where {
        File, ///< in this file: `value`
        Keyring,
        Nowhere, ///< it was removed, which the keyring may not know yet
    };
    Where where = Where::Nowhere;
    QString value;

    bool operator==(const SecretPlace&) const = default;
};
using SecretPlaces = QHash<QString, SecretPlace>; ///< by account

/// Stores where the program's secrets are, in a JSON file of mode 0600 in its own folder of mode 0700. A file that is
/// unreadable, belongs to someone else or is writable for others counts as empty, and is copied aside before the first
/// write.
class SecretFile {
public:
    explicit SecretFile(const QString& path)
        : m_path(path)
    {
    }

    SecretPlaces read() const;
    bool write(const SecretPlaces& places) const; ///< false if the old content remains
    const QString& path() const { return m_path; }

private:
    QString m_path;
};

}
