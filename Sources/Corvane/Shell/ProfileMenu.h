#pragma once

#include "Foundation/Literals.h"
#include "Foundation/NotificationCentre.h"
#include "Presentation/Choice.h"
#include "Presentation/Commands.h"
#include "Web/WorkspaceChoice.h"

namespace corvane {

class SessionStore;
class WebSync;

/// The menu behind the round profile button.
class ProfileMenu : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString displayLine READ displayLine NOTIFY changed)
    Q_PROPERTY(QString initial READ initial NOTIFY changed)
    Q_PROPERTY(bool signedIn READ signedIn NOTIFY changed)
    Q_PROPERTY(QString workspaceLabel READ workspaceLabel CONSTANT)
    /// For the submenu, a few if there are many; empty without a token.
    Q_PROPERTY(QList<corvane::WorkspaceChoice> workspaces READ workspaces NOTIFY changed)
    /// Below them; `perform` takes the id.
    Q_PROPERTY(QList<corvane::Choice> workspaceActions READ workspaceActions NOTIFY changed)
    /// In order below the submenu; `perform` takes the id.
    Q_PROPERTY(QList<corvane::Choice> actions READ actions NOTIFY changed)
public:
    /// All references outlive the menu.
    ProfileMenu(
        SessionStore& session, Commands& commands, WebSync& web, NotificationCentre& centre, QObject* parent = nullptr);

    QString displayLine() const;
    QString initial() const; ///< empty if there is no name to take it from
    bool signedIn() const;
    QString workspaceLabel() const { return u"Workspace"_s; }
    const QList<WorkspaceChoice>& workspaces() const { return m_workspaces; }
    QList<Choice> workspaceActions() const;
    QList<Choice> actions() const;

    Q_INVOKABLE void refresh(); ///< as the menu opens
    Q_INVOKABLE void selectWorkspace(const QString& id);
    Q_INVOKABLE void perform(const QString& actionId);

Q_SIGNALS:
    void changed();

private:
    SessionStore& m_session;
    Commands& m_commands;
    WebSync& m_web;
    NotificationCentre& m_centre;
    QList<WorkspaceChoice> m_workspaces;
};

}
