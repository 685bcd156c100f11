#pragma once

#include "Foundation/Result.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>
#include <sys/types.h>

namespace corvane {

/// What a written file outlives. Waiting for the disk takes as long as the disk likes.
enum class Outlives { PowerCut, Program };

/// Puts the content in place of the file, in one step: a reader sees the old content or the new one, and a
/// crash leaves either. The file has mode 0600 from its first byte on, whatever the umask; a missing folder
/// is made. False where anything fails; the old file then stands.
bool writePrivateFile(const QString& path, const QByteArray& content, Outlives outlives = Outlives::PowerCut);

/// Copies a plain file to a new one with mode 0600; missing folders are made with mode 0700. The copy outlives a power
/// cut, and `seen` got every piece of its content in order. Where that fails, or there are more than `limit` bytes (0:
/// no limit), nothing is left of it; the error is in words for the user. Returns the size. Runs on any thread.
Result<qint64> copyPrivateFile(
    const QString& from, const QString& to, qint64 limit, const std::function<void(QByteArrayView piece)>& seen);

/// From now on nobody else reads what this program and its engines write. Missing folders are made; one that is
/// open to others is closed to them, with everything in it. Returns the umask that the program was started with,
/// which what is opened for the user in other programs gets back.
mode_t keepFilesPrivate(const QStringList& folders);

}
