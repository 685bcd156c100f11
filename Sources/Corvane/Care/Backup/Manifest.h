#pragma once

#include "Care/Backup/Archive.h"
#include "Foundation/Literals.h"

#include <QMap>

namespace corvane {

/// What a backup contains; its last file. docs/backup.md describes the format.
struct Manifest {
    QString program; ///< the version that made it
    qint64 madeAtMs = 0;
    QString dataFolder; ///< where the files of the rows were
    bool media = false;
    bool secrets = false;
    QMap<QString, qint64> rows; ///< by table
    QMap<QString, StoredFile> files; ///< by their names in the archive, the database among them

    bool operator==(const Manifest&) const = default;
};

QByteArray manifestText(const Manifest& manifest);
Result<Manifest> manifestFrom(const QByteArray& text); ///< the error is for the user

/// The names in the archive.
namespace backupNames {
inline const QString manifest = u"manifest.json"_s;
inline const QString database = u"nimblocal.db"_s;
inline const QString data = u"data/"_s; ///< the data folder
inline const QString settings = u"settings/defaults.ini"_s;
inline const QString secrets = u"secrets/secrets.json"_s; ///< texts by account
inline const QString session = u"secrets/companion.jwt"_s; ///< the sign-in to the web account
inline const QString signIns = u"secrets/home/"_s; ///< of engines, below the home directory
}

}
