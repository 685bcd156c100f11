#pragma once

#include "Calendar/CalendarSettings.h"
#include "Foundation/Coalescer.h"
#include "Foundation/Literals.h"
#include "Foundation/NotificationCentre.h"
#include "Presentation/Choice.h"
#include "Presentation/RowListModel.h"
#include "Settings/AccountRow.h"
#include "Settings/AssistantSettings.h"
#include "Settings/ConnectForm.h"
#include "Settings/ControlChatSettings.h"
#include "Settings/DictationSettings.h"
#include "Settings/LocalAccess.h"
#include "Settings/MailForm.h"
#include "Settings/PairingSheet.h"
#include "Settings/PushSettings.h"
#include "Settings/SyncSettings.h"
#include "Settings/SystemSettings.h"
#include "Settings/ToolServerCard.h"
#include "Settings/VoiceSettings.h"
#include "Settings/WebSettings.h"

namespace corvane {

class AccountStore;
class BackupKeeper;
class DoctorView;
class EngineManager;
class Keychain;
class Scheduler;
class SessionStore;
struct WebServices;

/// A section of the settings.
class SettingsSection {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(QString icon MEMBER icon)
public:
    QString id;
    QString label;
    QString icon;

    bool operator==(const SettingsSection&) const = default;
};

/// The settings screen: the accounts with their actions, and the cards of the other sections.
class IntegrationsView : public QObject {
    Q_OBJECT
    Q_MOC_INCLUDE("Care/Backup/BackupKeeper.h")
    Q_MOC_INCLUDE("Care/Doctor/DoctorView.h")
    Q_PROPERTY(QString approvalRule READ approvalRule CONSTANT)
    Q_PROPERTY(QList<corvane::SettingsSection> sections READ sections CONSTANT)
    Q_PROPERTY(QString section READ section WRITE setSection NOTIFY sectionChanged)
    Q_PROPERTY(QString sectionLabel READ sectionLabel NOTIFY sectionChanged)
    /// The account rows, grouped by channel; the properties of `AccountRow` are the roles.
    Q_PROPERTY(corvane::GadgetListModel* accounts READ accounts CONSTANT)
    Q_PROPERTY(QString emptyTitle READ emptyTitle CONSTANT)
    Q_PROPERTY(QString emptyText READ emptyText CONSTANT)
    /// One per channel, for `connectChannel`.
    Q_PROPERTY(QList<corvane::ConnectFlow> connectFlows READ connectFlows CONSTANT)
    Q_PROPERTY(corvane::ConnectForm* connectForm READ connectForm CONSTANT)
    Q_PROPERTY(corvane::MailForm* mailForm READ mailForm CONSTANT)
    Q_PROPERTY(corvane::PairingSheet* pairing READ pairing CONSTANT)
    Q_PROPERTY(corvane::ControlChatSettings* controlChat READ controlChat CONSTANT)
    Q_PROPERTY(corvane::AssistantSettings* assistant READ assistant CONSTANT)
    Q_PROPERTY(corvane::CalendarSettings* calendar READ calendar CONSTANT)
    Q_PROPERTY(corvane::DictationSettings* dictation READ dictation CONSTANT)
    Q_PROPERTY(corvane::LocalAccess* localAccess READ localAccess CONSTANT)
    Q_PROPERTY(corvane::BackupKeeper* backups READ backups CONSTANT)
    Q_PROPERTY(corvane::DoctorView* doctor READ doctor CONSTANT)
    Q_PROPERTY(corvane::SyncSettings* sync READ sync CONSTANT)
    Q_PROPERTY(corvane::WebSettings* web READ web CONSTANT)
    Q_PROPERTY(corvane::PushSettings* push READ push CONSTANT)
    Q_PROPERTY(corvane::SystemSettings* system READ system CONSTANT)
    Q_PROPERTY(corvane::VoiceSettings* voice READ voice CONSTANT)
    Q_PROPERTY(corvane::ToolServerCard* toolServer READ toolServer CONSTANT)
    Q_PROPERTY(bool visible READ visible WRITE setVisible NOTIFY visibleChanged)
public:
    /// All references outlive the screen.
    struct Surroundings {
        AccountStore& accounts;
        EngineManager& engine;
        SessionStore& session;
        Keychain& keychain;
        UserDefaults& defaults;
        Scheduler& scheduler;
        const AppPaths& paths;
        AIServices& ai;
        ProcessLauncher& launcher;
        NotificationCentre& notifications;
        VoiceServices& voice;
        WebServices& web;
    };

    explicit IntegrationsView(const Surroundings& surroundings, QObject* parent = nullptr);

    QString approvalRule() const
    {
        return u"Sends/drafts always stay manual — Corvane never sends on its own (hard wall #1)."_s;
    }
    static const QList<SettingsSection>& sections();
    const QString& section() const { return m_section; }
    QString sectionLabel() const;
    void setSection(const QString& id); ///< an unknown word has no effect
    GadgetListModel* accounts() { return &m_rows; }
    QString emptyTitle() const { return u"No accounts yet"_s; }
    QString emptyText() const { return u"Connect a channel and its messages appear in the inbox."_s; }
    const QList<ConnectFlow>& connectFlows() const { return corvane::connectFlows(); }
    ConnectForm* connectForm() { return &m_connectForm; }
    MailForm* mailForm() { return &m_mailForm; }
    PairingSheet* pairing() { return &m_pairing; }
    ControlChatSettings* controlChat() { return &m_controlChat; }
    AssistantSettings* assistant() { return &m_assistant; }
    CalendarSettings* calendar() const { return m_calendar; }
    DictationSettings* dictation() const { return m_dictation; }
    void setDictation(DictationSettings& dictation) { m_dictation = &dictation; } ///< before the window is created
    void setCalendar(CalendarSettings& calendar) { m_calendar = &calendar; } ///< before the window is created
    LocalAccess* localAccess() const { return m_localAccess; }
    void setLocalAccess(LocalAccess& access); ///< before the window is created
    BackupKeeper* backups() const { return m_backups; }
    DoctorView* doctor() const { return m_doctor; }
    void setCare(BackupKeeper& backups, DoctorView& doctor); ///< before the window is created
    SyncSettings* sync() { return &m_sync; }
    WebSettings* web() { return &m_web; }
    PushSettings* push() { return &m_push; }
    SystemSettings* system() { return &m_system; }
    VoiceSettings* voice() { return &m_voice; }
    ToolServerCard* toolServer() { return &m_toolServer; }

    /// Last message times, sync state and conversations are read only while visible.
    bool visible() const { return m_visible; }
    void setVisible(bool visible);

    /// One of the actions of a row. Actions with a `confirmation` were confirmed before.
    Q_INVOKABLE void perform(const QString& accountId, const QString& actionId);

    /// Opens the channel's sheet; a channel that needs no input is connected at once.
    Q_INVOKABLE void connectChannel(const QString& channel);

Q_SIGNALS:
    void sectionChanged();
    void visibleChanged();

private:
    void refreshRows();
    void editAccount(const Account& account);
    void readSection(); ///< what only one section shows

    Surroundings m_at;
    const AccountSetup m_setup;
    RowListModel<AccountRow> m_rows;
    ConnectForm m_connectForm;
    MailForm m_mailForm;
    PairingSheet m_pairing;
    ControlChatSettings m_controlChat;
    AssistantSettings m_assistant;
    CalendarSettings* m_calendar = nullptr;
    DictationSettings* m_dictation = nullptr;
    LocalAccess* m_localAccess = nullptr;
    BackupKeeper* m_backups = nullptr;
    DoctorView* m_doctor = nullptr;
    SyncSettings m_sync;
    WebSettings m_web;
    PushSettings m_push;
    SystemSettings m_system;
    VoiceSettings m_voice;
    ToolServerCard m_toolServer;
    Coalescer m_refresh;
    QHash<QString, qint64> m_lastMessages; ///< by slug, milliseconds since the epoch
    QString m_section;
    bool m_visible = false;
    NotificationCentre::Observation m_sectionAsked;
};

}
