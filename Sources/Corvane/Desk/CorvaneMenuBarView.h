#pragma once

#include "Approvals/ApprovalsView.h"
#include "Calendar/UpcomingMeetings.h"
#include "Calls/CallSettings.h"
#include "Calls/CallsView.h"
#include "Desk/ReplyDrafts.h"
#include "Desk/ResourcesView.h"
#include "Foundation/Literals.h"
#include "Presentation/Choice.h"

namespace corvane {

class AccountStore;
class EngineManager;
class NotificationCentre;
class QuickCapture;
class SessionStore;

/// A line of the day, and the action that opens its subject.
class DayLine {
    Q_GADGET
    Q_PROPERTY(QString icon MEMBER icon)
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(QString action MEMBER action)
public:
    QString icon;
    QString text;
    QString action; ///< for `run`

    bool operator==(const DayLine&) const = default;
};

/// A conversation of the inbox, latest first.
class GlanceLine {
    Q_GADGET
    Q_PROPERTY(QString contactId MEMBER contactId)
    Q_PROPERTY(QString channel MEMBER channel)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString snippet MEMBER snippet)
    Q_PROPERTY(int unread MEMBER unread)
    Q_PROPERTY(bool isDrafting MEMBER isDrafting)
    Q_PROPERTY(QString draftText MEMBER draftText)
public:
    QString contactId; ///< may be empty
    QString channel; ///< such as "WHATSAPP"
    QString title;
    QString snippet;
    int unread = 0;
    bool isDrafting = false; ///< a reply is being drafted
    QString draftText; ///< the result; empty if none was requested

    bool operator==(const GlanceLine&) const = default;
};

/// The day at a glance: the small window at the tray, and the section "Today" of the main window.
class CorvaneMenuBarView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QList<corvane::TabItem> tabs READ tabs NOTIFY changed)
    Q_PROPERTY(bool visible READ isVisible WRITE setVisible NOTIFY changed)
    Q_PROPERTY(QString tab READ tab WRITE setTab NOTIFY tabChanged) ///< the id of the one in front
    Q_PROPERTY(QList<corvane::DayLine> today READ today NOTIFY changed)
    Q_PROPERTY(QList<corvane::GlanceLine> glance READ glance NOTIFY changed)
    Q_PROPERTY(QString draftLabel READ draftLabel CONSTANT)
    Q_PROPERTY(QString emptyGlanceText READ emptyGlanceText CONSTANT)
    Q_PROPERTY(QString noticeTitle READ noticeTitle NOTIFY changed) ///< about the web account; both may be empty
    Q_PROPERTY(QString noticeText READ noticeText NOTIFY changed)
    Q_PROPERTY(corvane::ApprovalsView* approvals READ approvals CONSTANT)
    Q_PROPERTY(corvane::ResourcesView* resources READ resources CONSTANT)
    Q_PROPERTY(corvane::UpcomingMeetings* meetings READ meetings CONSTANT)
    Q_PROPERTY(corvane::CallsView* calls READ calls CONSTANT)
    Q_PROPERTY(corvane::CallSettings* callSettings READ callSettings CONSTANT)
public:
    /// In the order of the tabs; "RAM" only with a monitor.
    enum class MenuTab { Now, Approvals, Ram, Calendar, Calls };

    /// What other tabs show; other screens show the same.
    struct Parts {
        ApprovalsView& approvals;
        UpcomingMeetings& meetings;
        CallsView& calls;
        CallSettings& callSettings;
    };

    /// All references outlive the panel.
    struct Surroundings {
        EngineManager& engine;
        AccountStore& accounts;
        SessionStore& session;
        NotificationCentre& notifications;
        AIServices& ai;
        QuickCapture* capture = nullptr; ///< none: not shown
        Parts parts;
    };

    explicit CorvaneMenuBarView(const Surroundings& surroundings, QObject* parent = nullptr);

    static QList<TabItem> everyTab(); ///< whether it is currently shown or not
    bool hasTab(const QString& id) const; ///< it is currently shown
    QList<TabItem> tabs() const;
    QString tab() const;
    void setTab(const QString& id); ///< an unknown word has no effect
    const QList<DayLine>& today() const { return m_today; }
    const QList<GlanceLine>& glance() const { return m_glance; }
    QString draftLabel() const { return u"AI-draft a reply — it queues in Approvals, nothing sends without you"_s; }
    QString emptyGlanceText() const { return u"No conversations in the local mirror yet."_s; }
    QString noticeTitle() const;
    QString noticeText() const;
    ApprovalsView* approvals() { return &m_at.parts.approvals; }
    ResourcesView* resources() { return &m_resources; }
    UpcomingMeetings* meetings() { return &m_at.parts.meetings; }
    CallsView* calls() { return &m_at.parts.calls; }
    CallSettings* callSettings() { return &m_at.parts.callSettings; }

    /// The day is read when the panel opens, and while it is visible whenever something changes.
    bool isVisible() const { return m_visible; }
    void setVisible(bool visible);

    Q_INVOKABLE void run(const QString& action); ///< of a line of `today`, or "window", "settings" or "signIn"
    Q_INVOKABLE void openConversation(const QString& contactId); ///< does nothing for a row without a contact
    Q_INVOKABLE void draftReply(int row); ///< of `glance`
    Q_INVOKABLE void openCall(const QString& id); ///< in the main window
    Q_INVOKABLE void reviewAll(); ///< opens the approvals in the main window

Q_SIGNALS:
    void changed();
    void tabChanged();
    void windowRequested(); ///< raise the main window

private:
    QList<MenuTab> shownTabs() const;
    void refresh();
    void readDay();
    int enginesRunning() const;

    Surroundings m_at;
    ResourcesView m_resources;
    MenuTab m_tab = MenuTab::Now;
    QList<DayLine> m_today;
    QList<GlanceLine> m_glance;
    QList<InboxGlanceRow> m_glanceRows; ///< the rows of `glance`
    ReplyDrafts m_replies;
    bool m_visible = false;
};

}
