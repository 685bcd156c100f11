#pragma once

#include "Care/Backup/Backup.h"

#include <QStringList>

namespace corvane {

class Scheduler;

/// Which backup goes where.
struct RestoreRequest {
    QString file;
    std::optional<QString> passphrase;
    bool replace = false; ///< a profile that is there is put aside, under a name that is told
};

struct Restored {
    Manifest manifest;
    QString aside; ///< where the profile lies that was there before; empty where there was none
    QStringList leftAlone; ///< folders of engines' sign-ins that were there already
};

/// Makes a profile of a backup: its data folder and settings are those of `paths`. Accounts are paused, requests of
/// other programs closed, and drafts that were on their way are failed. Refused where a program works on that profile,
/// where it holds something and is not to be replaced, and where the data folder is a link. Until the new profile is
/// whole, the old one stays as it is. The error is for the user.
Result<Restored> restoreBackup(const AppPaths& paths, const RestoreRequest& request, Scheduler& scheduler,
    const std::shared_ptr<BackupProgress>& progress);

/// The profile below a folder that a person names; an error where the name leads through a link or "..".
Result<AppPaths> profileIn(const QString& folder, const AppPaths& own);

/// Only the database of a backup, ready to be used, in a file that is not there yet.
Result<void> restoreDatabase(const QString& backup, const QString& to, const AppPaths& paths, Scheduler& scheduler);

}
