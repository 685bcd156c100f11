#pragma once

#include "Engines/Account.h"
#include "Platform/AppPaths.h"

#include <QHash>
#include <QList>

namespace corvane {

/// The profile and the machine to check, as values, so that the checks can run on any thread.
struct CheckedProfile {
    AppPaths paths;
    qint64 nowMs = 0;
    std::optional<QList<Account>> accounts; ///< nothing if the file cannot be read
    QHash<QString, QString> secrets {}; ///< by account, as far as known without asking the user
    QString backups {}; ///< the folder
    bool backsUpDaily = false;
    QString modelServer {}; ///< the configured address; empty: the default ones
    QStringList codexPlaces {}; ///< where the Codex tool may be
    bool hasCalendars = false;
    bool hasContacts = false;
};

class UserDefaults;

/// Filled from the profile's files and settings; the caller adds the rest.
CheckedProfile checkedProfile(const AppPaths& paths, const UserDefaults& defaults, qint64 nowMs);

}
