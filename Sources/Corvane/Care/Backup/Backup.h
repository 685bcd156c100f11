#pragma once

#include "Care/Backup/Manifest.h"

#include <QHash>
#include <atomic>

namespace corvane {

struct AppPaths;

/// The progress of a backup, a verification or a restore; written by its thread, read by any.
struct BackupProgress {
    std::atomic<qint64> bytes = 0;
    std::atomic<qint64> allBytes = 0; ///< 0 until known
    std::atomic<bool> stopped = false; ///< set to cancel
};

/// What a backup contains. The file has mode 0600 and replaces an older one atomically.
struct BackupRequest {
    QString file;
    qint64 nowMs = 0;
    bool media = true; ///< attachments and recordings
    std::optional<QString> passphrase; ///< encrypts the whole file
    std::optional<QHash<QString, QString>> secrets {}; ///< by account; only with a passphrase
};

/// Refuses `secrets` without a passphrase. The program, its engines and the tool server may run at the same time. The
/// error is for the user. Slow; may run on any thread.
Result<Manifest> makeBackup(
    const AppPaths& paths, const BackupRequest& request, const std::shared_ptr<BackupProgress>& progress);

/// Unpacks the backup to an empty folder and compares every file with its stored hash, and the tables with their row
/// counts. The passphrase is only used if the file is encrypted.
Result<Manifest> unpackBackup(const QString& file, const std::optional<QString>& passphrase, const QString& folder,
    const std::shared_ptr<BackupProgress>& progress);

/// The same in a temporary folder next to the file, or in the system's if that is not writable.
Result<Manifest> verifyBackup(
    const QString& file, const std::optional<QString>& passphrase, const std::shared_ptr<BackupProgress>& progress);

bool isSealedBackup(const QString& file);

}
