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

/// The workspaces and integrations of the user's web account. The rows themselves are pulled by the tool server.
class WebSync : public QObject {
    Q_OBJECT
public:
    /// All references outlive the object.
    WebSync(SessionStore& session, LocalDB& db, Scheduler& scheduler, QObject* parent = nullptr);
    ~WebSync() override;

    const QList<WebIntegration>& integrations() const { return m_integrations; }
    const QList<WorkspaceRow>& workspaces() const { return m_workspaces; }
    const QString& selectedWorkspaceId() const { return m_selectedWorkspaceId; }
    bool selectionIsKnown() const; ///< whether the web still has the selected workspace
    std::optional<qint64> lastSyncedAt() const { return m_lastSyncedAt; } ///< milliseconds since the epoch
    bool syncing() const { return m_syncing; }
    const QString& lastError() const { return m_lastError; } ///< for the user; empty where there is none

    /// Shows what the database holds, and leaves a workspace without data. Part of the start; may run again.
    void takeUp();

    /// Asks the web. Of two that overlap the newer counts. A sign-in asks by itself.
    void refresh();

    /// The user's choice; what is selected then is not always `id`.
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
    std::optional<QString> m_token; ///< that the session had last
    bool m_syncing = false;
    bool m_attached = false; ///< the start has taken it up
    CancelHandle m_cancel; ///< of the refresh that runs
    NotificationCentre::Observation m_workspaceChanged;
    BackgroundQueue m_background; ///< goes first: nothing comes home any more
};

}
