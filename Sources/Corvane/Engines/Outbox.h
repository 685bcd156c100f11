#pragma once

#include "Foundation/Result.h"
#include "Store/Approvals/OutgoingMessage.h"

namespace corvane {

struct AppPaths;

/// Outgoing files: private copies of what the user picked, each in its own folder, unchanged until the message is done.
/// Those of drafts are separate from those of unsent texts and direct messages, so that each owner cleans up its own.
/// It stores only paths; errors are for the user.
class Outbox {
public:
    explicit Outbox(const AppPaths& paths);

    /// Copies a file that the user picked; refuses more than `limit` bytes (0: no limit). It waits for the disk, so use
    /// a `BackgroundQueue` for large files: runs on any thread.
    Result<OutgoingFile> pick(const QString& path, qint64 limit = 0) const;
    Result<OutgoingFile> pick(const QString& name, const QByteArray& content) const; ///< for pasted content

    void drop(const QList<OutgoingFile>& files) const; ///< picked files that are no longer needed
    void keepPicked(const QList<OutgoingFile>& files) const; ///< deletes all others, left by an earlier run

    /// Copies picked files for a draft; nothing if one of them has changed.
    std::optional<QList<OutgoingFile>> copyForDraft(const QList<OutgoingFile>& files) const;
    void keepForDrafts(const QList<OutgoingFile>& files) const; ///< deletes all others, whose drafts are done
    bool holdsForDrafts() const; ///< whether there are any

    bool holds(const OutgoingFile& file) const; ///< a regular file in the outbox, whatever its content

    /// The current state of the files. A missing one, or one elsewhere, has -1 bytes and no hash.
    QList<OutgoingFile> asTheyLie(QList<OutgoingFile> files) const;

private:
    Result<OutgoingFile> copy(const QString& from, const QString& place, qint64 limit) const;

    QString m_picked;
    QString m_drafts;
};

}
