#pragma once

#include "Care/Backup/Backup.h"

#include <QStringList>

namespace corvane {

class Scheduler;

/// What to restore, and how.
struct RestoreRequest {
    QString file;
    std::optional<QString> passphrase;
    bool replace = false; ///< an existing profile is renamed
};

struct Restored {
    Manifest manifest;
    QString aside; ///< the new name of the previous profile; empty if there was none
    QStringList leftAlone; ///< sign-in folders of engines that existed already
};

/// Restores a backup to the data folder and settings of `paths`. Pauses accounts, closes requests of other programs and
/// fails drafts that were being sent. Refused if a program uses the profile, if it is not empty and `replace` is not
/// set, and if the data folder is a symbolic link. The old profile is unchanged until the new one is complete. The
/// error is for the user.
Result<Restored> restoreBackup(const AppPaths& paths, const RestoreRequest& request, Scheduler& scheduler,
    const std::shared_ptr<BackupProgress>& progress);

/// The profile in a folder that the user names; an error if the path contains a symbolic link or "..".
Result<AppPaths> profileIn(const QString& folder, const AppPaths& own);

/// Restores only the database, to a file that does not exist yet.
Result<void> restoreDatabase(const QString& backup, const QString& to, const AppPaths& paths, Scheduler& scheduler);

}
