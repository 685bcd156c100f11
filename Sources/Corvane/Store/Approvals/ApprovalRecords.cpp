#include "Store/Approvals/ApprovalRecords.h"

#include "Foundation/Literals.h"
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
    return fieldsHash({ u"approval_record"_s, QString::number(line.seq), QString::number(line.at), line.kind,
        line.subjectId, line.action, line.contentHash, line.previousHash });
}

QString lineName(qint64 seq)
{
    return u"line %1"_s.arg(seq);
}

/// What is wrong between an entry and its predecessor, if there is one.
std::optional<QString> breakBetween(const ApprovalRecord& before, const ApprovalRecord& line)
{
    if (line.seq != before.seq + 1)
        return u"%1 is missing"_s.arg(lineName(before.seq + 1));
    if (hashOf(line) != line.hash)
        return u"%1 was changed after it was written"_s.arg(lineName(line.seq));
    if (line.previousHash != before.hash)
        return u"%1 does not continue the line before it"_s.arg(lineName(line.seq));
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
    const ApprovalRecord last = records.first(db, u"ORDER BY seq DESC LIMIT 1;"_s, {}).value_or(ApprovalRecord());
    ApprovalRecord line { last.seq + 1, db.nowMs(), kind, subjectId, action, contentHash, last.hash, {} };
    line.hash = hashOf(line);
    return records.insert(db, line);
}

void recordUndo(LocalDB& db, const QString& kind, const QString& subjectId, const QString& contentHash)
{
    Transaction transaction(db);
    if (transaction.begun() && appendRecord(db, kind, subjectId, u"undo"_s, contentHash))
        (void)transaction.commit();
}

QList<ApprovalRecord> latestRecords(LocalDB& db, int limit)
{
    return records.rows(db, u"ORDER BY seq DESC LIMIT ?;"_s, { limit });
}

RecordCheck checkRecords(SqlConnection& db)
{
    const auto tables = db.rows("SELECT 1 FROM sqlite_master WHERE type='table' AND name='approval_record';", {},
        [](const SqlRow& row) { return row.integer(0); });
    if (tables.isEmpty())
        return { false, u"This database has no decision log."_s };
    // Before the entries: otherwise a concurrent program could store an approval without an entry.
    const auto live = db.rows("SELECT draft_id, content_hash FROM draft_approval ORDER BY draft_id;", {},
        [](const SqlRow& row) { return std::pair(row.text(0), row.text(1)); });
    ApprovalRecord before;
    QSet<std::pair<QString, QString>> approved;
    for (const ApprovalRecord& line : records.rows(db, u"ORDER BY seq;"_s, {})) {
        if (const auto wrong = breakBetween(before, line))
            return { false, u"The decision log is broken: %1."_s.arg(*wrong) };
        if (line.action.startsWith(u"approve"))
            approved.insert({ line.subjectId, line.contentHash });
        before = line;
    }
    for (const auto& approval : live) {
        if (!approved.contains(approval))
            return { false, u"The approval of %1 is missing in the log."_s.arg(approval.first) };
    }
    if (before.seq == 0)
        return { true, u"No decision has been recorded yet."_s };
    return { true,
        u"The decision log is intact: %1, the last with the hash %2."_s.arg(
            before.seq == 1 ? u"1 line"_s : u"%1 lines"_s.arg(before.seq), before.hash) };
}

}
