#pragma once

#include "Store/Core/LocalDB.h"

#include <QStringList>

namespace corvane {

/// What came of a decision.
enum class Decided {
    Taken,
    AlreadySo, ///< it had been decided this way before; nothing changed
    Changed, ///< it is not as it was seen, and waits for another decision
    Refused, ///< gone, decided otherwise, or the file took no change
};

/// A line of the record of decisions. It holds no text of anybody, only who and which hash.
struct ApprovalRecord {
    qint64 seq = 0; ///< 1, 2, 3, ...
    qint64 at = 0; ///< milliseconds since the epoch
    QString kind; ///< "draft", "proposal" or "decision"
    QString subjectId;
    QString action; ///< such as "approve"; `docs/database.md` has the list
    QString contentHash; ///< of what it was about, as it stood then
    QString previousHash; ///< the hash of the line before; empty in the first
    QString hash; ///< of all the above
};

/// SHA-256 in hexadecimal digits. Each field is told with its length, so no two lists give the same bytes.
QString fieldsHash(const QStringList& fields);

/// Adds a line behind the last one. To be called inside a `Transaction`, so that of two programs each sees the
/// other's last line; the line then stands or falls with what it records.
[[nodiscard]] bool appendRecord(
    LocalDB& db, const QString& kind, const QString& subjectId, const QString& action, const QString& contentHash);

/// A decision that was taken back before it counted; `contentHash` is of what it was about.
void recordUndo(LocalDB& db, const QString& kind, const QString& subjectId, const QString& contentHash);

QList<ApprovalRecord> latestRecords(LocalDB& db, int limit); ///< newest first

/// What a check of the whole record says.
struct RecordCheck {
    bool sound = false;
    QString words; ///< for a person
};
RecordCheck checkRecords(SqlConnection& db);

}
