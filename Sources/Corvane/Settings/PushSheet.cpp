#include "Settings/PushSheet.h"

#include "Engines/AccountStore.h"
#include "Foundation/Literals.h"
#include "Foundation/WAName.h"
#include "Presentation/CountWords.h"
#include "Presentation/DateWords.h"
#include "Presentation/Downloads.h"
#include "Web/SessionStore.h"
#include "Web/SyncClient.h"

#include <QMap>
#include <QSet>
#include <algorithm>

namespace corvane {

namespace {

QString chatsAndMessages(qint64 chats, qint64 messages)
{
    return countWords(chats, u"chat"_s, u"chats"_s) + u", "_s + countWords(messages, u"message"_s, u"messages"_s);
}

PushChatLine chatLine(const DueThread& due, const DateWords& words)
{
    const qint64 sent = std::min<qint64>(due.messages, SyncClient::mostMessages);
    QString detail = countWords(sent, u"message"_s, u"messages"_s);
    if (sent < due.messages)
        detail = u"the first %1 of %2 messages"_s.arg(QLocale().toString(sent), QLocale().toString(due.messages));
    if (due.oldestMs > 0)
        detail += u" since "_s + words.mediumDate(words.dayOf(due.oldestMs));
    return { due.thread.conversationId, WAName::pretty(due.thread.shownTitle()), detail, false, due.thread.accountId };
}

}

PushSheet::PushSheet(const Surroundings& surroundings, QObject* parent)
    : QObject(parent)
    , m_at(surroundings)
{
    connect(&m_at.client, &SyncClient::changed, this, &PushSheet::changed);
    connect(&m_at.client, &SyncClient::reviewed, this, [this] {
        if (m_isOpen)
            show();
    });
    connect(&m_at.client, &SyncClient::dryRunWritten, this, [this](const QString& path, const QString& error) {
        m_dryRunFailed = !error.isEmpty();
        m_dryRunText = m_dryRunFailed ? u"The file could not be written: "_s + error : savedTo(path);
        Q_EMIT changed();
    });
}

QString PushSheet::state() const
{
    if (m_at.client.isLookingUp() && m_chats.rows().isEmpty())
        return u"loading"_s;
    if (!m_at.client.review())
        return u"failed"_s;
    return m_chats.rows().isEmpty() && m_accounts.isEmpty() ? u"empty"_s : u"filled"_s;
}

QString PushSheet::targetText() const
{
    const QUrl target = m_at.client.target();
    if (!target.isValid())
        return u"The web address is not one that a push can go to."_s;
    const QString port = target.port() < 0 ? QString() : u":%1"_s.arg(target.port());
    return u"To %1, as %2."_s.arg(target.host() + port, m_at.session.displayLine());
}

QString PushSheet::summaryText() const
{
    if (!m_at.client.review())
        return {};
    QSet<QString> accounts;
    qint64 messages = 0;
    qint64 oldestMs = 0;
    for (const DueThread& due : m_at.client.review()->threads) {
        accounts.insert(due.thread.accountId);
        messages += std::min<qint64>(due.messages, SyncClient::mostMessages);
        if (due.oldestMs > 0 && (oldestMs == 0 || due.oldestMs < oldestMs))
            oldestMs = due.oldestMs;
    }
    const DateWords words(m_at.db.nowMs());
    const QString since = oldestMs > 0 ? u", written since "_s + words.mediumDate(words.dayOf(oldestMs)) : QString();
    return countWords(accounts.size(), u"WhatsApp account"_s, u"WhatsApp accounts"_s) + u", "_s
        + chatsAndMessages(m_at.client.review()->threads.size(), messages) + since;
}

QString PushSheet::moreText() const
{
    if (!m_at.client.review())
        return {};
    QStringList words;
    qint64 leftOut = 0;
    for (const DueThread& due : m_at.client.review()->threads)
        leftOut += std::max<qint64>(0, due.messages - SyncClient::mostMessages);
    if (leftOut > 0)
        words.append(countWords(leftOut, u"message"_s, u"messages"_s)
            + u" of long chats are left out; they can be pushed afterwards."_s);
    if (const qint64 more = m_at.client.review()->waitingThreads; more > 0)
        words.append(countWords(more, u"more chat waits"_s, u"more chats wait"_s) + u" for the next push."_s);
    return words.join(u' ');
}

bool PushSheet::canPush() const
{
    return m_at.session.signedIn() && !m_at.client.isRunning() && !m_at.client.isLookingUp() && m_at.client.review()
        && !m_at.client.review()->threads.isEmpty() && m_at.client.target().isValid();
}

bool PushSheet::writing() const
{
    return m_at.client.isWriting();
}

void PushSheet::open()
{
    m_chats.assign({});
    m_accounts.clear();
    m_dryRunText.clear();
    m_isOpen = true;
    m_at.client.lookUp();
}

void PushSheet::close()
{
    m_isOpen = false;
    Q_EMIT changed();
}

void PushSheet::push()
{
    if (!canPush())
        return;
    close();
    m_at.client.approve();
    m_at.client.syncNow();
}

void PushSheet::retry()
{
    m_at.client.lookUp();
}

void PushSheet::keepChat(const QString& conversationId, bool kept)
{
    if (kept)
        keepConversationLocal(m_at.db, conversationId);
    else
        stopKeepingLocal(m_at.db, { conversationId, {}, {} });
    QList<PushChatLine> lines = m_chats.rows();
    for (PushChatLine& line : lines)
        line.kept = line.id == conversationId ? kept : line.kept;
    m_chats.assign(lines);
    m_at.client.lookUp();
}

void PushSheet::keepAccount(const QString& slug, bool kept)
{
    if (kept)
        keepAccountLocal(m_at.db, slug);
    else
        stopKeepingLocal(m_at.db, { {}, slug, {} });
    for (PushAccountLine& line : m_accounts)
        line.kept = line.slug == slug ? kept : line.kept;
    m_at.client.lookUp();
}

void PushSheet::writeDryRun()
{
    m_dryRunText.clear();
    m_at.client.writeDryRun(freeDownload(u"What a push would send"_s, u"txt"_s));
}

/// What was kept in this sheet stays in its place, so that it can be taken back.
void PushSheet::show()
{
    QList<PushChatLine> lines;
    const DateWords words(m_at.db.nowMs());
    if (const auto& review = m_at.client.review()) {
        for (const DueThread& due : review->threads)
            lines.append(chatLine(due, words));
    }
    const auto isKept = [this](const QString& slug) {
        return std::ranges::any_of(
            m_accounts, [&](const PushAccountLine& line) { return line.slug == slug && line.kept; });
    };
    for (qsizetype i = 0; i < m_chats.rows().size(); ++i) {
        const PushChatLine& line = m_chats.rows().at(i);
        if (line.kept && !isKept(line.account))
            lines.insert(std::min(i, lines.size()), line);
    }
    m_chats.assign(lines);
    showAccounts();
    Q_EMIT changed();
}

void PushSheet::showAccounts()
{
    struct Sum {
        int chats = 0;
        qint64 messages = 0;
    };
    QMap<QString, Sum> sums;
    if (const auto& review = m_at.client.review()) {
        for (const DueThread& due : review->threads) {
            Sum& sum = sums[due.thread.accountId];
            ++sum.chats;
            sum.messages += std::min<qint64>(due.messages, SyncClient::mostMessages);
        }
    }
    QMap<QString, PushAccountLine> lines;
    for (const PushAccountLine& line : std::as_const(m_accounts)) {
        if (line.kept)
            lines.insert(line.slug, line);
    }
    for (auto sum = sums.cbegin(); sum != sums.cend(); ++sum)
        lines.insert(sum.key(),
            { sum.key(), accountName(m_at.accounts, sum.key()), chatsAndMessages(sum->chats, sum->messages), false });
    m_accounts = lines.values();
}

QString accountName(const AccountStore& accounts, const QString& slug)
{
    const auto account = accounts.findBySlug(slug);
    return account && !account->name.isEmpty() ? account->name : slug;
}

}
