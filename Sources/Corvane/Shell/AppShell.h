#pragma once

#include "Foundation/NotificationCentre.h"
#include "Inbox/List/CommandPalette.h"
#include "Shell/NavItem.h"
#include "Shell/TopHubBar.h"

namespace corvane {

class UserDefaults;

/// Where the user is: one of the six hubs, or what covers the hub and leaves it chosen: the settings, the approvals.
class AppShell : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString selectedNav READ selectedNav NOTIFY navigationChanged)
    Q_PROPERTY(QString selectedLabel READ selectedLabel NOTIFY navigationChanged)
    Q_PROPERTY(bool settings READ settings NOTIFY navigationChanged)
    Q_PROPERTY(bool approvals READ approvals NOTIFY navigationChanged)
    Q_PROPERTY(corvane::TopHubBar* hubs READ hubs CONSTANT)
public:
    /// Both references outlive the shell.
    AppShell(NotificationCentre& centre, UserDefaults& defaults, QObject* parent = nullptr);

    NavItem nav() const { return m_nav; }
    QString selectedNav() const { return navRaw(m_nav); } ///< kept while the hub is covered
    QString selectedLabel() const { return navLabel(m_nav); }
    bool settings() const { return m_cover == Cover::Settings; }
    bool approvals() const { return m_cover == Cover::Approvals; }
    TopHubBar* hubs() { return &m_hubs; }
    QList<PaletteCommand> paletteCommands(); ///< to each hub, and to what covers them

    Q_INVOKABLE void selectHub(const QString& raw); ///< an unknown word changes nothing
    Q_INVOKABLE void toggleSettings(); ///< the gear
    Q_INVOKABLE void openSettings(); ///< the profile menu; the hub stays
    Q_INVOKABLE void toggleApprovals();
    Q_INVOKABLE void openApprovals();
    Q_INVOKABLE void closeSettings() { uncover(); }
    Q_INVOKABLE void closeApprovals() { uncover(); }

Q_SIGNALS:
    void navigationChanged();
    void quitRequested();

private:
    enum class Cover { None, Settings, Approvals };

    void uncover(); ///< back to the hub
    void show(NavItem nav, Cover cover);

    UserDefaults& m_defaults;
    TopHubBar m_hubs;
    NavItem m_nav = NavItem::Inbox;
    Cover m_cover = Cover::None;
    NotificationCentre::Observation m_openConversation;
    NotificationCentre::Observation m_openSettings;
    NotificationCentre::Observation m_openWorkConsole;
    NotificationCentre::Observation m_openApprovals;
    NotificationCentre::Observation m_approvalPressed;
};

}
