#include "Work/CXHub.h"

#include "Foundation/Literals.h"
#include "Foundation/NotificationCentre.h"
#include "Presentation/ContactFace.h"
#include "Presentation/CountWords.h"
#include "Presentation/DateWords.h"
#include "Store/Core/StoreWatch.h"
#include "Work/WorkWords.h"

#include <algorithm>

namespace corvane {

namespace {

const QString cx = u"cx"_s;
constexpr qint64 dayMs = 24LL * 3600 * 1000;
constexpr qint64 forgottenAfterDays = 60; ///< nobody waits that long for an answer
constexpr int programWrites = 30; ///< a sender of that many messages without an answer is a program
constexpr int peopleRead = 1000;
constexpr int peopleShown = 200;
constexpr int messagesShown = 30;
constexpr int itemsShown = 50;

QString shownName(const QString& name)
{
    const QString line = shownLine(name);
    return line.isEmpty() ? u"Unknown"_s : line;
}

}

bool isAutomatic(const WaitingPerson& person)
{
    if (!person.everAnswered && person.unanswered >= programWrites)
        return true;
    static const QStringList names { u"alert"_s, u"alerts"_s, u"bounce"_s, u"bounces"_s, u"mailerdaemon"_s,
        u"newsletter"_s, u"notification"_s, u"notifications"_s, u"notify"_s, u"postmaster"_s };
    return std::ranges::any_of(person.handles, [&](const QString& handle) {
        QString name = handle.section(u'@', 0, 0).toLower();
        if (!handle.contains(u'@'))
            return person.channel == "TELEGRAM"_L1 && name.endsWith("bot"_L1);
        name.removeIf([](QChar letter) { return !letter.isLetterOrNumber(); });
        return names.contains(name) || name.contains("noreply"_L1) || name.contains("donotreply"_L1);
    });
}

CXHub::CXHub(const WorkServices& services, QObject* parent)
    : QObject(parent)
    , m_at(services)
    , m_shell(services, WorkConsoleConfig::cx(), { { u"queue"_s, u"Waiting"_s } }, this)
{
    connect(&m_shell, &WorkModuleShell::refreshed, this, &CXHub::readPlaces);
    connect(&m_shell, &WorkModuleShell::aged, this, &CXHub::readPlaces);
    m_at.db.watch().on(StoreSubject::Messages, this, [this] { m_shell.setStale(); });
}

void CXHub::readPlaces()
{
    const qint64 now = m_at.db.nowMs();
    const DateWords words(now);
    QList<WaitingPerson> waiting = fetchWaitingPeople(m_at.db, now - forgottenAfterDays * dayMs, peopleRead);
    m_automatic = int(waiting.removeIf(isAutomatic));
    waiting = waiting.mid(0, peopleShown);
    // A client's context refers to the contact, or has the person's name.
    const QList<WorkContextRow> contexts = fetchWorkContexts(m_at.db, cx, 500);
    m_contexts.clear();
    QList<WaitingSeed> seeds;
    for (const WaitingPerson& person : waiting) {
        WaitingSeed seed;
        seed.contactId = person.contactId;
        seed.name = shownName(person.name);
        seed.channel = person.channel;
        seed.snippet = shownLine(person.snippet);
        seed.waits = u"wrote "_s + words.ago(person.sinceMs);
        seed.late = now - person.sinceMs > dayMs;
        seed.initials = initials(person.name);
        seed.hue = hue(person.contactId);
        const auto context = std::ranges::find_if(contexts, [&](const WorkContextRow& row) {
            return row.externalRef == person.contactId
                || (!person.name.isEmpty() && row.title.compare(person.name, Qt::CaseInsensitive) == 0);
        });
        if (context != contexts.end()) {
            m_contexts.insert(person.contactId, context->id);
            int open = 0;
            int bugs = 0;
            for (const WorkItemRecord& item :
                fetchWorkItems(m_at.db, { .module = cx, .context = context->id }, WorkItems::Open, itemsShown)) {
                ++open;
                bugs += isTicketKind(item.kind) ? 1 : 0;
            }
            seed.work = factLine({ open > 0 ? u"%1 open"_s.arg(open) : QString(),
                bugs > 0 ? countWords(bugs, u"ticket"_s, u"tickets"_s) : QString() });
        }
        seed.aloud = QStringList { seed.name, seed.waits, seed.work, seed.snippet }.join(u", "_s);
        seeds.append(seed);
    }
    m_queue.assign(seeds);
    if (std::ranges::find(seeds, m_selected, &WaitingSeed::contactId) == seeds.end())
        m_selected = seeds.isEmpty() ? QString() : seeds.first().contactId;
    m_shell.rail()->setPlaceCount(u"queue"_s, int(seeds.size()));
    readSelected();
}

void CXHub::readSelected()
{
    const DateWords words(m_at.db.nowMs());
    QList<QueueMessage> messages;
    QList<WorkItemSeed> items;
    if (!m_selected.isEmpty()) {
        for (const UnifiedMsgRow& row : fetchUnifiedThread(m_at.db, m_selected, messagesShown)) {
            QueueMessage message;
            message.id = row.id;
            message.body = shownText(row.body);
            if (message.body.isEmpty())
                message.body = row.mediaType ? u"(%1)"_s.arg(*row.mediaType) : u"(empty)"_s;
            message.time = words.listTime(row.ts);
            message.mine = row.direction == "OUT"_L1;
            messages.append(message);
        }
        const QString context = m_contexts.value(m_selected);
        if (!context.isEmpty()) {
            for (const WorkItemRecord& item :
                fetchWorkItems(m_at.db, { .module = cx, .context = context }, WorkItems::Open, itemsShown))
                items.append(itemSeed(item, false, words));
        }
    }
    m_thread.assign(messages);
    m_items.assign(items);
    Q_EMIT changed();
}

QString CXHub::queueText() const
{
    const auto late = std::ranges::count(m_queue.rows(), true, &WaitingSeed::late);
    const auto people = int(m_queue.rows().size());
    return factLine({ people > 0 ? countWords(people, u"person waits"_s, u"people wait"_s) : QString(),
        late > 0 ? u"%1 for more than a day"_s.arg(late) : QString(),
        m_automatic > 0 ? countWords(m_automatic, u"automatic sender left out"_s, u"automatic senders left out"_s)
                        : QString() });
}

QString CXHub::name() const
{
    const auto row = std::ranges::find(m_queue.rows(), m_selected, &WaitingSeed::contactId);
    return row == m_queue.rows().end() ? QString() : row->name;
}

QString CXHub::facts() const
{
    const auto row = std::ranges::find(m_queue.rows(), m_selected, &WaitingSeed::contactId);
    return row == m_queue.rows().end() ? QString() : factLine({ row->waits, row->work });
}

QString CXHub::itemsText() const
{
    return m_items.rows().isEmpty() ? u"No open work about this person."_s : QString();
}

void CXHub::select(const QString& contactId)
{
    if (std::exchange(m_selected, contactId) != contactId)
        readSelected();
}

void CXHub::step(int by)
{
    const QList<WaitingSeed>& rows = m_queue.rows();
    if (rows.isEmpty())
        return;
    const auto at = std::ranges::find(rows, m_selected, &WaitingSeed::contactId);
    select(
        rows.at(std::clamp<qsizetype>((at == rows.end() ? 0 : at - rows.begin()) + by, 0, rows.size() - 1)).contactId);
}

void CXHub::reply()
{
    if (!m_selected.isEmpty())
        m_at.notifications.post(notifications::openConversation, m_selected);
}

void CXHub::newTicket()
{
    const QString context = m_contexts.value(m_selected);
    const QString about = name();
    if (!context.isEmpty())
        m_shell.rail()->select(context);
    m_shell.create()->begin(u"item"_s, u"ticket"_s, context.isEmpty() ? about + u": "_s : QString());
}

}
