#pragma once

#include "Foundation/BackgroundQueue.h"
#include "Foundation/Cancellation.h"
#include "Foundation/NotificationCentre.h"
#include "Web/Bootstrap.h"

#include <QObject>

namespace corvane {

class Scheduler;
class SessionStore;
class WebClient;

/// The workspaces and integrations of the user's web account. The tool server pulls the rows themselves.
class WebSync : public QObject {
    Q_OBJECT
public:
    /// All references outlive the object.
    WebSync(SessionStore& session, LocalDB& db, Scheduler& scheduler, QObject* parent = nullptr);
    ~WebSync() override;

    const QList<WebIntegration>& integrations() const { return m_integrations; }
    const QList<WorkspaceRow>& workspaces() const { return m_workspaces; }
    const QString& selectedWorkspaceId() const { return m_selectedWorkspaceId; }
    bool selectionIsKnown() const; ///< whether the selected workspace still exists on the web
    std::optional<qint64> lastSyncedAt() const { return m_lastSyncedAt; } ///< milliseconds since the epoch
    bool syncing() const { return m_syncing; }
    const QString& lastError() const { return m_lastError; } ///< for the user; empty if there is none

    /// Shows what the database has, and leaves an empty workspace. Part of the start; may run again.
    void takeUp();

    /// Refreshes from the web. Of two overlapping calls the newer wins. Signing in refreshes automatically.
    void refresh();

    /// The user's choice; the result may differ from `id`.
    void selectWorkspace(const QString& id);

Q_SIGNALS:
    void changed();

private:
    struct Flow;

    void watchSession();
    void stop();
    void take(const BootstrapLists& lists);
    void fail(const WebSyncError& error);

    SessionStore& m_session;
    LocalDB& m_db;
    Scheduler& m_scheduler;
    std::unique_ptr<WebClient> m_client;
    QList<WebIntegration> m_integrations;
    QList<WorkspaceRow> m_workspaces;
    QString m_selectedWorkspaceId;
    std::optional<qint64> m_lastSyncedAt;
    QString m_lastError;
    std::optional<QString> m_token; ///< the session's last token
    bool m_syncing = false;
    bool m_attached = false; ///< the start sequence has run
    CancelHandle m_cancel; ///< of the refresh that runs
    NotificationCentre::Observation m_workspaceChanged;
    BackgroundQueue m_background; ///< destroyed first: no callbacks afterwards
};

}
