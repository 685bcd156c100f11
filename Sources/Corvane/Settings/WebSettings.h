#pragma once

#include "Web/WorkspaceChoice.h"

namespace corvane {

class Scheduler;
class SessionStore;
class WebSync;

/// A channel or shop connected to the web account.
class IntegrationLine {
    Q_GADGET
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString detail MEMBER detail)
    Q_PROPERTY(QString state MEMBER state)
    Q_PROPERTY(bool connected MEMBER connected)
public:
    QString name;
    QString detail; ///< such as "Instagram · meta"
    QString state;
    bool connected = false;

    bool operator==(const IntegrationLine&) const = default;
};

/// The web account's workspaces, one of which is in use, and its integrations.
class WebSettings : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool signedIn READ signedIn NOTIFY changed)
    Q_PROPERTY(bool busy READ busy NOTIFY changed)
    Q_PROPERTY(QString stateText READ stateText NOTIFY changed)
    Q_PROPERTY(bool failed READ failed NOTIFY changed)
    Q_PROPERTY(QString workspaceText READ workspaceText NOTIFY changed) ///< the one in use
    Q_PROPERTY(QString workspaceHint READ workspaceHint NOTIFY changed)
    Q_PROPERTY(bool searchable READ searchable NOTIFY changed) ///< more than the list shows
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY changed)
    Q_PROPERTY(QList<corvane::WorkspaceChoice> workspaces READ workspaces NOTIFY changed) ///< that match the query
    Q_PROPERTY(QString moreText READ moreText NOTIFY changed) ///< empty if the list shows all of them
    Q_PROPERTY(QList<corvane::IntegrationLine> integrations READ integrations NOTIFY changed)
    Q_PROPERTY(QString emptyIntegrationsText READ emptyIntegrationsText NOTIFY changed)
public:
    /// All references outlive the view model.
    WebSettings(SessionStore& session, WebSync& web, Scheduler& scheduler, QObject* parent = nullptr);

    bool signedIn() const;
    bool busy() const;
    QString stateText() const;
    bool failed() const;
    QString workspaceText() const;
    QString workspaceHint() const;
    bool searchable() const;
    const QString& query() const { return m_query; }
    void setQuery(const QString& query);
    const QList<WorkspaceChoice>& workspaces() const { return m_workspaces; }
    QString moreText() const;
    QList<IntegrationLine> integrations() const;
    QString emptyIntegrationsText() const;

    Q_INVOKABLE void refresh();
    Q_INVOKABLE void choose(const QString& workspaceId);

Q_SIGNALS:
    void changed();

private:
    void search();
    QString nameOf(const QString& workspaceId) const;

    SessionStore& m_session;
    WebSync& m_web;
    Scheduler& m_scheduler;
    QString m_query;
    QList<WorkspaceChoice> m_workspaces;
    qsizetype m_found = 0; ///< that match the query
    QString m_refused; ///< why another workspace than the chosen one is in use
};

}
