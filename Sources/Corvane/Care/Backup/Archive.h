#pragma once

#include "Foundation/Result.h"

#include <QByteArray>
#include <QString>
#include <functional>
#include <memory>
#include <optional>

class QIODevice;

namespace corvane {

/// Size and hash of a file in an archive.
struct StoredFile {
    qint64 bytes = 0;
    QByteArray sha256; ///< in hexadecimal digits

    bool operator==(const StoredFile&) const = default;
};

/// Called for each piece that was copied; returning false aborts.
using PieceSeen = std::function<bool(qint64 bytes)>;

/// Writes a tar archive of regular files. Errors are for the user.
class ArchiveWriter {
public:
    explicit ArchiveWriter(QIODevice& to); ///< open, and outlives this
    ~ArchiveWriter();

    Result<StoredFile> add(const QString& name, const QByteArray& content);

    /// Stores the file with its current size; data appended later is left out. Nothing if it is not a regular file.
    /// Symbolic links are not followed.
    Result<std::optional<StoredFile>> addFile(const QString& name, const QString& path, const PieceSeen& seen);

    Result<void> finish();

private:
    struct Archive;
    std::unique_ptr<Archive> m_archive;
};

/// Reads such an archive. Fails for anything but regular files, and for unsafe names.
class ArchiveReader {
public:
    explicit ArchiveReader(QIODevice& from); ///< open, and outlives this
    ~ArchiveReader();

    Result<std::optional<QString>> next(); ///< the name of the next file; nothing at the end

    /// Writes the current file to a new file with mode 0600. Missing folders are created with mode 0700.
    Result<StoredFile> extract(const QString& path, const PieceSeen& seen);

    Result<QByteArray> content(qint64 limit); ///< of the current file

private:
    struct Archive;
    std::unique_ptr<Archive> m_archive;
};

/// Whether the name is a relative path without empty, "." or ".." parts.
bool isSafeName(const QString& name);

}
