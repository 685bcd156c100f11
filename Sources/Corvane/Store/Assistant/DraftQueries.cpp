#include "Store/Assistant/DraftQueries.h"

#include "Foundation/Ids.h"
#include "Foundation/Literals.h"
#include "Foundation/Text.h"
#include "Store/Core/Table.h"
#include "Store/Core/Workspaces.h"
#include "Store/People/ContactInfo.h"

namespace corvane {

namespace {

const Table<DraftMetadataRow> metadata("draft_metadata",
    {
        { "id" },
        { "workspace_id" },
        { "contact_id", &DraftMetadataRow::contactId },
        { "conversation_id", &DraftMetadataRow::conversationId },
        { "intent", &DraftMetadataRow::intent },
        { "model", &DraftMetadataRow::model },
        { "prompt_ref", &DraftMetadataRow::promptRef },
        { "result_ref", &DraftMetadataRow::resultRef },
        { "used_message_ids" },
        { "warnings" },
        { "created_at" },
    });

/// One line per entry: an agent's text must not be able to start a new section.
void addSection(QStringList& sections, const QString& title, const QList<MemoryEntry>& entries)
{
    if (entries.isEmpty())
        return;
    QStringList lines { title };
    for (const MemoryEntry& entry : entries)
        lines.append(u"- "_s + promptLine(entry.body));
    sections.append(lines.join(u'\n'));
}

}

QString memorySnapshot(LocalDB& db, const std::optional<QString>& contactId)
{
    QStringList sections;
    db.exec(u"SAVEPOINT memory_snapshot;"_s); // a consistent snapshot of all sections
    addSection(sections, u"Business:"_s, fetchMemoryEntries(db, u"business"_s));
    addSection(sections, u"Owner:"_s, fetchMemoryEntries(db, u"owner"_s));
    if (contactId)
        addSection(sections, u"This contact:"_s, fetchMemoryEntries(db, u"contact:"_s + *contactId));
    db.exec(u"RELEASE memory_snapshot;"_s);
    if (sections.isEmpty())
        return {};
    return u"\n\nKNOWN CONTEXT (curated memory — treat as true, never contradict):\n"_s + sections.join(u'\n');
}

bool insertDraftMetadata(LocalDB& db, const DraftMetadataRow& row)
{
    const qint64 now = db.nowMs();
    return metadata.insert(db, row,
        { { "id", stampedId(u"dm"_s, now) }, { "workspace_id", activeWorkspaceId(db) },
            { "used_message_ids", jsonString(row.usedMessageIds) }, { "warnings", jsonString(row.warnings) },
            { "created_at", now } });
}

}
