#pragma once

#include "CRM/CRMPane.h"
#include "Foundation/NotificationCentre.h"
#include "Inbox/List/ContactListView.h"
#include "Inbox/Thread/MessageActions.h"
#include "Inbox/Thread/ThreadView.h"
#include "Inbox/Thread/VoicePlayer.h"
#include "Inbox/Thread/VoiceTranscripts.h"

namespace corvane {

class AudioPlayer;
class Desktop;
class UndoOffer;
class UserDefaults;

/// The open person, their thread, and what is known of them. Other panes follow.
class OpenPerson : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString selectedId READ selectedId NOTIFY selectionChanged)
    Q_PROPERTY(
        corvane::ContactItem selected READ selected NOTIFY selectedChanged) ///< has an empty id if nobody is open
    Q_PROPERTY(corvane::ThreadView* thread READ thread CONSTANT)
    Q_PROPERTY(corvane::CRMPane* crm READ crm CONSTANT)
    Q_PROPERTY(corvane::MessageActions* messageActions READ messageActions CONSTANT)
    Q_PROPERTY(corvane::VoicePlayer* voicePlayer READ voicePlayer CONSTANT)
    Q_PROPERTY(corvane::VoiceTranscripts* transcripts READ transcripts CONSTANT)
    Q_PROPERTY(QString jumpMsgId READ jumpMsgId NOTIFY jumped)
    Q_PROPERTY(bool onScreen READ onScreen WRITE setOnScreen NOTIFY onScreenChanged)
    Q_PROPERTY(bool showCRM READ showCRM WRITE setShowCRM NOTIFY showCRMChanged)
public:
    /// Everything outlives the object.
    struct Surroundings {
        EngineManager& engine;
        AccountStore& accounts;
        UserDefaults& defaults;
        NotificationCentre& notifications;
        Scheduler& scheduler;
        Desktop& desktop;
        AudioPlayer& player;
        VoiceServices& voice;
    };

    OpenPerson(const Surroundings& at, ContactListView& list, UndoOffer& undo, QObject* parent = nullptr);
    ~OpenPerson() override;

    const QString& selectedId() const { return m_selectedId; }
    ContactItem selected() const { return m_selected; }
    ThreadView* thread() { return &m_thread; }
    CRMPane* crm() { return &m_crm; }
    MessageActions* messageActions() { return &m_messageActions; }
    VoicePlayer* voicePlayer() { return &m_voicePlayer; }
    VoiceTranscripts* transcripts() { return &m_transcripts; }
    const QString& jumpMsgId() const { return m_jumpMsgId; }
    bool onScreen() const { return m_onScreen; }
    void setOnScreen(bool onScreen); ///< whether it is visible: only then do incoming messages count as read
    bool showCRM() const { return m_showCRM; }
    void setShowCRM(bool show);

    /// Registers another pane beside the thread: `open` is called whenever the open person changes, with an empty id
    /// for nobody. The pane outlives this object.
    using Pane = std::function<void(const ContactRow& contact)>;
    void addPane(Pane open) { m_panes.append(std::move(open)); }

    Q_INVOKABLE void select(const QString& contactId); ///< opens the person's thread; empty closes
    Q_INVOKABLE void moveSelection(int delta); ///< by that many rows in the list
    Q_INVOKABLE void openHit(const QString& messageId); ///< opens the thread at that message
    Q_INVOKABLE void jumpTo(const QString& messageId); ///< in the open thread
    /// The open person's "deals", "notes" or "tasks" in the contact pane; `id` is of a row in it.
    void showInPane(const QString& section, const QString& id);
    Q_INVOKABLE void openVoiceSettings(); ///< to add a speech model
    void close(); ///< the list is updated at the next `present`

Q_SIGNALS:
    void selectionChanged(); ///< another person is open
    void selectedChanged(); ///< or the facts about the open person
    void jumped();
    void paneAsked(const QString& section); ///< the contact pane is wanted in sight, at that section
    void onScreenChanged();
    void showCRMChanged();

private:
    LocalDB& db() const;
    void openContact(const ContactRow& row);
    void openPanes(const ContactRow& row);
    void tellWhatIsOpen();
    void take(const std::optional<QStringList>& contactIds); ///< what was read of them
    void present();
    void readSelected();

    EngineManager& m_engine;
    AccountStore& m_accounts;
    NotificationCentre& m_notifications;
    Scheduler& m_scheduler;
    ContactListView& m_list;
    QString m_selectedId;
    ContactRow m_selectedRow; ///< as last seen: a filter may have hidden it since
    ContactItem m_selected;
    QString m_jumpMsgId;
    ThreadView m_thread;
    CRMPane m_crm;
    MessageActions m_messageActions;
    VoicePlayer m_voicePlayer;
    VoiceTranscripts m_transcripts;
    QList<Pane> m_panes;
    bool m_onScreen = true;
    bool m_showCRM = true;
    std::unique_ptr<Timer> m_reloadAfterOpening;
    NotificationCentre::Observation m_conversationAsked;
};

}
