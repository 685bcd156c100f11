#include "Shell/ProfileMenu.h"

#include "Shell/AppShell.h"
#include "Store/Core/Workspaces.h"
#include "Web/SessionStore.h"

namespace corvane {

namespace {

const QString openSettingsId = QStringLiteral("openSettings");
const QString signOutId = QStringLiteral("signOut");
const QString signInId = QStringLiteral("signIn");
const QString quitId = QStringLiteral("quit");

}

ProfileMenu::ProfileMenu(
    SessionStore& session, AppShell& shell, LocalDB& db, NotificationCentre& centre, QObject* parent)
    : QObject(parent)
    , m_session(session)
    , m_shell(shell)
    , m_db(db)
    , m_workspaceChanged(
          centre.observe(notifications::activeWorkspaceChanged, [this](const Notification&) { refresh(); }))
{
    connect(&m_session, &SessionStore::changed, this, &ProfileMenu::refresh);
}

QString ProfileMenu::displayLine() const
{
    return m_session.displayLine();
}

QString ProfileMenu::initial() const
{
    return m_session.userName() || m_session.email() ? m_session.initial() : QString();
}

bool ProfileMenu::signedIn() const
{
    return m_session.signedIn();
}

QList<Choice> ProfileMenu::actions() const
{
    const Choice quit { quitId, QStringLiteral("Quit Corvane") };
    if (!signedIn())
        return { { signInId, QStringLiteral("Sign in to Nimb") }, quit };
    return { { openSettingsId, QStringLiteral("Open Settings") }, { signOutId, QStringLiteral("Sign Out") }, quit };
}

void ProfileMenu::refresh()
{
    m_workspaces.clear();
    if (signedIn()) {
        const QString active = activeWorkspaceId(m_db, Repair::No);
        for (const WorkspaceRow& row : fetchWorkspaceRows(m_db))
            m_workspaces.append({ row.workspaceId, row.displayName(), row.workspaceId == active });
    }
    Q_EMIT changed();
}

void ProfileMenu::selectWorkspace(const QString& id)
{
    corvane::selectWorkspace(m_db, id);
    refresh();
}

void ProfileMenu::perform(const QString& actionId)
{
    if (actionId == openSettingsId)
        m_shell.openSettings();
    else if (actionId == signOutId)
        m_session.signOut();
    else if (actionId == signInId)
        m_session.startSignIn();
    else if (actionId == quitId)
        Q_EMIT m_shell.quitRequested();
}

}
