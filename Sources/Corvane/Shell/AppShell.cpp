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
    m_openConversation = centre.observe(
        notifications::openConversation, [this](const Notification&) { show(NavItem::Inbox, Cover::None); });
    // The hub moves too, so that whoever closes the settings after such a jump is in the inbox.
    m_openSettings = centre.observe(
        notifications::openSettings, [this](const Notification&) { show(NavItem::Inbox, Cover::Settings); });
    m_openWorkConsole = centre.observe(notifications::openWorkConsole, [this](const Notification& notification) {
        show(navFromRaw(notification.object.value_or(QString())).value_or(NavItem::Dev), Cover::None);
    });
    m_openApprovals = centre.observe(notifications::openApprovals, [this](const Notification&) { openApprovals(); });
    // Whoever presses the banner itself wants to read before they decide.
    m_approvalPressed = centre.observe(notifications::approvalAction, [this](const Notification& notification) {
        if (notification.userInfo.value(QStringLiteral("action")) == QStringLiteral("open"))
            openApprovals();
    });
}

QList<PaletteCommand> AppShell::paletteCommands()
{
    const auto always = PaletteCommand::When::Always;
    QList<PaletteCommand> commands;
    for (const NavItem item : allNavItems) {
        commands.append(
            { navRaw(item), QStringLiteral("Go to ") + navLabel(item), hubShortcut(item), always, [this, item] {
                 show(item, Cover::None);
             } });
    }
    commands.append(
        { QStringLiteral("settings"), QStringLiteral("Open Settings"), QStringLiteral("Ctrl+,"), always, [this] {
             openSettings();
         } });
    commands.append({ QStringLiteral("openApprovals"), QStringLiteral("Open Approvals"), QStringLiteral("Ctrl+Shift+A"),
        always, [this] {
            openApprovals();
        } });
    return commands;
}

void AppShell::selectHub(const QString& raw)
{
    if (const auto item = navFromRaw(raw))
        show(*item, Cover::None);
}

void AppShell::toggleSettings()
{
    show(m_nav, settings() ? Cover::None : Cover::Settings);
}

void AppShell::openSettings()
{
    show(m_nav, Cover::Settings);
}

void AppShell::toggleApprovals()
{
    show(m_nav, approvals() ? Cover::None : Cover::Approvals);
}

void AppShell::openApprovals()
{
    show(m_nav, Cover::Approvals);
}

void AppShell::uncover()
{
    show(m_nav, Cover::None);
}

void AppShell::show(NavItem nav, Cover cover)
{
    if (nav == m_nav && cover == m_cover)
        return;
    if (nav != m_nav)
        m_defaults.setText(selectedNavKey, navRaw(nav));
    m_nav = nav;
    m_cover = cover;
    m_hubs.setSelected(cover == Cover::None ? std::optional(nav) : std::nullopt);
    Q_EMIT navigationChanged();
}

}
