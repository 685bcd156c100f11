#pragma once

#include "Foundation/Result.h"

#include <QByteArray>
#include <QString>
#include <functional>
#include <memory>
#include <optional>

class QIODevice;

namespace corvane {

/// What an archive holds of a file.
struct StoredFile {
    qint64 bytes = 0;
    QByteArray sha256; ///< in hexadecimal digits

    bool operator==(const StoredFile&) const = default;
};

/// Sees each piece that was moved; false ends the work.
using PieceSeen = std::function<bool(qint64 bytes)>;

/// Writes a tar of plain files. Errors are for the user.
class ArchiveWriter {
public:
    explicit ArchiveWriter(QIODevice& to); ///< open, and outlives this
    ~ArchiveWriter();

    Result<StoredFile> add(const QString& name, const QByteArray& content);

    /// A file as large as it is now: what is appended meanwhile is left out. Nothing where there is no such plain file.
    /// Links are not followed.
    Result<std::optional<StoredFile>> addFile(const QString& name, const QString& path, const PieceSeen& seen);

    Result<void> finish();

private:
    struct Archive;
    std::unique_ptr<Archive> m_archive;
};

/// Reads such a tar. Whatever is no plain file fails it, as does a name that leads anywhere but further down.
class ArchiveReader {
public:
    explicit ArchiveReader(QIODevice& from); ///< open, and outlives this
    ~ArchiveReader();

    Result<std::optional<QString>> next(); ///< the name of the next file; nothing at the end

    /// The file that `next` named, into a new file of mode 0600. Folders that are missing are made with mode 0700.
    Result<StoredFile> extract(const QString& path, const PieceSeen& seen);

    Result<QByteArray> content(qint64 limit); ///< of the file that `next` named

private:
    struct Archive;
    std::unique_ptr<Archive> m_archive;
};

/// Whether a file of an archive may be called that: a relative path, each part of which is a plain name.
bool isSafeName(const QString& name);

}
