#include "Shell/AppShell.h"

#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"
#include "Shell/Hubs.h"

namespace corvane {

namespace {

const QString selectedNavKey = u"nimb.selectedNav"_s;
const QString inboxId = u"inbox"_s;

int hubOr(const QString& id, const QString& other)
{
    const int hub = hubIndex(id);
    return hub >= 0 ? hub : hubIndex(other);
}

}

AppShell::AppShell(NotificationCentre& centre, UserDefaults& defaults, QObject* parent)
    : QObject(parent)
    , m_defaults(defaults)
    , m_hub(hubOr(defaults.text(selectedNavKey).value_or(QString()), inboxId))
{
    m_hubs.setSelected(m_hub);
    m_openConversation = centre.observe(
        notifications::openConversation, [this](const Notification&) { show(hubIndex(inboxId), Cover::None); });
    // Selects the hub, too, so that closing the settings after such a jump shows the inbox.
    m_openSettings = centre.observe(
        notifications::openSettings, [this](const Notification&) { show(hubIndex(inboxId), Cover::Settings); });
    m_openWorkConsole = centre.observe(notifications::openWorkConsole, [this](const Notification& notification) {
        show(hubOr(notification.object.value_or(QString()), u"dev"_s), Cover::None);
    });
    m_openApprovals = centre.observe(notifications::openApprovals, [this](const Notification&) { openApprovals(); });
    // Clicking the banner itself means: read before deciding.
    m_approvalPressed = centre.observe(notifications::approvalAction, [this](const Notification& notification) {
        if (notification.userInfo.value(u"action"_s) == u"open"_s)
            openApprovals();
    });
}

QString AppShell::selectedNav() const
{
    return hubTable().at(m_hub).id;
}

QUrl AppShell::page() const
{
    return hubTable().at(m_hub).page;
}

void AppShell::selectHub(const QString& raw)
{
    if (const int hub = hubIndex(raw); hub >= 0)
        show(hub, Cover::None);
}

void AppShell::toggleSettings()
{
    show(m_hub, settings() ? Cover::None : Cover::Settings);
}

void AppShell::openSettings()
{
    show(m_hub, Cover::Settings);
}

void AppShell::toggleApprovals()
{
    show(m_hub, approvals() ? Cover::None : Cover::Approvals);
}

void AppShell::openApprovals()
{
    show(m_hub, Cover::Approvals);
}

void AppShell::toggleCalls()
{
    show(m_hub, calls() ? Cover::None : Cover::Calls);
}

void AppShell::openCalls()
{
    show(m_hub, Cover::Calls);
}

void AppShell::uncover()
{
    show(m_hub, Cover::None);
}

void AppShell::show(int hub, Cover cover)
{
    if (hub == m_hub && cover == m_cover)
        return;
    if (hub != m_hub)
        m_defaults.setText(selectedNavKey, hubTable().at(hub).id);
    m_hub = hub;
    m_cover = cover;
    m_hubs.setSelected(cover == Cover::None ? hub : -1);
    Q_EMIT navigationChanged();
}

}
