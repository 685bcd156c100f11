#pragma once

#include "Foundation/Result.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <sys/types.h>

namespace corvane {

/// What a written file must survive. Waiting for the disk may take arbitrarily long.
enum class Outlives { PowerCut, Program };

/// Replaces the file atomically: a reader sees the old or the new content, and a crash leaves one of them. The file has
/// mode 0600 from its first byte on, whatever the umask; missing folders are created. False on failure; the old file
/// then remains.
bool writePrivateFile(const QString& path, const QByteArray& content, Outlives outlives = Outlives::PowerCut);

/// The same for a file that is written in pieces. Without `commit`, nothing remains of it.
class PrivateSaveFile {
public:
    /// The pieces go to a file in `unfinished`, a folder on the same filesystem.
    PrivateSaveFile(const QString& path, const QString& unfinished);
    ~PrivateSaveFile();
    PrivateSaveFile(const PrivateSaveFile&) = delete;
    PrivateSaveFile& operator=(const PrivateSaveFile&) = delete;

    Result<void> open(); ///< errors of this class are for the user
    QFile& file() { return m_file; } ///< empty and open for writing
    Result<void> commit(); ///< waits for the disk

private:
    QString m_path;
    QString m_unfinished;
    QByteArray m_temporary; ///< the current name of the file; empty if there is none
    QFile m_file;
};

/// A regular file, open for reading; null if there is none, or if it is a symbolic link. Never blocks on a pipe.
std::unique_ptr<QFile> openPlainFile(const QString& path);

/// A new file with mode 0600, open for writing; missing folders are created with mode 0700. Fails, with an error for
/// the user, if the path exists.
Result<std::unique_ptr<QFile>> makePrivateFile(const QString& path);

/// Copies a regular file to a new one with mode 0600; missing folders are created with mode 0700. The copy survives a
/// power cut, and `seen` receives every piece of the content in order. On failure, or if there are more than `limit`
/// bytes (0: no limit), nothing remains of it; the error is for the user. Returns the size. May run on any thread.
Result<qint64> copyPrivateFile(
    const QString& from, const QString& to, qint64 limit, const std::function<void(QByteArrayView piece)>& seen);

/// Makes everything that this program and its engines write private. Missing folders are created; one that is open to
/// others is closed to them, with its content. Returns the original umask, for programs that are started for the user.
mode_t keepFilesPrivate(const QStringList& folders);

}
