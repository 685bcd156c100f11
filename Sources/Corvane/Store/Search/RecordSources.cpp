#include "Store/Search/RecordSources.h"

#include "Foundation/Literals.h"

namespace corvane {

namespace {

/// An excerpt of a long text, around the words if it contains them.
#define PIECE(column)                                                                                                  \
    "CASE WHEN instr(lower(" column "), lower(?4)) > 61 THEN char(8230) ELSE '' END || "                               \
    "substr(" column ", max(1, instr(lower(" column "), lower(?4)) - 60), 300)"

const QString ofPerson = u"LEFT JOIN contact p ON p.id=r.contact_id"_s;
const QString living = u"\nWHERE r.workspace_id=?1 AND r.deleted_at IS NULL"_s;
const QString person = u"p.display_name"_s;

/// Work records store ISO 8601 times.
constexpr const char* workTime = "COALESCE(CAST(strftime('%s', r.updated_at) AS INTEGER), 0) * 1000";

RecordSource call()
{
    return { SearchGroup::Calls,
        { "call_recording r",
            {
                { "'call'", &FoundRecord::kind },
                { "r.id", &FoundRecord::id },
                { "r.contact_id", &FoundRecord::personId, "''" },
                { "r.title", &FoundRecord::title, "''" },
                { "p.display_name", &FoundRecord::detail, "''" },
                { PIECE("s.summary"), &FoundRecord::text, "''" },
                { "r.started_at", &FoundRecord::ts },
            } },
        ofPerson + u"\nLEFT JOIN call_summary s ON s.call_id=r.id"_s + living, { u"r.title"_s, u"s.summary"_s, person },
        { person }, { u"r.title"_s }, u"r.started_at"_s, u"ORDER BY r.started_at DESC, r.rowid DESC"_s };
}

/// For a call, the first part that contains the words.
RecordSource transcript()
{
    const auto firstPart = uR"(JOIN call_transcript t ON t.rowid=(SELECT rowid FROM call_transcript
  WHERE call_id=r.id AND text LIKE ?5 ESCAPE '\' ORDER BY segment_index LIMIT 1)
)"_s;
    return { SearchGroup::Transcripts,
        { "call_recording r",
            {
                { "'transcript'", &FoundRecord::kind },
                { "r.id", &FoundRecord::id },
                { "r.contact_id", &FoundRecord::personId, "''" },
                { "r.title", &FoundRecord::title, "''" },
                { "p.display_name", &FoundRecord::detail, "''" },
                { PIECE("t.text"), &FoundRecord::text },
                { "r.started_at", &FoundRecord::ts },
            } },
        firstPart + ofPerson + living, { u"t.text"_s }, { person }, { u"r.title"_s }, u"r.started_at"_s,
        u"ORDER BY r.started_at DESC, t.segment_index, r.id"_s };
}

RecordSource note()
{
    return { SearchGroup::Notes,
        { "contact_note r",
            {
                { "'note'", &FoundRecord::kind },
                { "r.id", &FoundRecord::id },
                { "r.contact_id", &FoundRecord::personId },
                { "COALESCE(p.display_name, r.contact_id)", &FoundRecord::title },
                { PIECE("r.body"), &FoundRecord::text },
                { "r.ts", &FoundRecord::ts },
            } },
        ofPerson + u"\nWHERE r.deleted_at IS NULL"_s, { u"r.body"_s }, { person }, { person }, u"r.ts"_s,
        u"ORDER BY r.ts DESC, r.rowid DESC"_s };
}

RecordSource deal()
{
    return { SearchGroup::Deals,
        { "crm_deal r",
            {
                { "'deal'", &FoundRecord::kind },
                { "r.id", &FoundRecord::id },
                { "r.contact_id", &FoundRecord::personId, "''" },
                { "r.name", &FoundRecord::title },
                { "r.stage", &FoundRecord::detail, "''" },
                { "COALESCE(NULLIF(r.company,''), p.display_name)", &FoundRecord::text, "''" },
                { "r.updated_at", &FoundRecord::ts },
            } },
        ofPerson + living, { u"r.name"_s, u"r.company"_s, person }, { person }, { u"r.stage"_s, person },
        u"r.updated_at"_s, u"ORDER BY r.updated_at DESC, r.rowid DESC"_s };
}

RecordSource task()
{
    return { SearchGroup::Tasks,
        { "crm_task r",
            {
                { "'task'", &FoundRecord::kind },
                { "r.id", &FoundRecord::id },
                { "r.contact_id", &FoundRecord::personId, "''" },
                { "r.title", &FoundRecord::title },
                { "r.status", &FoundRecord::detail },
                { "COALESCE(p.display_name, r.due)", &FoundRecord::text, "''" },
                { "r.updated_at", &FoundRecord::ts },
            } },
        ofPerson + living, { u"r.title"_s, person }, { person }, { person }, u"r.updated_at"_s,
        u"ORDER BY r.updated_at DESC, r.rowid DESC"_s };
}

/// For a series, the nearest instance.
RecordSource event()
{
    return { SearchGroup::Events,
        { "calendar_event r",
            {
                { "'event'", &FoundRecord::kind },
                { "r.id", &FoundRecord::id },
                { "r.title", &FoundRecord::title },
                { "r.calendar", &FoundRecord::detail, "''" },
                { "COALESCE(NULLIF(r.location,''), " PIECE("r.notes") ")", &FoundRecord::text, "''" },
                { "r.start_ms", &FoundRecord::ts },
            } },
        u"WHERE r.workspace_id=?1"_s, { u"r.title"_s, u"r.location"_s, u"r.notes"_s, u"r.attendees_json"_s },
        { u"r.attendees_json"_s }, { u"r.calendar"_s, u"r.location"_s }, u"r.start_ms"_s,
        u"GROUP BY r.title ORDER BY min(abs(r.start_ms - ?2))"_s };
}

/// The modules that have a hub.
const QString shownModule = u"r.module IN ('lumo','gtm','cx','ops','dev')"_s;

RecordSource work(const char* table, std::initializer_list<Column<FoundRecord>> columns, const QString& joins,
    const QStringList& words, const QStringList& people = {},
    const QStringList& places = { u"r.module"_s, u"c.title"_s }, const char* time = workTime)
{
    return { SearchGroup::Work, { table, columns }, joins, words, people, places, QString::fromLatin1(time),
        u"ORDER BY "_s + QString::fromLatin1(time) + u" DESC, r.rowid DESC"_s };
}

const QString ofContext = u"LEFT JOIN work_context c ON c.id=r.context_id\nWHERE "_s;

QList<RecordSource> workSources()
{
    constexpr const char* asked = "COALESCE(CAST(strftime('%s', r.ts) AS INTEGER), 0) * 1000";
    return {
        work("work_context r",
            {
                { "'context'", &FoundRecord::kind },
                { "r.id", &FoundRecord::id },
                { "r.module", &FoundRecord::module },
                { "r.id", &FoundRecord::contextId },
                { "r.title", &FoundRecord::title },
                { "r.module", &FoundRecord::detail },
                { "r.subtitle", &FoundRecord::text, "''" },
                { workTime, &FoundRecord::ts },
            },
            u"WHERE "_s + shownModule, { u"r.title"_s, u"r.subtitle"_s }, { u"r.owner"_s },
            { u"r.module"_s, u"r.title"_s }),
        work("work_item r",
            {
                { "'item'", &FoundRecord::kind },
                { "r.id", &FoundRecord::id },
                { "r.module", &FoundRecord::module },
                { "r.context_id", &FoundRecord::contextId, "''" },
                { "r.title", &FoundRecord::title },
                { "r.status", &FoundRecord::detail },
                { PIECE("r.summary"), &FoundRecord::text, "''" },
                { workTime, &FoundRecord::ts },
            },
            ofContext + shownModule, { u"r.title"_s, u"r.summary"_s }, { u"r.owner"_s }),
        work("work_decision r",
            {
                { "'decision'", &FoundRecord::kind },
                { "r.id", &FoundRecord::id },
                { "r.module", &FoundRecord::module },
                { "r.context_id", &FoundRecord::contextId, "''" },
                { "r.title", &FoundRecord::title },
                { "r.status", &FoundRecord::detail },
                { PIECE("r.proposal"), &FoundRecord::text, "''" },
                { workTime, &FoundRecord::ts },
            },
            ofContext + u'1', { u"r.title"_s, u"r.proposal"_s, u"r.rationale"_s }, { u"r.decided_by"_s }),
        work("ask r",
            {
                { "'ask'", &FoundRecord::kind },
                { "r.id", &FoundRecord::id },
                { "substr(r.question,1,200)", &FoundRecord::title },
                { "r.status", &FoundRecord::detail },
                { "substr(r.answer,1,300)", &FoundRecord::text, "''" },
                { asked, &FoundRecord::ts },
            },
            u"LEFT JOIN project c ON c.id=r.project_id\nWHERE 1"_s, { u"r.question"_s, u"r.answer"_s },
            { u"r.answered_by"_s }, { u"c.name"_s }, asked),
        work("project r",
            {
                { "'project'", &FoundRecord::kind },
                { "r.id", &FoundRecord::id },
                { "r.name", &FoundRecord::title },
                { "r.status", &FoundRecord::detail },
                { "substr(r.goal,1,300)", &FoundRecord::text, "''" },
                { workTime, &FoundRecord::ts },
            },
            u"WHERE 1"_s, { u"r.name"_s, u"r.goal"_s }, {}, { u"r.name"_s }),
    };
}

}

const QList<RecordSource>& recordSources()
{
    static const QList<RecordSource> sources
        = QList<RecordSource> { call(), transcript(), note(), deal(), task(), event() } + workSources();
    return sources;
}

}
