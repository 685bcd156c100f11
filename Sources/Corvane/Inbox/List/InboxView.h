#pragma once

#include "Approvals/PendingDraftsView.h"
#include "CRM/CRMPane.h"
#include "Foundation/Coalescer.h"
#include "Foundation/NotificationCentre.h"
#include "Inbox/Assistant/AskLumo.h"
#include "Inbox/Assistant/DraftAssistant.h"
#include "Inbox/Assistant/ThreadSummary.h"
#include "Inbox/Compose/ComposeSheet.h"
#include "Inbox/Compose/Composer.h"
#include "Inbox/List/AvatarRequests.h"
#include "Inbox/List/BulkSelection.h"
#include "Inbox/List/CommandPalette.h"
#include "Inbox/List/ContactItem.h"
#include "Inbox/List/InboxList.h"
#include "Inbox/List/InboxRows.h"
#include "Inbox/List/MessageHits.h"
#include "Inbox/List/TabCounts.h"
#include "Inbox/List/WebStaleness.h"
#include "Inbox/Thread/MessageActions.h"
#include "Inbox/Thread/ThreadView.h"
#include "Inbox/Thread/VoicePlayer.h"
#include "Inbox/Thread/VoiceTranscripts.h"
#include "Presentation/UndoOffer.h"

namespace corvane {

class TranslationService;
class AudioPlayer;
class Desktop;
class UserDefaults;
struct AIServices;
struct AppPaths;

/// The inbox: one row per person, the search, and the thread that is open. It reads the database afresh at
/// every reload and keeps nothing of it. Filters, modes and channels pass to the screen as words.
class InboxView : public QObject {
    Q_OBJECT
    // What is listed
    Q_PROPERTY(QList<corvane::TabItem> tabs READ tabs NOTIFY tabsChanged)
    Q_PROPERTY(QString filter READ filterWord WRITE setFilterWord NOTIFY filterChanged) ///< needsMe today all archived
    Q_PROPERTY(bool unarchives READ unarchives NOTIFY filterChanged) ///< `archive` brings back here
    Q_PROPERTY(QString archiveLabel READ archiveLabel NOTIFY filterChanged)
    Q_PROPERTY(QString viewMode READ viewModeWord WRITE setViewModeWord NOTIFY viewChanged) ///< contacts messages
    Q_PROPERTY(QString sort READ sortWord WRITE setSortWord NOTIFY viewChanged) ///< recent unread
    Q_PROPERTY(QString search READ search WRITE setSearch NOTIFY searchChanged)
    Q_PROPERTY(QString channelFilter READ channelFilter WRITE setChannelFilter NOTIFY narrowingChanged)
    Q_PROPERTY(QString accountFilter READ accountFilter WRITE setAccountFilter NOTIFY narrowingChanged)
    Q_PROPERTY(QList<corvane::Choice> channelChoices READ channelChoices NOTIFY choicesChanged)
    Q_PROPERTY(QList<corvane::Choice> accountChoices READ accountChoices NOTIFY choicesChanged)
    Q_PROPERTY(QString channelFilterLabel READ channelFilterLabel NOTIFY narrowingChanged)
    Q_PROPERTY(QString accountFilterLabel READ accountFilterLabel NOTIFY narrowingChanged)
    Q_PROPERTY(corvane::HoldingListModel* contacts READ contacts CONSTANT) ///< of ContactItem
    Q_PROPERTY(corvane::HoldingListModel* messageHits READ messageHits CONSTANT) ///< of MessageHitItem
    Q_PROPERTY(bool atTop READ atTop WRITE setAtTop NOTIFY atTopChanged) ///< the first rows are in sight
    Q_PROPERTY(QString newAbove READ newAbove NOTIFY newAboveChanged) ///< such as "3 new above"; empty for none
    Q_PROPERTY(bool loading READ loading NOTIFY changed) ///< until the first reload
    Q_PROPERTY(bool searching READ searching NOTIFY changed) ///< the messages are searched: takes a while
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY changed) ///< neither a contact nor a hit to show, nor to come
    Q_PROPERTY(QString emptyTitle READ emptyTitle NOTIFY changed)
    Q_PROPERTY(QString emptyDetail READ emptyDetail NOTIFY changed)
    Q_PROPERTY(bool emptyCanClear READ emptyCanClear NOTIFY changed)
    // What is open
    Q_PROPERTY(QString selectedId READ selectedId NOTIFY selectionChanged)
    Q_PROPERTY(int selectedIndex READ selectedIndex NOTIFY changed) ///< row in `contacts`, or -1
    Q_PROPERTY(
        corvane::ContactItem selected READ selected NOTIFY selectedChanged) ///< with an empty id where nothing is open
    Q_PROPERTY(corvane::ThreadView* thread READ thread CONSTANT)
    Q_PROPERTY(corvane::CRMPane* crm READ crm CONSTANT)
    Q_PROPERTY(corvane::MessageActions* messageActions READ messageActions CONSTANT)
    Q_PROPERTY(corvane::VoicePlayer* voicePlayer READ voicePlayer CONSTANT)
    Q_PROPERTY(corvane::VoiceTranscripts* transcripts READ transcripts CONSTANT)
    Q_PROPERTY(QString jumpMsgId READ jumpMsgId NOTIFY jumped)
    Q_PROPERTY(corvane::Composer* composer READ composer CONSTANT)
    Q_PROPERTY(corvane::DraftAssistant* assistant READ assistant CONSTANT)
    Q_PROPERTY(corvane::ThreadSummary* summary READ summary CONSTANT)
    Q_PROPERTY(corvane::AskLumo* askLumo READ askLumo CONSTANT)
    Q_PROPERTY(corvane::PendingDraftsView* drafts READ drafts CONSTANT) ///< the bar over the thread
    // Around it
    Q_PROPERTY(bool shown READ shown WRITE setShown NOTIFY shownChanged)
    Q_PROPERTY(bool onScreen READ onScreen WRITE setOnScreen NOTIFY onScreenChanged)
    Q_PROPERTY(bool showCRM READ showCRM WRITE setShowCRM NOTIFY showCRMChanged)
    Q_PROPERTY(bool showPalette READ showPalette WRITE setShowPalette NOTIFY showPaletteChanged)
    Q_PROPERTY(corvane::ComposeSheet* composeSheet READ composeSheet CONSTANT) ///< a message to a new person
    Q_PROPERTY(corvane::CommandPalette* palette READ palette CONSTANT)
    Q_PROPERTY(QString workspaceNotice READ workspaceNotice NOTIFY workspaceNoticeChanged)
    Q_PROPERTY(QList<corvane::StalenessBanner> stalenessBanners READ stalenessBanners NOTIFY stalenessChanged)
    Q_PROPERTY(corvane::BulkSelection* bulk READ bulk CONSTANT) ///< the rows picked for one action
    Q_PROPERTY(QString undoText READ undoText NOTIFY undoChanged) ///< empty where nothing can be undone
public:
    /// Everything outlives the view.
    struct Surroundings {
        EngineManager& engine;
        AccountStore& accounts;
        UserDefaults& defaults;
        NotificationCentre& notifications;
        Scheduler& scheduler;
        Microphone& microphone;
        Desktop& desktop;
        AudioPlayer& player;
        const AppPaths& paths;
        AIServices& ai;
        TranslationService& translations;
        VoiceServices& voice;
    };

    explicit InboxView(const Surroundings& surroundings, QObject* parent = nullptr);
    ~InboxView() override;

    const QList<TabItem>& tabs() const { return m_tabs; }
    QString filterWord() const;
    void setFilterWord(const QString& word); ///< an unknown word changes nothing, here and below
    bool unarchives() const { return m_state.filter == InboxFilter::Archived; }
    QString archiveLabel() const { return unarchives() ? QStringLiteral("Unarchive") : QStringLiteral("Archive"); }
    QString viewModeWord() const;
    void setViewModeWord(const QString& word);
    QString sortWord() const;
    void setSortWord(const QString& word);
    const QString& search() const { return m_search; }
    void setSearch(const QString& search); ///< takes effect a quarter of a second after the last key
    const QString& channelFilter() const { return m_state.channelFilter; }
    void setChannelFilter(const QString& channel);
    const QString& accountFilter() const { return m_state.accountFilter; }
    void setAccountFilter(const QString& slug);
    const QList<Choice>& channelChoices() const { return m_channelChoices; }
    const QList<Choice>& accountChoices() const { return m_accountChoices; }
    QString channelFilterLabel() const;
    QString accountFilterLabel() const;
    HoldingListModel* contacts() { return &m_contactModel; }
    HoldingListModel* messageHits() { return m_hits.model(); }
    bool atTop() const { return m_atTop; }
    void setAtTop(bool atTop);
    QString newAbove() const;
    bool loading() const { return m_loading; }
    bool searching() const { return m_hits.searching(); }
    bool hitsPending() const { return m_hits.pending(); } ///< `messageHits` does not answer the search yet
    bool isEmpty() const { return m_contactModel.rows().isEmpty() && m_hits.rows().isEmpty() && !m_hits.pending(); }
    QString emptyTitle() const;
    QString emptyDetail() const;
    bool emptyCanClear() const;
    const QString& selectedId() const { return m_selectedId; }
    int selectedIndex() const;
    ContactItem selected() const { return m_selected; }
    ThreadView* thread() { return &m_thread; }
    CRMPane* crm() { return &m_crm; }
    MessageActions* messageActions() { return &m_messageActions; }
    VoicePlayer* voicePlayer() { return &m_voicePlayer; }
    VoiceTranscripts* transcripts() { return &m_transcripts; }
    const QString& jumpMsgId() const { return m_jumpMsgId; }
    Composer* composer() { return &m_composer; }
    DraftAssistant* assistant() { return &m_assistant; }
    ThreadSummary* summary() { return &m_summary; }
    AskLumo* askLumo() { return &m_askLumo; }
    PendingDraftsView* drafts() const { return m_drafts; }
    void setDrafts(PendingDraftsView& drafts) { m_drafts = &drafts; } ///< they outlive the view
    ComposeSheet* composeSheet() { return &m_composeSheet; }
    bool shown() const { return m_shown; }
    void setShown(bool shown); ///< whether the list can be seen; one that cannot is read again when it shows
    bool onScreen() const { return m_onScreen; }
    void setOnScreen(bool onScreen); ///< whether a person can see it: only then an arriving message counts as read
    bool showCRM() const { return m_showCRM; }
    void setShowCRM(bool show);
    bool showPalette() const { return m_showPalette; }
    void setShowPalette(bool show);
    CommandPalette* palette() { return &m_palette; }
    const QString& workspaceNotice() const { return m_workspaceNotice; }
    const QList<StalenessBanner>& stalenessBanners() const { return m_banners; }
    BulkSelection* bulk() { return &m_bulk; }
    const QString& undoText() const { return m_undo.text(); }

    Q_INVOKABLE void appear(); ///< each time the screen shows
    Q_INVOKABLE void reload();
    Q_INVOKABLE void clearActiveEmptyFilter();
    Q_INVOKABLE void dismissWorkspaceNotice();
    Q_INVOKABLE void retry(const QString& channel); ///< of a staleness banner

    Q_INVOKABLE void select(const QString& contactId); ///< opens the person's thread; empty closes
    Q_INVOKABLE void moveSelection(int delta);
    Q_INVOKABLE void openHit(const QString& messageId); ///< opens the thread at that message
    Q_INVOKABLE void jumpTo(const QString& messageId); ///< in the open thread
    Q_INVOKABLE void openVoiceSettings(); ///< where a speech model is added

    void writeNew(); ///< to somebody new, with the inbox in front

    /// Queues a draft to a person who need not be known yet, and opens their thread; false where it cannot be queued.
    bool composeNew(const Account& account, const QString& recipient, const OutgoingMessage& message);

    /// Archives them, or brings them back where the list shows what is archived.
    Q_INVOKABLE void archive(const QStringList& contactIds);
    Q_INVOKABLE void archiveSelected() { archive(m_selectedId.isEmpty() ? QStringList() : QStringList(m_selectedId)); }
    Q_INVOKABLE void mute(const QStringList& contactIds); ///< mutes all; where all are muted, unmutes all
    Q_INVOKABLE void muteSelected() { mute(m_selectedId.isEmpty() ? QStringList() : QStringList(m_selectedId)); }
    Q_INVOKABLE void toggleRead(const QString& contactId); ///< marks as read, or as unread where nothing is unread
    Q_INVOKABLE void markAllRead();
    Q_INVOKABLE void undo() { m_undo.take(); } ///< the way back that `undoText` offers
    Q_INVOKABLE void dismissUndo() { m_undo.dismiss(); }

    Q_INVOKABLE void archiveChecked() { archive(QStringList(m_bulk.ids())); }
    Q_INVOKABLE void muteChecked() { mute(QStringList(m_bulk.ids())); }
    Q_INVOKABLE void markCheckedRead();

Q_SIGNALS:
    void changed(); ///< after each reload and each change of what is shown
    void tabsChanged();
    void choicesChanged();
    void stalenessChanged();
    void filterChanged();
    void viewChanged();
    void searchChanged();
    void narrowingChanged();
    void atTopChanged();
    void newAboveChanged();
    void selectionChanged(); ///< another person is open
    void selectedChanged(); ///< or the facts of the person who is
    void jumped();
    void shownChanged();
    void onScreenChanged();
    void showCRMChanged();
    void showPaletteChanged();
    void workspaceNoticeChanged();
    void undoChanged();

private:
    LocalDB& db() const;
    QString accountLabel(const QString& slug) const;
    InboxState asTyped() const; ///< with the search as it is now
    void narrow(const InboxState& state);
    void personChanged(const QString& contactId); ///< empty for anybody
    void reloadSoon();
    void catchUp(); ///< reads what has changed since the list was read
    bool readChanged();
    void showRead(const std::optional<QStringList>& contactIds); ///< after these people were read, or all
    void present();
    void presentChoices();
    void presentBanners();
    QList<TabItem> countedTabs() const;
    void presentCounts();

    /// Of the list, else of a person whom the list does not show: filtered away, or beyond its end.
    std::optional<ContactRow> rowOf(const QString& contactId) const;
    QString nameOf(const QString& contactId); ///< as the list shows it
    void openContact(const ContactRow& row);
    void close();
    void openPanes(const ContactRow& row); ///< beside the list; with an empty id: nobody
    void tellWhatIsOpen();
    void tellRead(const QString& contactId); ///< in the store, and WhatsApp
    void readSelected();
    void comeToFront();
    void searchFor(const QString& query);
    void afterAction();

    EngineManager& m_engine;
    AccountStore& m_accounts;
    UserDefaults& m_defaults;
    NotificationCentre& m_notifications;
    Scheduler& m_scheduler;

    InboxState m_state; ///< what the rows were made for
    QString m_search; ///< as typed; `m_state` follows
    bool m_loading = true;
    InboxRows m_rows;
    bool m_allDue = false; ///< the whole list is to be read again
    QSet<QString> m_peopleDue; ///< or these people of it
    QList<ContactRow> m_contacts; ///< of the rows, what the search leaves
    MessageHits m_hits;
    RowListModel<ContactItem> m_contactModel;
    bool m_atTop = true;
    qint64 m_topSeenTs = 0; ///< the newest message when the top was last in sight
    TabCounts m_counts;
    QList<TabItem> m_tabs;
    QList<Choice> m_channelChoices;
    QList<Choice> m_accountChoices;
    AvatarRequests m_avatars;

    QString m_selectedId;
    ContactRow m_selectedRow; ///< as last seen: a filter may have hidden it since
    int m_selectedPlace = 0; ///< where in the list the selection last stood
    ContactItem m_selected;
    QString m_jumpMsgId;
    ThreadView m_thread;
    Composer m_composer;
    DraftAssistant m_assistant;
    ThreadSummary m_summary;
    AskLumo m_askLumo;
    ComposeSheet m_composeSheet;
    PendingDraftsView* m_drafts = nullptr;
    CRMPane m_crm;
    UndoOffer m_undo;
    MessageActions m_messageActions;
    VoicePlayer m_voicePlayer;
    VoiceTranscripts m_transcripts;
    CommandPalette m_palette;
    BulkSelection m_bulk;

    bool m_shown = true;
    bool m_onScreen = true;
    bool m_showCRM = true;
    bool m_showPalette = false;
    QString m_workspaceNotice;
    WebMirror m_webMirror;
    QList<StalenessBanner> m_banners;

    Coalescer m_reloadSoon;
    std::unique_ptr<Timer> m_reloadAfterOpening;
    Coalescer m_countsSoon;
    std::unique_ptr<Timer> m_searchDebounce;
    std::unique_ptr<Timer> m_midnight;
    NotificationCentre::Observation m_workspaceChanged;
    NotificationCentre::Observation m_conversationAsked;
    NotificationCentre::Observation m_composerAsked;
};

}
