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

class BackupKeeper;
class DoctorView;

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

/// The settings screen: its sections, and the cards that they show.
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
    /// The cards of all sections; they outlive the screen.
    struct Cards {
        AccountsView& accounts;
        ControlChatSettings& controlChat;
        AssistantSettings& assistant;
        VoiceSettings& voice;
        DictationSettings& dictation;
        CalendarSettings& calendar;
        SyncSettings& sync;
        WebSettings& web;
        PushSettings& push;
        ToolServerCard& toolServer;
        BackupKeeper& backups;
        DoctorView& doctor;
        SystemSettings& system;
        LocalAccess& localAccess;
    };

    IntegrationsView(const Cards& cards, NotificationCentre& centre, QObject* parent = nullptr);

    QString approvalRule() const
    {
        return u"Sends/drafts always stay manual — Corvane never sends on its own (hard wall #1)."_s;
    }
    static const QList<SettingsSection>& sections();
    const QString& section() const { return m_section; }
    QString sectionLabel() const;
    void setSection(const QString& id); ///< an unknown word has no effect
    AccountsView* accounts() const { return &m_cards.accounts; }
    ControlChatSettings* controlChat() const { return &m_cards.controlChat; }
    AssistantSettings* assistant() const { return &m_cards.assistant; }
    VoiceSettings* voice() const { return &m_cards.voice; }
    DictationSettings* dictation() const { return &m_cards.dictation; }
    CalendarSettings* calendar() const { return &m_cards.calendar; }
    SyncSettings* sync() const { return &m_cards.sync; }
    WebSettings* web() const { return &m_cards.web; }
    PushSettings* push() const { return &m_cards.push; }
    ToolServerCard* toolServer() const { return &m_cards.toolServer; }
    BackupKeeper* backups() const { return &m_cards.backups; }
    DoctorView* doctor() const { return &m_cards.doctor; }
    SystemSettings* system() const { return &m_cards.system; }
    LocalAccess* localAccess() const { return &m_cards.localAccess; }

    /// The database is read only while visible.
    bool visible() const { return m_visible; }
    void setVisible(bool visible);

Q_SIGNALS:
    void sectionChanged();
    void visibleChanged();

private:
    void readSection(); ///< what only one section shows

    const Cards m_cards;
    QString m_section;
    bool m_visible = false;
    NotificationCentre::Observation m_sectionAsked;
};

}
