#include "Calendar/CalendarView.h"

#include "Calendar/CalendarCommands.h"
#include "Calendar/CalendarEdits.h"
#include "Calendar/MeetingRules.h"
#include "Foundation/Ids.h"
#include "Foundation/Literals.h"
#include "Platform/Desktop.h"
#include "Presentation/DateWords.h"
#include "Presentation/Downloads.h"

#include <QStandardPaths>
#include <algorithm>

namespace corvane {

namespace {

constexpr int weekDays = 7;
constexpr int firstWorkHour = 8; ///< the earliest time suggested for a new event
constexpr int lastWorkHour = 18;
constexpr Milliseconds minute { 60'000 };
constexpr qint64 mirrorBackMs = 86'400'000;
constexpr qint64 mirrorAheadMs = 60LL * 86'400'000;

qint64 startOf(const QDate& day)
{
    return day.startOfDay().toMSecsSinceEpoch();
}

EventCard cardOf(LocalDB& db, const CalEvent& event, qint64 nowMs)
{
    EventCard card { event.id, event.title, whenText(event, nowMs), event.location, event.calendar, event.notes, {},
        isJoinable(event, nowMs), isMeetingCandidate(event), {} };
    if (const auto link = joinURL(event))
        card.link = link->toString();
    for (const CalAttendee& attendee : event.attendeeDetails) {
        const QString detail = attendee.currentUser ? u"you"_s
            : attendee.declined                     ? u"declined"_s
            : attendee.email == attendee.name       ? QString()
                                                    : attendee.email;
        card.people.append({ attendee.name, detail,
            attendee.currentUser ? QString()
                                 : attendeeContact(db, attendee.email, attendee.name).value_or(QString()) });
    }
    return card;
}

}

CalendarView::CalendarView(const Surroundings& surroundings, QObject* parent)
    : QObject(parent)
    , m_at(surroundings)
    , m_connection(m_at.store, m_at.desktop)
    , m_day(DateWords(nowMs()).today())
    , m_newEvent([this](const NewCalendarEntry& entry) { return addEvent(entry); })
{
    connect(&m_at.store, &CalendarStore::changed, this, &CalendarView::readPage);
    connect(&m_at.commands, &CalendarCommands::changed, this, &CalendarView::changed);
    connect(&m_connection, &CalendarConnection::said, this, &CalendarView::told);
    m_minute = m_at.store.surroundings().scheduler.every(minute, [this] { lay(); });
    readPage();
}

CalendarView::~CalendarView() = default;

qint64 CalendarView::nowMs() const
{
    return m_at.store.surroundings().scheduler.nowMs();
}

QString CalendarView::notice() const
{
    return !m_told.isEmpty() || m_connection.state() != "ready"_L1 ? m_told
                                                                   : m_at.store.lastError().value_or(QString());
}

QDate CalendarView::firstDay() const
{
    if (!m_week)
        return m_day;
    const int back = (m_day.dayOfWeek() - QLocale().firstDayOfWeek() + weekDays) % weekDays;
    return m_day.addDays(-back);
}

QString CalendarView::title() const
{
    const QLocale locale;
    const QDate first = firstDay();
    if (!m_week)
        return locale.toString(first, u"dddd, d MMMM yyyy"_s);
    const QDate last = first.addDays(weekDays - 1);
    const QString from
        = first.month() == last.month() ? QString::number(first.day()) : locale.toString(first, u"d MMMM"_s);
    return from + u" – "_s + locale.toString(last, u"d MMMM yyyy"_s);
}

void CalendarView::setWeek(bool week)
{
    if (week == m_week)
        return;
    m_week = week;
    readPage();
}

/// Pages within the mirror are shown at once; others must be read.
void CalendarView::readPage()
{
    const qint64 fromMs = startOf(firstDay());
    const qint64 toMs = startOf(firstDay().addDays(m_week ? weekDays : 1));
    const auto show = [this, fromMs, toMs](const QList<CalEvent>& events) {
        if (startOf(firstDay()) != fromMs)
            return; // another page is shown by now
        QList<CalEvent> ofPage;
        std::ranges::copy_if(events, std::back_inserter(ofPage), [&](const CalEvent& event) {
            return event.startMs < toMs && std::max(event.endMs, event.startMs + 1) > fromMs;
        });
        m_events = m_at.store.visible(ofPage);
        lay();
    };
    show(m_at.store.events());
    if (fromMs < nowMs() - mirrorBackMs || toMs > nowMs() + mirrorAheadMs)
        m_at.store.eventsBetween(fromMs, toMs, this, show);
}

void CalendarView::lay()
{
    QHash<QString, QString> colours;
    for (const CalendarInfo& calendar : m_at.store.calendars())
        colours.insert(calendar.title, calendar.colour);
    m_tiles.show(calendarLayout(m_events, firstDay(), m_week ? weekDays : 1, nowMs(), colours), firstDay(), nowMs());
    if (find(m_added))
        m_selected = std::exchange(m_added, {});
    const CalEvent* const event = find(m_selected);
    m_card = event ? cardOf(m_at.store.surroundings().db, *event, nowMs()) : EventCard();
    if (!event)
        m_selected.clear();
    Q_EMIT changed();
}

const CalEvent* CalendarView::find(const QString& id) const
{
    const auto found = std::ranges::find(m_events, id, &CalEvent::id);
    if (found != m_events.end())
        return &*found;
    const QList<CalEvent>& mirrored = m_at.store.events();
    const auto other = std::ranges::find(mirrored, id, &CalEvent::id);
    return id.isEmpty() || other == mirrored.end() ? nullptr : &*other;
}

void CalendarView::step(int pages)
{
    m_day = m_day.addDays(pages * (m_week ? weekDays : 1));
    m_selected.clear();
    readPage();
}

void CalendarView::today()
{
    m_day = DateWords(nowMs()).today();
    readPage();
}

void CalendarView::show(const QString& id, qint64 startMs)
{
    m_day = DateWords(nowMs()).dayOf(startMs);
    m_added = id;
    readPage();
}

void CalendarView::select(const QString& id)
{
    m_added.clear();
    m_selected = id;
    m_offered.clear();
    lay();
}

void CalendarView::selectNext(int step)
{
    const CalendarLayout& layout = m_tiles.layout();
    QStringList ids;
    for (const EventBlock& block : layout.allDay + layout.blocks) {
        if (!ids.contains(block.id))
            ids.append(block.id);
    }
    if (ids.isEmpty())
        return;
    const qsizetype at = ids.indexOf(m_selected);
    if (at >= 0)
        return select(ids[qBound<qsizetype>(0, at + step, ids.size() - 1)]);
    // Without a selection, starts at the next event.
    const auto next = std::ranges::find_if(layout.blocks, [](const EventBlock& block) { return !block.past; });
    select(next == layout.blocks.end() ? ids.first() : next->id);
}

void CalendarView::join(const QString& id)
{
    if (const CalEvent* const event = find(id)) {
        if (const auto link = joinURL(*event))
            m_at.desktop.openInBrowser(*link);
    }
}

void CalendarView::openPerson(const QString& contactId)
{
    if (!contactId.isEmpty())
        m_at.notifications.post(notifications::openConversation, contactId);
}

void CalendarView::prepare(const QString& id)
{
    if (const CalEvent* const event = find(id))
        m_at.prep.prepare(CalEvent(*event));
}

void CalendarView::openReview()
{
    m_at.prep.close();
    m_at.notifications.post(notifications::openApprovals);
}

bool CalendarView::canAdd() const
{
    return m_at.store.access() == CalendarStore::Access::Granted && writableCalendar(m_at.store);
}

void CalendarView::beginEvent()
{
    if (!canAdd())
        return;
    const QDateTime now = QDateTime::fromMSecsSinceEpoch(nowMs());
    const bool showsToday = firstDay() <= now.date() && now.date() < firstDay().addDays(m_week ? weekDays : 1);
    m_newEvent.open(
        showsToday ? now.date() : firstDay(), QTime(qBound(firstWorkHour, now.time().hour() + 1, lastWorkHour), 0));
}

QString CalendarView::addEvent(NewCalendarEntry entry)
{
    const auto calendar = writableCalendar(m_at.store);
    if (!calendar)
        return u"There is no calendar for new events."_s;
    entry.uid = uuidText();
    entry.stampMs = nowMs();
    m_day = QDateTime::fromMSecsSinceEpoch(entry.startMs).date();
    corvane::addEvent(m_at.store, calendar->id, entry, this, [this](const Result<QString>& added) {
        if (added)
            m_added = *added;
        else
            told(added.error().message);
    });
    readPage();
    return {};
}

void CalendarView::importFile(const QUrl& file)
{
    importEvents(m_at.store, file.toLocalFile(), this,
        [this](const Result<QString>& words) { told(words ? *words : words.error().message); });
}

void CalendarView::offerFile()
{
    m_offered.clear();
    const QString path = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + u'/'
        + fileNameOf(m_card.title) + u".ics"_s;
    exportEvent(m_at.store, m_selected, path, this, [this, path](const Result<QString>& saved) {
        if (!saved)
            return told(saved.error().message);
        m_offered = QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded);
        Q_EMIT changed();
    });
}

void CalendarView::exportSelected()
{
    const QString path = freeDownload(m_card.title, u"ics"_s);
    exportEvent(m_at.store, m_selected, path, this,
        [this, path](const Result<QString>& saved) { told(saved ? savedTo(path) : saved.error().message); });
}

void CalendarView::told(const QString& words)
{
    m_told = words;
    Q_EMIT changed();
}

void CalendarView::dismiss()
{
    told({});
}

QList<Choice> CalendarView::asked() const
{
    QList<Choice> asked;
    for (const CalCommand& command : m_at.commands.waiting()) {
        CalEvent event;
        event.startMs = command.startMs;
        event.endMs = command.endMs;
        asked.append({ command.id, command.title + u" · "_s + whenText(event, nowMs()) });
    }
    return asked;
}

void CalendarView::answer(const QString& command, bool add)
{
    const auto asked = std::ranges::find(m_at.commands.waiting(), command, &CalCommand::id);
    if (asked == m_at.commands.waiting().end())
        return;
    const Decided decided = add ? m_at.commands.add(command, eventHash(*asked)) : m_at.commands.reject(command);
    if (decided == Decided::Changed)
        told(u"It has changed since you saw it."_s);
}

}
