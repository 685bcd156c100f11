#pragma once

#include <QHash>
#include <QString>

namespace corvane {

/// Where the newest value of a secret is.
struct SecretPlace {
    enum class Where {
        File, ///< here: `value`
        Keyring,
        Nowhere, ///< it was removed, which the keyring may not know yet
    };
    Where where = Where::Nowhere;
    QString value;

    bool operator==(const SecretPlace&) const = default;
};
using SecretPlaces = QHash<QString, SecretPlace>; ///< by account

/// The places of the program's secrets in one JSON file of mode 0600, in a folder of mode 0700 of its own. A file
/// that does not read, belongs to somebody else or could have been written by others counts as empty, and is copied
/// aside before the first write.
class SecretFile {
public:
    explicit SecretFile(const QString& path)
        : m_path(path)
    {
    }

    SecretPlaces read() const;
    bool write(const SecretPlaces& places) const; ///< false where the old content still stands
    const QString& path() const { return m_path; }

private:
    QString m_path;
};

}
