#include "Shell/AppShell.h"

#include "Foundation/UserDefaults.h"

namespace corvane {

namespace {

const QString selectedNavKey = QStringLiteral("nimb.selectedNav");

}

AppShell::AppShell(NotificationCentre& centre, UserDefaults& defaults, QObject* parent)
    : QObject(parent)
    , m_defaults(defaults)
    , m_nav(navFromRaw(defaults.text(selectedNavKey).value_or(QString())).value_or(NavItem::Inbox))
{
    m_hubs.setSelected(m_nav);
    m_openConversation = centre.observe(notifications::openConversation, [this](const Notification& notification) {
        show(NavItem::Inbox, false);
        if (const QString contactId = notification.object.value_or(QString()); !contactId.isEmpty())
            Q_EMIT conversationRequested(contactId);
    });
    // The hub moves too, so that whoever closes the settings after such a jump is in the inbox.
    m_openSettings
        = centre.observe(notifications::openSettings, [this](const Notification&) { show(NavItem::Inbox, true); });
    m_openWorkConsole = centre.observe(notifications::openWorkConsole, [this](const Notification& notification) {
        show(navFromRaw(notification.object.value_or(QString())).value_or(NavItem::Dev), false);
    });
}

void AppShell::selectHub(const QString& raw)
{
    if (const auto item = navFromRaw(raw))
        show(*item, false);
}

void AppShell::toggleSettings()
{
    show(m_nav, !m_settings);
}

void AppShell::openSettings()
{
    show(m_nav, true);
}

void AppShell::closeSettings()
{
    show(m_nav, false);
}

void AppShell::show(NavItem nav, bool settings)
{
    if (nav == m_nav && settings == m_settings)
        return;
    if (nav != m_nav)
        m_defaults.setText(selectedNavKey, navRaw(nav));
    m_nav = nav;
    m_settings = settings;
    m_hubs.setSelected(settings ? std::nullopt : std::optional(nav));
    Q_EMIT navigationChanged();
}

}
