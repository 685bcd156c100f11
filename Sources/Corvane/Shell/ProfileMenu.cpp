#include "Shell/ProfileMenu.h"

#include "Foundation/Literals.h"
#include "Web/SessionStore.h"
#include "Web/WebSync.h"

namespace corvane {

namespace {

const QString refreshId = u"refreshWorkspaces"_s;
const QString allId = u"allWorkspaces"_s;
constexpr qsizetype shownWorkspaces = 20; // what fits a menu

}

ProfileMenu::ProfileMenu(
    SessionStore& session, Commands& commands, WebSync& web, NotificationCentre& centre, QObject* parent)
    : QObject(parent)
    , m_session(session)
    , m_commands(commands)
    , m_web(web)
    , m_centre(centre)
{
    connect(&m_session, &SessionStore::changed, this, &ProfileMenu::refresh);
    connect(&m_web, &WebSync::changed, this, &ProfileMenu::refresh);
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
    const QStringList ids = signedIn() ? QStringList { u"openSettings"_s, u"signOut"_s, u"quit"_s }
                                       : QStringList { u"signIn"_s, u"quit"_s };
    QList<Choice> actions;
    for (const QString& id : ids) {
        if (const Command* const command = m_commands.find(id))
            actions.append({ id, command->menu });
    }
    return actions;
}

QList<Choice> ProfileMenu::workspaceActions() const
{
    QList<Choice> actions { { refreshId, m_web.syncing() ? u"Asking the web…"_s : u"Ask the web again"_s } };
    if (m_web.workspaces().size() > m_workspaces.size())
        actions.append({ allId, u"All workspaces…"_s });
    return actions;
}

void ProfileMenu::refresh()
{
    m_workspaces.clear();
    if (signedIn()) {
        for (const WorkspaceRow& row : m_web.workspaces()) {
            const bool selected = row.workspaceId == m_web.selectedWorkspaceId();
            if (selected || m_workspaces.size() < shownWorkspaces)
                m_workspaces.append({ row.workspaceId, row.displayName(), selected });
        }
    }
    Q_EMIT changed();
}

void ProfileMenu::selectWorkspace(const QString& id)
{
    m_web.selectWorkspace(id);
}

void ProfileMenu::perform(const QString& actionId)
{
    if (actionId == refreshId)
        m_web.refresh();
    else if (actionId == allId)
        m_centre.post(notifications::openSettings, u"sync"_s);
    else
        m_commands.run(actionId);
}

}
