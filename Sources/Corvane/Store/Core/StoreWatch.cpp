#include "Store/Core/StoreWatch.h"

#include "Foundation/Literals.h"
#include "Store/Core/LocalDB.h"
#include "Store/Search/MessageChanges.h"

#include <QStringList>

namespace corvane {

namespace {

constexpr Milliseconds period { 1000 };

constexpr int comparedRows = 200;

/// Single-column queries whose rows are everything that is read of the subject; none if there are many.
QStringList rowsOf(StoreSubject subject)
{
    const QString workspace = u"SELECT workspace_id FROM sync_workspace_selection WHERE key='active';"_s;
    switch (subject) {
    case StoreSubject::Drafts:
        return { workspace,
            u"SELECT json_array(id, workspace_id, conversation_id, channel, account_id, external_id, title, body, "
            "status, source, web_ack_status, provider_msg_id, error, subject, files, created_at) FROM outbound_draft "
            "WHERE status IN ('pending','approved','sending','placed','failed');"_s };
    case StoreSubject::Approvals:
        return { workspace, u"SELECT MAX(seq) FROM approval_record;"_s,
            u"SELECT json_array(id, workspace_id, call_id, contact_id, deal_id, kind, title, payload_json, "
            "confidence, created_at, error) FROM crm_update_proposal WHERE status='pending';"_s,
            u"SELECT json_array(id, context_id, module, title, proposal, rationale, risk, decided_by, updated_at) "
            "FROM work_decision WHERE status='proposed';"_s };
    case StoreSubject::Requests:
        return { u"SELECT id FROM ai_requests WHERE status='pending';"_s };
    case StoreSubject::Sync:
        return { workspace,
            u"SELECT json_array(source, status, last_started_at, last_finished_at, cursor, counts_json, last_error) "
            "FROM sync_health;"_s };
    case StoreSubject::Messages:
    case StoreSubject::Work:
    case StoreSubject::Calendar:
        return {};
    }
    return {};
}

}

StoreWatch::StoreWatch(LocalDB& db, Scheduler& scheduler)
    : m_db(db)
    , m_scheduler(scheduler)
    , m_messageChanges(std::make_unique<MessageChanges>())
{
}

StoreWatch::~StoreWatch() = default;

void StoreWatch::start()
{
    if (m_timer)
        return;
    changedSubjects(); // the current state is not a change
    m_timer = m_scheduler.every(period, [this] {
        for (const StoreSubject subject : changedSubjects())
            Q_EMIT changed(subject);
    });
}

void StoreWatch::on(StoreSubject subject, QObject* context, const std::function<void()>& callback)
{
    connect(this, &StoreWatch::changed, context, [subject, callback](StoreSubject changed) {
        if (changed == subject)
            callback();
    });
}

QList<StoreSubject> StoreWatch::changedSubjects()
{
    if (!m_db.isSound() || m_db.inTransaction())
        return {};
    const QString version = m_db.scalar(u"PRAGMA data_version;"_s).value_or(QString());
    if (std::exchange(m_version, version) == version)
        return {};
    QList<StoreSubject> subjects { StoreSubject::Messages, StoreSubject::Drafts, StoreSubject::Approvals,
        StoreSubject::Requests, StoreSubject::Work, StoreSubject::Calendar, StoreSubject::Sync };
    subjects.removeIf([this](StoreSubject subject) { return isUnchanged(subject); });
    return subjects;
}

bool StoreWatch::isUnchanged(StoreSubject subject)
{
    const QStringList queries = rowsOf(subject);
    if (queries.isEmpty())
        return false;
    QByteArray rows;
    int count = 0;
    for (const QString& query : queries) {
        m_db.visitRows(query, {}, [&](const SqlRow& row) {
            rows += row.text(0).toUtf8() + '\n';
            return ++count <= comparedRows;
        });
        rows += '\n';
    }
    return std::exchange(m_seen[subject], rows) == rows && count <= comparedRows;
}

}
