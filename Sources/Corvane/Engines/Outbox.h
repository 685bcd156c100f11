#pragma once

#include "Foundation/Result.h"
#include "Store/Approvals/OutgoingMessage.h"

namespace corvane {

struct AppPaths;

/// The files on their way out: copies of what a person picked, private, each in a folder of its own, that nobody
/// changes until their message has ended. Those of drafts lie apart from those of texts that are still being written or
/// were sent directly, so that each owner tidies up its own. It holds only paths; errors are in words for the user.
class Outbox {
public:
    explicit Outbox(const AppPaths& paths);

    /// Copies a file that a person picked; one of more than `limit` bytes (0: no limit) is refused. It waits for the
    /// disk, so a large file belongs on a `BackgroundQueue`: runs on any thread.
    Result<OutgoingFile> pick(const QString& path, qint64 limit = 0) const;
    Result<OutgoingFile> pick(const QString& name, const QByteArray& content) const; ///< what was pasted

    void drop(const QList<OutgoingFile>& files) const; ///< picked files that are needed no more
    void keepPicked(const QList<OutgoingFile>& files) const; ///< drops all others, which an earlier run left

    /// Copies picked files for a draft; nothing where one of them is not as it was picked.
    std::optional<QList<OutgoingFile>> copyForDraft(const QList<OutgoingFile>& files) const;
    void keepForDrafts(const QList<OutgoingFile>& files) const; ///< removes all others, whose drafts have ended
    bool holdsForDrafts() const; ///< any file

    bool holds(const OutgoingFile& file) const; ///< a plain file that lies here, whatever is in it

    /// The files as they lie here now. One that is gone, or lies elsewhere, has -1 bytes and no hash.
    QList<OutgoingFile> asTheyLie(QList<OutgoingFile> files) const;

private:
    Result<OutgoingFile> copy(const QString& from, const QString& place, qint64 limit) const;

    QString m_picked;
    QString m_drafts;
};

}
