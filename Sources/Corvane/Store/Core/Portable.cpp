#include "Store/Core/Portable.h"

#include "Foundation/Literals.h"
#include "Store/Core/Upkeep.h"

namespace corvane {

namespace {

QString quoted(QString name)
{
    return u'"' + name.replace(u'"', u"\"\""_s) + u'"';
}

QString literal(QString text)
{
    return u'\'' + text.replace(u'\'', u"''"_s) + u'\'';
}

SqlValue valueOf(const QJsonValue& value)
{
    if (value.isString())
        return value.toString();
    if (!value.isDouble())
        return {};
    const qint64 whole = value.toInteger(0);
    return double(whole) == value.toDouble() ? SqlValue(whole) : SqlValue(value.toDouble());
}

}

const QList<PortableKind>& portableKinds()
{
    static const QList<PortableKind> kinds {
        { u"people"_s, u"contact"_s },
        { u"handles"_s, u"contact_identity"_s },
        { u"tags"_s, u"contact_tag"_s },
        { u"notes"_s, u"contact_note"_s },
        { u"conversations"_s, u"unified_conversation"_s },
        { u"messages"_s, u"unified_message"_s },
        { u"voice-notes"_s, u"audio_transcript"_s },
        { u"deals"_s, u"crm_deal"_s },
        { u"tasks"_s, u"crm_task"_s },
        { u"events"_s, u"calendar_event"_s },
        { u"calls"_s, u"call_recording"_s },
        { u"call-transcripts"_s, u"call_transcript"_s },
        { u"call-summaries"_s, u"call_summary"_s },
        { u"work-contexts"_s, u"work_context"_s },
        { u"work-items"_s, u"work_item"_s },
        { u"work-decisions"_s, u"work_decision"_s },
        { u"work-evidence"_s, u"work_evidence"_s },
        { u"work-knowledge"_s, u"work_memory"_s },
        { u"work-messages"_s, u"work_message"_s },
        { u"projects"_s, u"project"_s },
    };
    return kinds;
}

QStringList portableColumns(SqlConnection& db, const PortableKind& kind)
{
    return tableColumns(db).value(kind.table);
}

void visitPortable(
    SqlConnection& db, const PortableKind& kind, const std::function<bool(const QByteArray& json)>& visit)
{
    const QStringList columns = portableColumns(db, kind);
    if (columns.isEmpty())
        return;
    QStringList members;
    for (const QString& column : columns)
        members.append(literal(column) + u", "_s + quoted(column));
    QString sql = u"SELECT json_object(%1) FROM %2"_s.arg(members.join(u", "_s), quoted(kind.table));
    if (columns.contains(u"deleted_at"_s))
        sql += u" WHERE deleted_at IS NULL"_s;
    db.visitRows(sql + u" ORDER BY rowid;"_s, {}, [&](const SqlRow& row) { return visit(row.text(0).toUtf8()); });
}

bool addPortable(LocalDB& db, const PortableKind& kind, const QJsonObject& row)
{
    QStringList names;
    QList<SqlValue> values;
    for (const QString& column : portableColumns(db, kind)) {
        if (row.contains(column) && !row.value(column).isNull()) {
            names.append(quoted(column));
            values.append(valueOf(row.value(column)));
        }
    }
    if (names.isEmpty())
        return false;
    const QString marks = QStringList(names.size(), u"?"_s).join(u", "_s);
    return db.changedRows(
               u"INSERT OR IGNORE INTO %1(%2) VALUES(%3);"_s.arg(quoted(kind.table), names.join(u", "_s), marks),
               values)
        == 1;
}

}
