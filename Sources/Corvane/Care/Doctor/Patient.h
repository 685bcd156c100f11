#pragma once

#include "Engines/Account.h"
#include "Platform/AppPaths.h"

#include <QHash>
#include <QList>

namespace corvane {

/// The profile and the machine that a check-up looks at: values, so that it can run on any thread.
struct Patient {
    AppPaths paths;
    qint64 nowMs = 0;
    std::optional<QList<Account>> accounts; ///< nothing where their file does not read
    QHash<QString, QString> secrets {}; ///< by account, as far as they could be had without asking
    QString backups {}; ///< the folder
    bool backsUpDaily = false;
    QString modelServer {}; ///< the address that the user set; empty: the usual ones
    bool hasCalendars = false;
    bool hasContacts = false;
};

class UserDefaults;

/// What the profile's own files and settings say; the rest is the caller's to add.
Patient patientOf(const AppPaths& paths, const UserDefaults& defaults, qint64 nowMs);

}
