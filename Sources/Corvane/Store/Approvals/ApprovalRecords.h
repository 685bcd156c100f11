#pragma once

#include "Store/Core/LocalDB.h"

#include <QStringList>

namespace corvane {

/// The result of a decision.
enum class Decided {
    Taken,
    AlreadySo, ///< it was already decided this way; nothing changed
    Changed, ///< it differs from what was seen, and needs another decision
    Refused, ///< gone, decided otherwise, or the file could not be written
};

/// An entry of the decision log. It contains no text of a message, only who decided and a hash.
struct ApprovalRecord {
    qint64 seq = 0; ///< 1, 2, 3, ...
    qint64 at = 0; ///< milliseconds since the epoch
    QString kind; ///< "draft", "proposal" or "decision"
    QString subjectId;
    QString action; ///< such as "approve"; `docs/database.md` has the list
    QString contentHash; ///< of the subject at that time
    QString previousHash; ///< of the previous entry; empty in the first
    QString hash; ///< of all fields above
};

/// SHA-256 in hexadecimal digits. Each field is prefixed with its length, so different lists never give the same bytes.
QString fieldsHash(const QStringList& fields);

/// Appends an entry. Call it inside a `Transaction`, so that concurrent programs see each other's last entry; the entry
/// is kept or undone with the change that it records.
[[nodiscard]] bool appendRecord(
    LocalDB& db, const QString& kind, const QString& subjectId, const QString& action, const QString& contentHash);

/// A decision that was undone before it took effect; `contentHash` is of its subject.
void recordUndo(LocalDB& db, const QString& kind, const QString& subjectId, const QString& contentHash);

QList<ApprovalRecord> latestRecords(LocalDB& db, int limit); ///< newest first

/// The result of checking the whole log.
struct RecordCheck {
    bool sound = false;
    QString words; ///< for the user
};
RecordCheck checkRecords(SqlConnection& db);

}
