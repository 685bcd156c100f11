#include "Store/Work/MeetingPrepQueries.h"

#include "Foundation/Literals.h"
#include "Store/Core/Workspaces.h"
#include "Store/People/CrmRecords.h"
#include "Store/Work/WorkTables.h"
#include "Store/Work/WorkWrites.h"

#include <QStringList>

namespace corvane {

namespace {

constexpr qsizetype shownNotes = 3;
const QString module = u"gtm"_s;

const Table<MeetingPrepCacheRow> meetingPrep("meeting_prep_cache",
    {
        { "event_id", &MeetingPrepCacheRow::eventId },
        { "workspace_id" },
        { "title", &MeetingPrepCacheRow::title },
        { "raw_brief", &MeetingPrepCacheRow::rawBrief },
        { "ai_summary", &MeetingPrepCacheRow::aiSummary },
        { "model", &MeetingPrepCacheRow::model },
        { "generated_at", &MeetingPrepCacheRow::generatedAt },
    });

/// "%acme%" for somebody at acme.example.
QString companyPattern(const QString& email)
{
    QString word = email.section(u'@', 1).section(u'.', 0, 0).toLower();
    word.remove(u'%').remove(u'_');
    return word.isEmpty() ? QString() : u'%' + word + u'%';
}

}

std::optional<MeetingPrepCacheRow> fetchMeetingPrepCache(LocalDB& db, const QString& eventId)
{
    return meetingPrep.first(db, u"WHERE event_id=? LIMIT 1;"_s, { eventId });
}

bool storeMeetingPrep(LocalDB& db, const MeetingPrepCacheRow& row)
{
    return db.tableExists(meetingPrep.name())
        && meetingPrep.insert(db, row, { { "workspace_id", activeWorkspaceId(db) } }, R"(
ON CONFLICT(event_id) DO UPDATE SET workspace_id=excluded.workspace_id, title=excluded.title,
  raw_brief=excluded.raw_brief, ai_summary=excluded.ai_summary, model=excluded.model,
  generated_at=excluded.generated_at)");
}

std::optional<QString> attendeeContact(LocalDB& db, const QString& email, const QString& name)
{
    if (!email.isEmpty()) {
        if (const auto id = db.scalar(u"SELECT contact_id FROM contact_identity WHERE deleted_at IS NULL AND "
                                      "lower(email)=? LIMIT 1;"_s,
                { email.toLower() }))
            return id;
    }
    return db.scalar(
        u"SELECT id FROM contact WHERE deleted_at IS NULL AND lower(display_name)=lower(?) LIMIT 1;"_s, { name });
}

std::optional<AttendeeBrief> meetingBrief(LocalDB& db, const QString& email, const QString& name)
{
    const std::optional<QString> contact = attendeeContact(db, email, name);
    if (!contact)
        return std::nullopt;
    AttendeeBrief brief;
    brief.contactId = *contact;
    brief.name = db.scalar(u"SELECT display_name FROM contact WHERE id=?;"_s, { *contact }).value_or(QString());
    if (brief.name.isEmpty())
        brief.name = name;
    brief.lastMessage = db.scalar(uR"(SELECT COALESCE(m.body,'') FROM unified_message m
JOIN unified_conversation c ON c.id=m.conversation_id
WHERE c.contact_id=? AND m.deleted_at IS NULL AND m.body<>''
ORDER BY m.ts DESC LIMIT 1;)"_s,
                              { *contact })
                            .value_or(u"No local messages yet."_s);
    brief.lastTouch = db.scalar(uR"(SELECT COALESCE(MAX(c.last_ts),0) FROM unified_conversation c
WHERE c.contact_id=? AND c.deleted_at IS NULL;)"_s,
                            { *contact })
                          .value_or(QString())
                          .toLongLong();
    std::optional<QString> deal;
    if (const QString company = companyPattern(email); !company.isEmpty())
        deal = db.scalar(uR"(SELECT name || COALESCE(' · ' || NULLIF(stage,''), '') FROM crm_deal
WHERE workspace_id=? AND deleted_at IS NULL AND lower(COALESCE(company,'')) LIKE ?
ORDER BY updated_at DESC LIMIT 1;)"_s,
            { activeWorkspaceId(db), company });
    brief.openDeal = deal.value_or(u"No open deal found in LocalDB."_s);
    QStringList notes;
    for (const NoteRow& note : fetchNotes(db, *contact).mid(0, shownNotes))
        notes.append(note.body);
    brief.notes = notes.isEmpty() ? u"No local notes yet."_s : notes.join(u'\n');
    return brief;
}

QString outboundReviewId(const QString& eventId)
{
    return u"dec:native:%1:%2"_s.arg(module, eventId.toLower());
}

std::optional<QString> proposeOutboundReview(
    LocalDB& db, const QString& eventId, const QString& title, const QString& summary)
{
    if (!db.tableExists(workContexts.name()) || !db.tableExists(workDecisions.name()))
        return std::nullopt;
    const auto context = upsertWorkContext(db,
        { .module = module,
            .kind = u"meeting"_s,
            .slug = u"meeting-"_s + eventId.toLower(),
            .title = title,
            .subtitle = {},
            .owner = u"Oskel"_s });
    if (!context)
        return std::nullopt;
    const QString id = outboundReviewId(eventId);
    const WorkDecisionRecord decision { .id = id,
        .contextId = context->id,
        .module = module,
        .title = u"Review outbound follow-up for "_s + title,
        .status = u"proposed"_s,
        .proposal = u"Prepare a draft/work item from the meeting prep brief only. Do not send anything until "
                    "approved.\n\n"_s
            + summary,
        .rationale = u"Meeting prep mentioned a possible outbound action. Corvane gates external communication "
                     "through Approvals."_s,
        .risk = u"external"_s,
        .decidedBy = {},
        .updatedAt = isoTime(db.nowMs()) };
    if (!workDecisions.insert(db, decision, { { "created_at", decision.updatedAt } }, "\nON CONFLICT(id) DO NOTHING"))
        return std::nullopt;
    return fetchWorkDecision(db, id).transform([](const WorkDecisionRecord& saved) { return saved.id; });
}

}
