#include "Store/People/ContactInfo.h"

#include "Foundation/Literals.h"
#include "Store/Core/Table.h"
#include "Store/People/CrmRecords.h"
#include "Store/People/IdentityQueries.h"

#include <algorithm>

namespace corvane {

namespace {

const QString memoryTable = u"work_memory_entries"_s;

const Table<ActivityRow> messages("unified_message m",
    {
        { "m.id", &ActivityRow::id },
        { "cc.channel", &ActivityRow::channel },
        { "m.direction", &ActivityRow::direction },
        { "COALESCE(NULLIF(m.body,''), at.transcript, '')", &ActivityRow::text },
        { "m.ts", &ActivityRow::ts },
    });

const Table<ActivityRow> notes("contact_note",
    {
        { "id", &ActivityRow::id },
        { "body", &ActivityRow::text },
        { "ts", &ActivityRow::ts },
    });

const Table<ActivityRow> calls("call_recording",
    {
        { "id", &ActivityRow::id },
        { "NULLIF(title,'')", &ActivityRow::text, "'Call recording'" },
        { "processing_status", &ActivityRow::processingStatus, "''" },
        { "started_at", &ActivityRow::ts },
    });

QList<ActivityRow> ofKind(ActivityRow::Kind kind, QList<ActivityRow> rows)
{
    for (ActivityRow& row : rows)
        row.kind = kind;
    return rows;
}

void tidy(QStringList& values)
{
    values.removeAll(QString());
    values = orderedUnique(values);
}

}

void ContactInfoRow::add(const ContactInfoRow& more)
{
    for (QStringList ContactInfoRow::* values : { &ContactInfoRow::emails, &ContactInfoRow::phones,
             &ContactInfoRow::platforms, &ContactInfoRow::handles, &ContactInfoRow::companies })
        this->*values = orderedUnique(this->*values + more.*values);
}

ContactInfoRow fetchContactInfo(LocalDB& db, const QString& contactId)
{
    ContactInfoRow info;
    for (const ContactIdentity& identity : identitiesFor(db, contactId)) {
        info.emails.append(identity.email);
        info.phones.append(identity.phone);
        info.platforms.append(identity.channel);
        info.handles.append(identity.handle);
    }
    for (const CRMDealRow& deal : fetchContactDeals(db, contactId, 10))
        info.companies.append(deal.company);
    for (QStringList* values : { &info.emails, &info.phones, &info.platforms, &info.handles, &info.companies })
        tidy(*values);
    return info;
}

QList<ActivityRow> fetchContactActivity(LocalDB& db, const QString& contactId, int limit)
{
    QList<ActivityRow> rows = messages.rows(db, R"(JOIN unified_conversation cc ON +m.conversation_id=cc.id
LEFT JOIN audio_transcript at ON at.message_id=m.id
WHERE cc.contact_id=? AND cc.deleted_at IS NULL AND +m.deleted_at IS NULL AND m.rowid IN (
  SELECT p.rowid FROM unified_message p LEFT JOIN audio_transcript pt ON pt.message_id=p.id
  WHERE p.conversation_id=cc.id AND p.deleted_at IS NULL
    AND COALESCE(NULLIF(p.body,''), pt.transcript, '') != ''
  ORDER BY p.ts DESC, p.rowid DESC LIMIT ?)
ORDER BY m.ts DESC, m.rowid DESC LIMIT ?;)",
        { contactId, limit, limit });
    rows += ofKind(ActivityRow::Kind::Note,
        notes.rows(db, "WHERE contact_id=? AND deleted_at IS NULL ORDER BY ts DESC LIMIT ?;", { contactId, limit }));
    rows += ofKind(ActivityRow::Kind::Call,
        calls.rows(db, R"(WHERE contact_id=? AND deleted_at IS NULL
ORDER BY started_at DESC LIMIT ?;)",
            { contactId, limit }));
    std::ranges::sort(rows, std::ranges::greater(), &ActivityRow::ts);
    return rows.first(std::min<qsizetype>(rows.size(), limit));
}

QList<MemoryEntry> fetchMemoryEntries(LocalDB& db, const QString& scope)
{
    if (!db.tableExists(memoryTable))
        return {};
    return db.rows("SELECT id, body FROM work_memory_entries WHERE scope=? ORDER BY created_at ASC;", { scope },
        [](const SqlRow& row) { return MemoryEntry { row.text(0), row.text(1) }; });
}

QList<ScopedMemoryEntry> fetchAllMemoryEntries(LocalDB& db, int limit)
{
    if (!db.tableExists(memoryTable))
        return {};
    return db.rows(R"(SELECT m.id, m.scope, COALESCE(c.display_name,''), m.body
FROM work_memory_entries m LEFT JOIN contact c ON c.id=substr(m.scope, 9) AND c.deleted_at IS NULL
ORDER BY m.scope LIKE 'contact:%', c.display_name COLLATE NOCASE, m.scope, m.created_at LIMIT ?;)",
        { limit },
        [](const SqlRow& row) { return ScopedMemoryEntry { row.text(0), row.text(1), row.text(2), row.text(3) }; });
}

std::optional<ForgottenMemory> forgetMemoryEntry(LocalDB& db, const QString& id)
{
    if (!db.tableExists(memoryTable))
        return std::nullopt;
    const auto entry = db.firstRow("SELECT id, scope, body, created_at FROM work_memory_entries WHERE id=?;", { id },
        [](const SqlRow& row) { return ForgottenMemory { row.text(0), row.text(1), row.text(2), row.text(3) }; });
    return entry && db.run("DELETE FROM work_memory_entries WHERE id=?;", { id }) ? entry : std::nullopt;
}

bool keepMemoryEntry(LocalDB& db, const ForgottenMemory& entry)
{
    return db.tableExists(memoryTable)
        && db.run("INSERT INTO work_memory_entries(id, scope, body, created_at) VALUES(?,?,?,?);",
            { entry.id, entry.scope, entry.body, entry.createdAt });
}

}
