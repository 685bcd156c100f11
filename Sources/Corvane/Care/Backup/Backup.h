#pragma once

#include "Care/Backup/Manifest.h"

#include <QHash>
#include <atomic>

namespace corvane {

struct AppPaths;

/// How far a backup, its check or a restoration is; written by its thread, read by any.
struct BackupProgress {
    std::atomic<qint64> bytes = 0;
    std::atomic<qint64> allBytes = 0; ///< 0 until that is known
    std::atomic<bool> stopped = false; ///< set by whoever no longer wants it
};

/// What goes into a backup. Its file belongs to the user alone and takes the place of an older one in one step.
struct BackupRequest {
    QString file;
    qint64 nowMs = 0;
    bool media = true; ///< what came with messages, and recordings
    std::optional<QString> passphrase; ///< seals the whole file
    std::optional<QHash<QString, QString>> secrets {}; ///< by account; only with a passphrase
};

/// Passwords, tokens and sign-ins go only into a sealed file: `secrets` without a passphrase is refused. The program,
/// its engines and the tool server may run meanwhile. The error is for the user. Takes long; for a thread of its own.
Result<Manifest> makeBackup(
    const AppPaths& paths, const BackupRequest& request, const std::shared_ptr<BackupProgress>& progress);

/// Unpacks the backup into the folder, which is empty, and compares each file with what was stored of it and the
/// database with its row counts. The passphrase is only looked at where the file is sealed.
Result<Manifest> unpackBackup(const QString& file, const std::optional<QString>& passphrase, const QString& folder,
    const std::shared_ptr<BackupProgress>& progress);

/// The same in a temporary folder beside the file, or where that cannot be written, in the system's.
Result<Manifest> verifyBackup(
    const QString& file, const std::optional<QString>& passphrase, const std::shared_ptr<BackupProgress>& progress);

bool isSealedBackup(const QString& file);

}
