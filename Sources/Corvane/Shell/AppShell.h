#pragma once

#include "Foundation/NotificationCentre.h"
#include "Shell/HelpTopics.h"
#include "Shell/TopHubBar.h"

#include <QUrl>

namespace corvane {

class UserDefaults;

/// The navigation state: one of the hubs, or a page that covers it while the hub stays selected: settings, approvals,
/// calls.
class AppShell : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString selectedNav READ selectedNav NOTIFY navigationChanged)
    Q_PROPERTY(QUrl page READ page NOTIFY navigationChanged) ///< of the selected hub, in QML
    Q_PROPERTY(QObject* screen READ screen NOTIFY navigationChanged) ///< what that page shows
    Q_PROPERTY(bool settings READ settings NOTIFY navigationChanged)
    Q_PROPERTY(bool approvals READ approvals NOTIFY navigationChanged)
    Q_PROPERTY(bool calls READ calls NOTIFY navigationChanged)
    Q_PROPERTY(corvane::TopHubBar* hubs READ hubs CONSTANT)
    Q_PROPERTY(QList<corvane::HelpTopic> help READ help CONSTANT)
public:
    /// Both references outlive the shell.
    AppShell(NotificationCentre& centre, UserDefaults& defaults, QObject* parent = nullptr);

    void setScreens(const QList<QObject*>& screens)
    {
        m_screens = screens;
    } ///< one for each hub; they outlive the shell

    QString selectedNav() const; ///< unchanged while the hub is covered
    QUrl page() const;
    QObject* screen() const { return m_screens.value(m_hub); }
    bool settings() const { return m_cover == Cover::Settings; }
    bool approvals() const { return m_cover == Cover::Approvals; }
    bool calls() const { return m_cover == Cover::Calls; }
    TopHubBar* hubs() { return &m_hubs; }
    const QList<HelpTopic>& help() const { return m_help; }
    void setHelp(const QList<HelpTopic>& help) { m_help = help; } ///< before the window is created

    Q_INVOKABLE void selectHub(const QString& raw); ///< an unknown word has no effect
    Q_INVOKABLE void toggleSettings(); ///< the gear
    Q_INVOKABLE void openSettings(); ///< from the profile menu; the hub stays selected
    Q_INVOKABLE void toggleApprovals();
    Q_INVOKABLE void openApprovals();
    Q_INVOKABLE void toggleCalls();
    Q_INVOKABLE void openCalls();
    Q_INVOKABLE void closeSettings() { uncover(); }
    Q_INVOKABLE void closeApprovals() { uncover(); }
    Q_INVOKABLE void closeCalls() { uncover(); }

Q_SIGNALS:
    void navigationChanged();

private:
    enum class Cover { None, Settings, Approvals, Calls };

    void uncover(); ///< back to the hub
    void show(int hub, Cover cover);

    UserDefaults& m_defaults;
    TopHubBar m_hubs;
    int m_hub; ///< in the table
    QList<QObject*> m_screens;
    QList<HelpTopic> m_help;
    Cover m_cover = Cover::None;
    NotificationCentre::Observation m_openConversation;
    NotificationCentre::Observation m_openSettings;
    NotificationCentre::Observation m_openWorkConsole;
    NotificationCentre::Observation m_openApprovals;
    NotificationCentre::Observation m_approvalPressed;
};

}
