#pragma once

#include "Approvals/PendingDraftsView.h"
#include "Inbox/Compose/ComposeSheet.h"
#include "Inbox/List/AvatarRequests.h"
#include "Inbox/List/CommandPalette.h"
#include "Inbox/List/ListActions.h"
#include "Inbox/List/ListFilter.h"
#include "Inbox/List/ListNotices.h"
#include "Inbox/OpenPerson.h"
#include "Inbox/Reply.h"
#include "Presentation/UndoOffer.h"

namespace corvane {

/// The inbox: the list of people, the open person, and the actions on them.
class InboxView : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::ListFilter* filters READ filters CONSTANT)
    Q_PROPERTY(corvane::ContactListView* list READ list CONSTANT)
    Q_PROPERTY(corvane::ListNotices* notices READ notices CONSTANT)
    Q_PROPERTY(corvane::OpenPerson* person READ person CONSTANT)
    Q_PROPERTY(corvane::Reply* reply READ reply CONSTANT)
    Q_PROPERTY(corvane::ListActions* actions READ actions CONSTANT)
    Q_PROPERTY(corvane::PendingDraftsView* drafts READ drafts CONSTANT) ///< the bar above the thread
    Q_PROPERTY(corvane::ComposeSheet* composeSheet READ composeSheet CONSTANT) ///< a message to a new person
    Q_PROPERTY(corvane::CommandPalette* palette READ palette CONSTANT)
    Q_PROPERTY(bool showPalette READ showPalette WRITE setShowPalette NOTIFY showPaletteChanged)
public:
    using Surroundings = OpenPerson::Surroundings;

    /// Everything outlives the view.
    InboxView(const Surroundings& at, Reply& reply, QObject* parent = nullptr);

    ListFilter* filters() { return &m_filter; }
    ContactListView* list() { return &m_list; }
    ListNotices* notices() { return &m_notices; }
    OpenPerson* person() { return &m_person; }
    Reply* reply() { return &m_reply; }
    ListActions* actions() { return &m_actions; }
    PendingDraftsView* drafts() const { return m_drafts; }
    void setDrafts(PendingDraftsView& drafts) { m_drafts = &drafts; } ///< they outlive the view
    ComposeSheet* composeSheet() { return &m_composeSheet; }
    CommandPalette* palette() { return &m_palette; }
    bool showPalette() const { return m_showPalette; }
    void setShowPalette(bool show);

    Q_INVOKABLE void appear() { m_list.appear(); } ///< whenever the screen is shown
    void writeNew(); ///< to someone new; brings the inbox to the front

    /// Queues a draft to a person who may be new, and opens their thread; false if it cannot be queued.
    bool composeNew(const Account& account, const QString& recipient, const OutgoingMessage& message);

Q_SIGNALS:
    void showPaletteChanged();

private:
    void comeToFront();

    EngineManager& m_engine;
    NotificationCentre& m_notifications;
    Scheduler& m_scheduler;
    ListFilter m_filter;
    BulkSelection m_bulk;
    ContactListView m_list;
    ListNotices m_notices;
    AvatarRequests m_avatars;
    UndoOffer m_undo;
    OpenPerson m_person;
    Reply& m_reply;
    ListActions m_actions;
    PendingDraftsView* m_drafts = nullptr;
    ComposeSheet m_composeSheet;
    CommandPalette m_palette;
    RecordHits m_paletteWork;
    bool m_showPalette = false;
    NotificationCentre::Observation m_composerAsked;
    NotificationCentre::Observation m_workspaceChanged;
};

}
