#include "Store/Assistant/DraftQueries.h"

#include "Foundation/Ids.h"
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

/// One line an entry: what an agent kept must not be able to open a section of its own.
void addSection(QStringList& sections, const QString& title, const QList<MemoryEntry>& entries)
{
    if (entries.isEmpty())
        return;
    QStringList lines { title };
    for (const MemoryEntry& entry : entries)
        lines.append(QStringLiteral("- ") + promptLine(entry.body));
    sections.append(lines.join(u'\n'));
}

}

QString memorySnapshot(LocalDB& db, const std::optional<QString>& contactId)
{
    QStringList sections;
    db.exec(QStringLiteral("SAVEPOINT memory_snapshot;")); // the sections are of one moment
    addSection(sections, QStringLiteral("Business:"), fetchMemoryEntries(db, QStringLiteral("business")));
    addSection(sections, QStringLiteral("Owner:"), fetchMemoryEntries(db, QStringLiteral("owner")));
    if (contactId)
        addSection(
            sections, QStringLiteral("This contact:"), fetchMemoryEntries(db, QStringLiteral("contact:") + *contactId));
    db.exec(QStringLiteral("RELEASE memory_snapshot;"));
    if (sections.isEmpty())
        return {};
    return QStringLiteral("\n\nKNOWN CONTEXT (curated memory — treat as true, never contradict):\n")
        + sections.join(u'\n');
}

bool insertDraftMetadata(LocalDB& db, const DraftMetadataRow& row)
{
    const qint64 now = db.nowMs();
    return metadata.insert(db, row,
        { { "id", stampedId(QStringLiteral("dm"), now) }, { "workspace_id", activeWorkspaceId(db) },
            { "used_message_ids", jsonString(row.usedMessageIds) }, { "warnings", jsonString(row.warnings) },
            { "created_at", now } });
}

}
