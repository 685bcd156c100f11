#include "Store/Approvals/ApprovalRecords.h"

#include "Store/Core/Table.h"
#include "Store/Core/Transaction.h"

#include <QCryptographicHash>
#include <QSet>

namespace corvane {

namespace {

const Table<ApprovalRecord> records("approval_record",
    {
        { "seq", &ApprovalRecord::seq },
        { "at", &ApprovalRecord::at },
        { "kind", &ApprovalRecord::kind },
        { "subject_id", &ApprovalRecord::subjectId },
        { "action", &ApprovalRecord::action },
        { "content_hash", &ApprovalRecord::contentHash },
        { "previous_hash", &ApprovalRecord::previousHash },
        { "hash", &ApprovalRecord::hash },
    });

QString hashOf(const ApprovalRecord& line)
{
    return fieldsHash({ QStringLiteral("approval_record"), QString::number(line.seq), QString::number(line.at),
        line.kind, line.subjectId, line.action, line.contentHash, line.previousHash });
}

QString lineName(qint64 seq)
{
    return QStringLiteral("line %1").arg(seq);
}

/// What is wrong between a line and the one before it, which may be none.
std::optional<QString> breakBetween(const ApprovalRecord& before, const ApprovalRecord& line)
{
    if (line.seq != before.seq + 1)
        return QStringLiteral("%1 is missing").arg(lineName(before.seq + 1));
    if (hashOf(line) != line.hash)
        return QStringLiteral("%1 was changed after it was written").arg(lineName(line.seq));
    if (line.previousHash != before.hash)
        return QStringLiteral("%1 does not continue the line before it").arg(lineName(line.seq));
    return std::nullopt;
}

}

QString fieldsHash(const QStringList& fields)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const QString& field : fields) {
        const QByteArray bytes = field.toUtf8();
        hash.addData(QByteArray::number(bytes.size()) + ':');
        hash.addData(bytes);
    }
    return QString::fromLatin1(hash.result().toHex());
}

bool appendRecord(
    LocalDB& db, const QString& kind, const QString& subjectId, const QString& action, const QString& contentHash)
{
    const ApprovalRecord last
        = records.first(db, QStringLiteral("ORDER BY seq DESC LIMIT 1;"), {}).value_or(ApprovalRecord());
    ApprovalRecord line { last.seq + 1, db.nowMs(), kind, subjectId, action, contentHash, last.hash, {} };
    line.hash = hashOf(line);
    return records.insert(db, line);
}

void recordUndo(LocalDB& db, const QString& kind, const QString& subjectId, const QString& contentHash)
{
    Transaction transaction(db);
    if (transaction.begun() && appendRecord(db, kind, subjectId, QStringLiteral("undo"), contentHash))
        (void)transaction.commit();
}

QList<ApprovalRecord> latestRecords(LocalDB& db, int limit)
{
    return records.rows(db, QStringLiteral("ORDER BY seq DESC LIMIT ?;"), { limit });
}

RecordCheck checkRecords(SqlConnection& db)
{
    const auto tables = db.rows("SELECT 1 FROM sqlite_master WHERE type='table' AND name='approval_record';", {},
        [](const SqlRow& row) { return row.integer(0); });
    if (tables.isEmpty())
        return { false, QStringLiteral("This database holds no record of decisions.") };
    // Before the lines: a program that runs meanwhile remembers no approval without a line for it.
    const auto live = db.rows("SELECT draft_id, content_hash FROM draft_approval ORDER BY draft_id;", {},
        [](const SqlRow& row) { return std::pair(row.text(0), row.text(1)); });
    ApprovalRecord before;
    QSet<std::pair<QString, QString>> approved;
    for (const ApprovalRecord& line : records.rows(db, QStringLiteral("ORDER BY seq;"), {})) {
        if (const auto wrong = breakBetween(before, line))
            return { false, QStringLiteral("The record of decisions is broken: %1.").arg(*wrong) };
        if (line.action.startsWith(u"approve"))
            approved.insert({ line.subjectId, line.contentHash });
        before = line;
    }
    for (const auto& approval : live) {
        if (!approved.contains(approval))
            return { false, QStringLiteral("The approval of %1 stands in no line of the record.").arg(approval.first) };
    }
    if (before.seq == 0)
        return { true, QStringLiteral("No decision has been recorded yet.") };
    return { true,
        QStringLiteral("The record of decisions is whole: %1, the last with the hash %2.")
            .arg(
                before.seq == 1 ? QStringLiteral("1 line") : QStringLiteral("%1 lines").arg(before.seq), before.hash) };
}

}
