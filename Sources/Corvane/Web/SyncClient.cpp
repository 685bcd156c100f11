#include "Web/SyncClient.h"

#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Core/Transaction.h"
#include "Store/Core/Workspaces.h"
#include "Store/Sync/SyncQueries.h"
#include "Web/DryRun.h"
#include "Web/SessionStore.h"
#include "Web/SyncRun.h"
#include "Web/WebClient.h"

namespace corvane {

namespace {

const QString approvedKey = u"Corvane.pushApprovedFor"_s;

}

/// States that do not belong to a push.
struct SyncClient::Aside {
    static QCoro::Task<> lookUp(SyncClient* self, CancelHandle cancel, QString workspaceId)
    {
        const auto reader = std::make_shared<CloudReader>(self->m_db.path());
        using Read = Result<PushReview>;
        const auto read = co_await away<Read>(&self->m_background, cancel, [reader, workspaceId] {
            return reader->read<PushReview>(
                [&](SqlConnection& db) { return fetchPushReview(db, workspaceId, mostThreads); });
        });
        reader->stop();
        if (cancel.isCancelled())
            co_return;
        self->m_lookingUp = false;
        self->m_review = *read ? std::optional(**read) : std::nullopt;
        Q_EMIT self->reviewed();
    }

    static QCoro::Task<> dryRun(SyncClient* self, CancelHandle cancel, DryRun dry)
    {
        const auto reader = std::make_shared<CloudReader>(self->m_db.path());
        using Read = Result<QString>;
        const auto written = co_await away<Read>(&self->m_background, cancel, [reader, dry] {
            return reader->read<QString>([&](SqlConnection& db) { return corvane::writeDryRun(db, dry); });
        });
        reader->stop();
        if (cancel.isCancelled())
            co_return;
        self->m_writing = false;
        Q_EMIT self->changed();
        Q_EMIT self->dryRunWritten(dry.path, *written ? **written : written->error().message);
    }
};

SyncClient::SyncClient(SessionStore& session, LocalDB& db, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_session(session)
    , m_db(db)
    , m_defaults(db.defaults())
    , m_scheduler(scheduler)
    , m_client(std::make_unique<WebClient>(scheduler))
    , m_tell(scheduler, Milliseconds(100), [this] { Q_EMIT changed(); })
    , m_workspaceChanged(db.notifications().observe(notifications::activeWorkspaceChanged, [this](const Notification&) {
        if (m_review || m_lookingUp)
            lookUp(); // must be what a push would send
    }))
{
    connect(&m_session, &SessionStore::changed, this, [this] {
        if (m_run && m_session.token() != m_run->token)
            m_run->end(Run::Ended::SignedOut);
    });
}

SyncClient::~SyncClient()
{
    m_lookUp.cancel();
    m_end.cancel();
    if (m_run)
        m_run->end(Run::Ended::Gone);
}

QString SyncClient::statusLine() const
{
    const auto synced = [this] {
        return m_status.chats == 1 ? u"Synced 1 chat to the web"_s
                                   : u"Synced %1 chats to the web"_s.arg(m_status.chats);
    };
    switch (m_status.kind) {
    case Status::Kind::Idle:
        return u"Not synced yet"_s;
    case Status::Kind::Syncing:
        return u"Syncing…"_s;
    case Status::Kind::Done:
        return synced();
    case Status::Kind::Cancelled:
        return u"Cancelled. "_s + synced();
    case Status::Kind::WaitingForWeb:
        return m_status.text;
    case Status::Kind::Error:
        return u"Sync error: "_s + m_status.text;
    }
    return {};
}

QUrl SyncClient::target() const
{
    return webUrl(webBase(m_defaults), ingestBase());
}

QString SyncClient::ingestBase() const
{
    return m_defaults.text(u"nimb.corvaneBase"_s).value_or(u"/corvane/api/v1"_s);
}

QString SyncClient::agreedTarget() const
{
    const auto account = m_session.organizationId() ? m_session.organizationId() : m_session.email();
    return target().toString() + u' ' + account.value_or(QString());
}

bool SyncClient::isApproved() const
{
    return m_session.signedIn() && m_defaults.text(approvedKey) == agreedTarget();
}

void SyncClient::approve()
{
    m_defaults.setText(approvedKey, agreedTarget());
    m_defaults.synchronise();
    Q_EMIT changed();
}

void SyncClient::syncNow()
{
    start(What::Due);
}

void SyncClient::pushTheRest()
{
    start(What::LeftOut);
}

void SyncClient::start(What what)
{
    if (m_run)
        return;
    if (!m_attached || !m_session.signedIn()) {
        recordSkipped(u"sign in first"_s);
        setStatus({ Status::Kind::WaitingForWeb, u"Sign in first"_s });
        return;
    }
    if (!isApproved())
        return;
    m_progress = {};
    m_lastSyncedThreads = 0;
    m_lastSyncedMessages = 0;
    m_run = std::make_shared<Run>(*this);
    setStatus({ Status::Kind::Syncing, {} });
    Run::go(m_run, what);
}

void SyncClient::cancel()
{
    if (m_run)
        m_run->end(Run::Ended::Cancelled);
}

void SyncClient::lookUp()
{
    const QString workspaceId = activeWorkspaceId(m_db);
    m_lookUp.cancel();
    m_lookUp = {};
    // Nothing has been pushed to another service or account yet.
    if (!m_run && m_session.signedIn() && !isApproved() && m_defaults.text(approvedKey))
        startOver();
    m_lookingUp = true;
    Q_EMIT changed();
    Aside::lookUp(this, m_lookUp, workspaceId);
}

void SyncClient::writeDryRun(const QString& path)
{
    if (m_writing)
        return;
    m_writing = true;
    Q_EMIT changed();
    Aside::dryRun(this, m_end, { path, activeWorkspaceId(m_db), target().toString(), mostThreads, mostMessages });
}

void SyncClient::startOver()
{
    if (m_run)
        return;
    Transaction transaction(m_db, Patience::Frame);
    if (transaction.begun())
        forgetCloudCursors(m_db);
    if (!transaction.begun() || !transaction.commit())
        return setStatus({ Status::Kind::Error, u"Another program is writing to the database. Try again."_s });
    for (const QString& account : fetchCloudAccounts(m_db))
        m_defaults.remove(accountIdKey(account));
    m_defaults.remove(approvedKey);
    setStatus({});
}

void SyncClient::setStatus(const Status& status)
{
    m_status = status;
    Q_EMIT changed();
}

QString SyncClient::accountIdKey(const QString& slug)
{
    return u"nimb.cloudAccountId."_s + slug;
}

void SyncClient::recordSkipped(const QString& why)
{
    if (!m_attached)
        return;
    if (Transaction transaction(m_db, Patience::Frame); transaction.begun()) {
        recordSyncHealth(m_db, healthRow(u"skipped"_s, why, {}));
        if (transaction.commit())
            m_db.watch().tell(StoreSubject::Sync);
    }
}

SyncHealthRow SyncClient::healthRow(const QString& status, const QString& error, const QJsonObject& extra) const
{
    return { u"corvane_ingest"_s, status, {}, {}, m_newestMs,
        QString::fromUtf8(compactJson(bridgeHealthPayload(extra))), error };
}

QJsonObject SyncClient::bridgeHealthPayload(const QJsonObject& extra) const
{
    QJsonObject payload {
        { u"direction"_s, u"local_to_web"_s },
        { u"capability"_s, u"Local WhatsApp/Baileys account, chat, and message ingest"_s },
        { u"target"_s, u"web-corvane-ingest"_s },
        { u"accountsEndpoint"_s, ingestBase() + u"/accounts"_s },
        { u"chatsEndpoint"_s, ingestBase() + u"/chats"_s },
        { u"messagesEndpoint"_s, ingestBase() + u"/chats/{chatId}/messages"_s },
        { u"requiresOnlineDevice"_s, true },
    };
    for (auto entry = extra.begin(); entry != extra.end(); ++entry)
        payload[entry.key()] = entry.value();
    return payload;
}

}
