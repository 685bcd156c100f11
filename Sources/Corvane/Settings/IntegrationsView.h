#pragma once

#include "Calendar/CalendarSettings.h"
#include "Foundation/Literals.h"
#include "Foundation/NotificationCentre.h"
#include "Settings/AccountsView.h"
#include "Settings/AssistantSettings.h"
#include "Settings/ControlChatSettings.h"
#include "Settings/DictationSettings.h"
#include "Settings/LocalAccess.h"
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

/// The settings screen: its sections, and the view model of each card.
class IntegrationsView : public QObject {
    Q_OBJECT
    Q_MOC_INCLUDE("Care/Backup/BackupKeeper.h")
    Q_MOC_INCLUDE("Care/Doctor/DoctorView.h")
    Q_PROPERTY(QString approvalRule READ approvalRule CONSTANT)
    Q_PROPERTY(QList<corvane::SettingsSection> sections READ sections CONSTANT)
    Q_PROPERTY(QString section READ section WRITE setSection NOTIFY sectionChanged)
    Q_PROPERTY(QString sectionLabel READ sectionLabel NOTIFY sectionChanged)
    Q_PROPERTY(corvane::AccountsView* accounts READ accounts CONSTANT)
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

    explicit IntegrationsView(const Surroundings& at, QObject* parent = nullptr);

    QString approvalRule() const
    {
        return u"Sends/drafts always stay manual — Corvane never sends on its own (hard wall #1)."_s;
    }
    static const QList<SettingsSection>& sections();
    const QString& section() const { return m_section; }
    QString sectionLabel() const;
    void setSection(const QString& id); ///< an unknown word has no effect
    AccountsView* accounts() { return &m_accounts; }
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

    /// The database is read only while visible.
    bool visible() const { return m_visible; }
    void setVisible(bool visible);

Q_SIGNALS:
    void sectionChanged();
    void visibleChanged();

private:
    void readSection(); ///< what only one section shows

    AccountsView m_accounts;
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
    QString m_section;
    bool m_visible = false;
    NotificationCentre::Observation m_sectionAsked;
};

}
