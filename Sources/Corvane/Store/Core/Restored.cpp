#include "Store/Core/Restored.h"

#include "Foundation/Literals.h"
#include "Store/Approvals/DraftApprovals.h"
#include "Store/Core/Transaction.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace corvane {

namespace {

struct PathColumn {
    const char* table;
    const char* column;
};

constexpr PathColumn pathColumns[] {
    { "unified_message", "media_path" },
    { "contact", "avatar_path" },
    { "audio_transcript", "audio_path" },
    { "call_recording", "audio_path" },
    { "call_recording", "mic_audio_path" },
    { "call_recording", "system_audio_path" },
    { "call_recording", "mixed_audio_path" },
    { "dev_browser_session", "last_capture_path" },
};

/// How the path of a file below the folder begins in the files of a draft.
QString pathMember(const QString& folder)
{
    const QByteArray object
        = QJsonDocument(QJsonObject { { u"path"_s, folder + u'/' } }).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(object.sliced(1, object.size() - 3)); // without the braces and the last quote
}

}

bool settleRestored(LocalDB& db)
{
    Transaction transaction(db);
    const QString reason = u"The profile was restored from a backup."_s;
    return transaction.begun() && failRestoredDrafts(db)
        && db.run("UPDATE ai_requests SET status='error', error=?, completed_at=? "
                  "WHERE status IN ('pending','processing');",
            { reason, db.nowMs() })
        && db.run("UPDATE sync_command SET status='failed', error=?, finished_at=? "
                  "WHERE status IN ('pending','running','processing');",
            { reason, db.nowMs() })
        && db.run("UPDATE calendar_command SET status='failed', error=?, updated_at=? WHERE status='pending';",
            { reason, db.nowMs() })
        && transaction.commit();
}

bool moveFilePaths(LocalDB& db, const QString& from, const QString& to)
{
    if (from == to)
        return true;
    Transaction transaction(db);
    bool done = transaction.begun();
    for (const auto& [table, column] : pathColumns) {
        if (!db.columnExists(QLatin1StringView(table), QLatin1StringView(column)))
            continue;
        const QString sql = u"UPDATE %1 SET %2 = ?1 || substr(%2, length(?2)) "
                            "WHERE substr(%2, 1, length(?2)) = ?2;"_s;
        done = done && db.run(sql.arg(QLatin1StringView(table), QLatin1StringView(column)), { to, from + u'/' });
    }
    done = done
        && db.run("UPDATE outbound_draft SET files = replace(files, ?, ?) WHERE files IS NOT NULL;",
            { pathMember(from), pathMember(to) });
    return done && transaction.commit();
}

}
