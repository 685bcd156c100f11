#include "Web/WebSync.h"

#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"
#include "Web/Away.h"
#include "Web/SessionStore.h"
#include "Web/WebClient.h"

#include <QPointer>
#include <algorithm>

namespace corvane {

/// A refresh goes on only while its handle is the newest one's and nobody cancelled it.
struct WebSync::Flow {
    QPointer<WebSync> owner;
    CancelHandle cancel;

    static QCoro::Task<> refresh(Flow flow, QString token)
    {
        WebSync* const self = flow.owner;
        const UserDefaults& defaults = self->m_db.defaults();
        const QString path = defaults.text(u"nimb.bootstrapPath"_s).value_or(u"/api/auth/companion/bootstrap"_s);
        const QUrl url = webUrl(webBase(defaults), path);
        if (!url.isValid())
            co_return self->fail({ u"Bad URL "_s + path });
        const Result<HttpReply> reply = co_await self->m_client->get(url, token, flow.cancel);
        if (flow.cancel.isCancelled())
            co_return;
        if (!reply)
            co_return self->fail({ reply.error().message });
        using Outcome = std::expected<BootstrapLists, WebSyncError>;
        const std::optional<Outcome> read = co_await away<Outcome>(&self->m_background, flow.cancel,
            [status = reply->status, body = reply->body, path] { return readBootstrap(status, body, path); });
        if (flow.cancel.isCancelled())
            co_return;
        if (!*read)
            co_return self->fail(read->error());
        self->take(**read);
    }
};

WebSync::WebSync(SessionStore& session, LocalDB& db, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_session(session)
    , m_db(db)
    , m_scheduler(scheduler)
    , m_client(std::make_unique<WebClient>(scheduler))
    , m_selectedWorkspaceId(db.defaults().text(u"nimb.activeWorkspaceId"_s).value_or(QString()))
    , m_token(session.token())
    , m_workspaceChanged(db.notifications().observe(notifications::activeWorkspaceChanged, [this](const Notification&) {
        m_selectedWorkspaceId = activeWorkspaceId(m_db, Repair::No);
        Q_EMIT changed();
    }))
{
    connect(&m_session, &SessionStore::changed, this, &WebSync::watchSession);
}

WebSync::~WebSync()
{
    m_cancel.cancel();
}

bool WebSync::selectionIsKnown() const
{
    return std::ranges::find(m_workspaces, m_selectedWorkspaceId, &WorkspaceRow::workspaceId) != m_workspaces.end();
}

void WebSync::watchSession()
{
    if (m_token == m_session.token())
        return;
    m_token = m_session.token();
    stop();
    m_lastError.clear();
    if (m_token && m_attached)
        refresh();
    else
        Q_EMIT changed();
}

void WebSync::stop()
{
    m_cancel.cancel();
    m_syncing = false;
}

void WebSync::takeUp()
{
    m_attached = true;
    m_workspaces = fetchWorkspaceRows(m_db);
    m_selectedWorkspaceId = activeWorkspaceId(m_db, Repair::IfNeeded);
    Q_EMIT changed();
}

void WebSync::refresh()
{
    stop();
    if (!m_session.signedIn()) {
        m_lastError = u"Sign in first"_s;
        Q_EMIT changed();
        return;
    }
    m_syncing = true;
    m_lastError.clear();
    m_cancel = {};
    Q_EMIT changed();
    Flow::refresh({ this, m_cancel }, *m_session.token());
}

void WebSync::take(const BootstrapLists& lists)
{
    m_selectedWorkspaceId = storeWorkspaceRows(m_db, lists.workspaces, lists.preferredWorkspaceId);
    m_workspaces = lists.workspaces;
    m_integrations = lists.integrations;
    m_lastSyncedAt = m_scheduler.nowMs();
    m_syncing = false;
    m_session.setWebRejected(false);
    Q_EMIT changed();
}

void WebSync::fail(const WebSyncError& error)
{
    m_lastError = error.message;
    m_syncing = false;
    if (error.isRejected)
        m_session.setWebRejected(true);
    Q_EMIT changed();
}

void WebSync::selectWorkspace(const QString& id)
{
    m_selectedWorkspaceId = corvane::selectWorkspace(m_db, id);
    Q_EMIT changed();
}

}
