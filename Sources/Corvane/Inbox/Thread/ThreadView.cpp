#include "Inbox/Thread/ThreadView.h"

#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Foundation/Text.h"
#include "Presentation/DateWords.h"
#include "Presentation/MailText.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr qsizetype longerBy = 8;
constexpr qsizetype screenful = 16; ///< rows, about
constexpr Milliseconds highlightTime { 2500 };

/// A message's attachment has the message's id, a slash and a number; only the message counts as unread.
bool isAttachment(const UnifiedMsgRow& row)
{
    const qsizetype slash = row.providerMsgId.lastIndexOf(u'/');
    bool isNumber = false;
    row.providerMsgId.mid(slash + 1).toInt(&isNumber);
    return slash > 0 && isNumber && row.mediaType.has_value();
}

/// Whether some of the words occur only in the quoted tail.
bool isInQuote(const QString& body, const QString& words)
{
    const qsizetype start = MailText::quoteStart(body);
    const QString head = folded(body.first(start));
    const QString quote = folded(body.sliced(start));
    return std::ranges::any_of(folded(words).split(u' ', Qt::SkipEmptyParts),
        [&](const QString& word) { return quote.contains(word) && !head.contains(word); });
}

}

ThreadView::ThreadView(EngineManager& engine, AccountStore& accounts, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_engine(engine)
    , m_scheduler(scheduler)
    , m_window(engine.db())
    , m_reading(scheduler)
    , m_history(engine, accounts, scheduler, m_window)
{
    connect(this, &ThreadView::changed, &m_history, &ThreadHistory::changed);
    connect(&engine, &EngineManager::mediaDownloadStatusChanged, this, [this](const QString& messageId) {
        if (message(messageId))
            present();
    });
}

QString ThreadView::emptyText() const
{
    return u"No messages yet — this conversation will fill when local messages sync."_s;
}

void ThreadView::open(const ContactRow& contact, int unread)
{
    const bool sameFacts = contact.id == m_contact.id && contact.platforms == m_contact.platforms
        && contact.isGroup == m_contact.isGroup;
    const bool samePerson = contact.id == m_contact.id;
    m_contact = contact;
    if (!samePerson) {
        m_window.open(contact.id);
        m_loaded = false;
        m_unread = unread;
        m_firstUnreadId.clear();
        m_lengths.clear();
        m_unfolded.clear();
        m_highlightId.clear();
        m_highlightEnd.reset();
        setError({});
        if (contact.id.isEmpty())
            m_reading.end();
        else
            m_reading.begin();
    }
    m_history.open(contact);
    reload();
    if (!sameFacts)
        Q_EMIT contactChanged();
}

void ThreadView::reload()
{
    const QList<UnifiedMsgRow> before = m_window.messages();
    const bool first = !m_loaded;
    m_loaded = true;
    m_window.refresh(m_reading.newestInSight() ? ThreadWindow::Reader::AtNewest : ThreadWindow::Reader::Elsewhere);
    const QList<UnifiedMsgRow>& messages = m_window.messages();
    if (first) {
        m_openedAt = messages.isEmpty() ? threadEnd : ThreadPlace { messages.last().ts, messages.last().id };
        presentWindow(Opening::Yes);
        return;
    }
    if (messages == before && DateWords(m_scheduler.nowMs()).dayOf(m_scheduler.nowMs()) == m_today)
        return;
    const bool arrived
        = !m_window.hasNewer() && !messages.isEmpty() && (before.isEmpty() || messages.last().id != before.last().id);
    if (arrived)
        m_reading.setNewestInSight(false); // until the window has scrolled to it
    presentWindow();
    if (arrived && !before.isEmpty() && messages.last().ts > before.last().ts && messages.last().direction == u"IN")
        Q_EMIT announced(m_rows.rows().last().spoken);
}

void ThreadView::presentWindow(Opening opening)
{
    markFirstUnread();
    present(opening);
    Q_EMIT changed();
}

void ThreadView::extendOlder()
{
    if (!m_window.hasOlder())
        return;
    m_window.extend(Towards::Older);
    presentWindow();
}

void ThreadView::extendNewer()
{
    if (!m_window.hasNewer())
        return;
    m_window.extend(Towards::Newer);
    presentWindow();
}

void ThreadView::showNewest()
{
    if (!m_window.hasNewer())
        return;
    m_window.showNewest();
    presentWindow(Opening::Yes);
}

void ThreadView::showOldest()
{
    if (!m_window.hasOlder())
        return;
    m_window.showOldest();
    presentWindow();
}

bool ThreadView::show(const QString& messageId, const QString& words)
{
    if (!message(messageId)) {
        if (!m_window.showAround(messageId)) {
            setError(u"This message is no longer in the conversation."_s);
            return false;
        }
        presentWindow();
    }
    m_reading.setNewestInSight(false); // the window reports whether that message is visible
    if (isInQuote(message(messageId)->body, words))
        m_unfolded.insert(messageId);
    highlight(messageId);
    return true;
}

// Each live message of the other side raises the counter by one, so the unread ones are the last messages from before
// the opening. The first of many may be pages away.
void ThreadView::markFirstUnread()
{
    if (!m_firstUnreadId.isEmpty() || m_window.hasNewer())
        return;
    int left = m_unread;
    for (auto row = m_window.messages().crbegin(); row != m_window.messages().crend() && left > 0; ++row) {
        if (row->direction == u"OUT" || row->ts > m_openedAt.ts || isAttachment(*row))
            continue;
        if (--left == 0)
            m_firstUnreadId = row->id;
    }
}

void ThreadView::highlight(const QString& messageId)
{
    m_highlightId = messageId;
    m_highlightEnd = messageId.isEmpty() ? nullptr : m_scheduler.after(highlightTime, [this] { highlight({}); });
    present();
}

void ThreadView::showMore(const QString& messageId)
{
    if (!message(messageId))
        return;
    qsizetype& length = m_lengths[messageId];
    length = std::max(length, firstBodyLength) * longerBy;
    present();
}

void ThreadView::toggleQuote(const QString& messageId)
{
    if (!m_unfolded.remove(messageId))
        m_unfolded.insert(messageId);
    present();
}

int ThreadView::rowOf(const QString& messageId) const
{
    const auto& rows = m_rows.rows();
    const auto found = std::ranges::find(rows, messageId, &ThreadRow::id);
    return found == rows.end() ? -1 : int(found - rows.begin());
}

void ThreadView::present(Opening opening)
{
    const qint64 now = m_scheduler.nowMs();
    m_today = DateWords(now).dayOf(now);
    const QList<ThreadRow> rows = threadRows(ThreadBuilder::build(m_window.messages(), now),
        { .contactName = m_contact.name,
            .isGroup = m_contact.isGroup,
            .highlightId = m_highlightId,
            .firstUnreadId = m_firstUnreadId,
            .unread = m_unread,
            .lengths = m_lengths,
            .unfolded = m_unfolded,
            .download = [this](const QString& messageId) { return m_engine.mediaDownloadStatus(messageId); },
            .mediaPlaces = [this](const UnifiedMsgRow& row) { return m_engine.mediaPlaces(row); },
            .transcription = m_transcription });
    if (opening == Opening::Yes) {
        // A view creates its first delegates first, so the visible rows are added first.
        m_rows.assign(rows.last(std::min(rows.size(), screenful)));
        Q_EMIT opened();
    }
    m_rows.assign(rows);
}

void ThreadView::setError(const QString& text)
{
    if (m_errorText == text)
        return;
    m_errorText = text;
    Q_EMIT errorTextChanged();
}

const UnifiedMsgRow* ThreadView::message(const QString& messageId) const
{
    const QList<UnifiedMsgRow>& messages = m_window.messages();
    const auto found = std::ranges::find(messages, messageId, &UnifiedMsgRow::id);
    return found == messages.end() ? nullptr : &*found;
}

}
