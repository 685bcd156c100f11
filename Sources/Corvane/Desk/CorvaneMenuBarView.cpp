#include "Desk/CorvaneMenuBarView.h"

#include "Desk/QuickCapture.h"
#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Foundation/MachineWords.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/WAName.h"
#include "Store/Core/LocalDB.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Work/DigestQueries.h"
#include "Web/SessionStore.h"

#include <QDateTime>
#include <algorithm>

namespace corvane {

namespace {

using MenuTab = CorvaneMenuBarView::MenuTab;

constexpr int glanceRows = 4;

struct TabWords {
    QString id;
    QString label;
};

TabWords words(MenuTab tab)
{
    switch (tab) {
    case MenuTab::Now:
        return { u"now"_s, u"Now"_s };
    case MenuTab::Approvals:
        return { u"approvals"_s, u"Approvals"_s };
    case MenuTab::Ram:
        return { u"ram"_s, u"RAM"_s };
    case MenuTab::Calendar:
        return { u"calendar"_s, u"Calendar"_s };
    case MenuTab::Calls:
        return { u"calls"_s, u"Calls"_s };
    }
    Q_UNREACHABLE();
}

TodayDigest digestOfToday(LocalDB& db)
{
    const QDate today = QDateTime::fromMSecsSinceEpoch(db.nowMs()).date();
    const qint64 start = today.startOfDay().toMSecsSinceEpoch();
    return todayDigest(db, start, today.addDays(1).startOfDay().toMSecsSinceEpoch(), isoTime(start));
}

QString meetingsText(const TodayDigest& day)
{
    if (day.meetingsToday == 0)
        return u"No meetings today"_s;
    const QString count = day.meetingsToday == 1 ? u"1 meeting today"_s : u"%1 meetings today"_s.arg(day.meetingsToday);
    return day.nextMeetingTitle ? count + u" · "_s + *day.nextMeetingTitle : count;
}

QString agentsText(const TodayDigest& day)
{
    if (day.agentActionsToday == 0)
        return u"No agent activity yet today"_s;
    return day.agentActionsToday == 1 ? u"1 agent action today"_s
                                      : u"%1 agent actions today"_s.arg(day.agentActionsToday);
}

QString captureText(QuickCapture& capture)
{
    const QString text = u"Quick capture — task or note"_s;
    return capture.hotKey().isBound() ? text + u" (%1 anywhere)"_s.arg(capture.hotKey().keys()) : text;
}

DayLine line(const char* icon, const QString& text, const char* action)
{
    return { QString::fromLatin1(icon), text, QString::fromLatin1(action) };
}

}

CorvaneMenuBarView::CorvaneMenuBarView(const Surroundings& surroundings, QObject* parent)
    : QObject(parent)
    , m_at(surroundings)
    , m_replies(surroundings.engine.db(), surroundings.ai)
{
    connect(&m_replies, &ReplyDrafts::changed, this, &CorvaneMenuBarView::refresh);
    connect(&m_at.parts.approvals, &ApprovalsView::changed, this, &CorvaneMenuBarView::refresh);
    connect(&m_at.engine, &EngineManager::unreadTotalChanged, this, &CorvaneMenuBarView::refresh);
    connect(&m_at.engine, &EngineManager::runtimeChanged, this, &CorvaneMenuBarView::refresh);
    connect(&m_at.session, &SessionStore::changed, this, &CorvaneMenuBarView::refresh);
    // The main window asks for permission.
    connect(m_at.parts.calls.recording(), &RecordingView::consentAsked, this, [this] {
        if (m_visible)
            Q_EMIT windowRequested();
    });
    for (const StoreSubject subject : { StoreSubject::Messages, StoreSubject::Work, StoreSubject::Calendar })
        m_at.engine.db().watch().on(subject, this, [this] { refresh(); });
}

QList<MenuTab> CorvaneMenuBarView::shownTabs() const
{
    QList<MenuTab> tabs { MenuTab::Now, MenuTab::Approvals };
    if (m_resources.hasMonitor())
        tabs.append(MenuTab::Ram);
    tabs.append(MenuTab::Calendar);
    tabs.append(MenuTab::Calls);
    return tabs;
}

QList<TabItem> CorvaneMenuBarView::everyTab()
{
    QList<TabItem> tabs;
    for (const MenuTab tab : { MenuTab::Now, MenuTab::Approvals, MenuTab::Ram, MenuTab::Calendar, MenuTab::Calls })
        tabs.append({ words(tab).id, words(tab).label, 0 });
    return tabs;
}

bool CorvaneMenuBarView::hasTab(const QString& id) const
{
    return std::ranges::any_of(shownTabs(), [&](MenuTab tab) { return words(tab).id == id; });
}

QList<TabItem> CorvaneMenuBarView::tabs() const
{
    QList<TabItem> tabs;
    for (const MenuTab tab : shownTabs())
        tabs.append(
            { words(tab).id, words(tab).label, tab == MenuTab::Approvals ? m_at.parts.approvals.waiting() : 0 });
    return tabs;
}

QString CorvaneMenuBarView::tab() const
{
    return words(m_tab).id;
}

void CorvaneMenuBarView::setTab(const QString& id)
{
    const QList<MenuTab> shown = shownTabs();
    const auto found = std::ranges::find_if(shown, [&](MenuTab tab) { return words(tab).id == id; });
    if (found == shown.end() || *found == m_tab)
        return;
    m_tab = *found;
    refresh();
    Q_EMIT tabChanged();
}

QString CorvaneMenuBarView::noticeTitle() const
{
    return m_at.session.webRejected() ? u"Web session expired — sync is down"_s : QString();
}

QString CorvaneMenuBarView::noticeText() const
{
    if (m_at.session.webRejected())
        return u"LinkedIn/web inbox can't mirror until you sign in again."_s;
    return m_at.session.signedIn()
        ? QString()
        : u"Sign in to link %1 to your Nimb workspace and start syncing."_s.arg(machineWords::thisMachine);
}

void CorvaneMenuBarView::setVisible(bool visible)
{
    m_visible = visible;
    if (!visible)
        m_replies.forgetDone();
    refresh();
}

int CorvaneMenuBarView::enginesRunning() const
{
    return int(std::ranges::count_if(
        m_at.accounts.accounts(), [this](const Account& account) { return m_at.engine.isRunning(account); }));
}

void CorvaneMenuBarView::refresh()
{
    m_resources.setShown(m_visible && m_tab == MenuTab::Ram);
    if (!m_visible)
        return;
    if (m_tab == MenuTab::Now)
        readDay();
    if (m_tab == MenuTab::Calls)
        m_at.parts.calls.refresh();
    Q_EMIT changed();
}

void CorvaneMenuBarView::readDay()
{
    const int engines = enginesRunning();
    const TodayDigest day = digestOfToday(m_at.engine.db());
    m_today = {
        line("approvals", m_at.parts.approvals.waitingText(), "approvals"),
        line("hub-inbox", u"%1 unread messages"_s.arg(m_at.engine.unreadTotal()), "inbox"),
        line("hub-ops", u"%1 open work items"_s.arg(day.openWorkItems), "ops"),
    };
    if (hasCalendar(m_at.engine.db()))
        m_today.append(line("view-calendar", meetingsText(day), "calendar"));
    m_today.append(line("hub-dev", agentsText(day), "dev"));
    if (day.latestUpdate)
        m_today.append(line("note", *day.latestUpdate, "ops"));
    m_today.append(
        line("link", engines == 1 ? u"1 engine running"_s : u"%1 engines running"_s.arg(engines), "settings"));
    if (m_at.capture)
        m_today.append(line("list-add", captureText(*m_at.capture), "capture"));
    m_glance.clear();
    m_glanceRows = fetchInboxGlance(m_at.engine.db(), glanceRows);
    for (const InboxGlanceRow& row : std::as_const(m_glanceRows)) {
        const ReplyDrafts::State reply = m_replies.state(row.conversationId);
        m_glance.append({ row.contactId, row.channel, WAName::pretty(row.title), row.snippet.simplified(), row.unread,
            reply.isBusy, reply.text });
    }
}

void CorvaneMenuBarView::run(const QString& action)
{
    if (action == u"approvals" || action == u"calendar") {
        setTab(action);
        return;
    }
    if (action == u"capture") {
        m_at.capture->toggle();
        return;
    }
    if (action == u"signIn") {
        m_at.session.startSignIn();
        return;
    }
    if (action == u"settings")
        m_at.notifications.post(notifications::openSettings);
    else if (action != u"window")
        m_at.notifications.post(notifications::openWorkConsole, action);
    Q_EMIT windowRequested();
}

void CorvaneMenuBarView::openConversation(const QString& contactId)
{
    if (contactId.isEmpty())
        return;
    m_at.notifications.post(notifications::openConversation, contactId);
    Q_EMIT windowRequested();
}

void CorvaneMenuBarView::draftReply(int row)
{
    if (row >= 0 && row < m_glanceRows.size())
        m_replies.draft(InboxGlanceRow(m_glanceRows[row]));
}

void CorvaneMenuBarView::openCall(const QString& id)
{
    m_at.parts.calls.select(id);
    m_at.parts.calls.show();
    Q_EMIT windowRequested();
}

void CorvaneMenuBarView::reviewAll()
{
    m_at.notifications.post(notifications::openApprovals);
    Q_EMIT windowRequested();
}

}
