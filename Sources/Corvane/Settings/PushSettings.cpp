#include "Settings/PushSettings.h"

#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"
#include "Foundation/WAName.h"
#include "Presentation/CountWords.h"
#include "Web/SessionStore.h"
#include "Web/SyncClient.h"

namespace corvane {

namespace {

const QString batchKey = u"nimb.batchIngest"_s;

QString messagesOf(qint64 messages, const QString& join, qint64 chats)
{
    return countWords(messages, u"message"_s, u"messages"_s) + join + countWords(chats, u"chat"_s, u"chats"_s);
}

}

PushSettings::PushSettings(const PushSheet::Surroundings& surroundings, QObject* parent)
    : QObject(parent)
    , m_at(surroundings)
    , m_sheet(surroundings)
{
    connect(&m_at.client, &SyncClient::changed, this, &PushSettings::changed);
    connect(&m_at.client, &SyncClient::reviewed, this, &PushSettings::readKept);
    connect(&m_at.session, &SessionStore::changed, this, &PushSettings::changed);
}

QString PushSettings::stateText() const
{
    const QString line = m_at.client.statusLine();
    const int messages = m_at.client.lastSyncedMessages();
    return m_at.client.status().kind == SyncClient::Status::Kind::Done && messages > 0
        ? line + u" · "_s + countWords(messages, u"message"_s, u"messages"_s)
        : line;
}

QString PushSettings::stateKind() const
{
    switch (m_at.client.status().kind) {
    case SyncClient::Status::Kind::Done:
        return u"good"_s;
    case SyncClient::Status::Kind::Syncing:
    case SyncClient::Status::Kind::WaitingForWeb:
        return u"busy"_s;
    case SyncClient::Status::Kind::Error:
        return u"bad"_s;
    case SyncClient::Status::Kind::Idle:
    case SyncClient::Status::Kind::Cancelled:
        return u"idle"_s;
    }
    return {};
}

QString PushSettings::dueText() const
{
    if (!m_at.client.review())
        return m_at.client.isLookingUp() ? u"Checking what waits…"_s : u"The messages could not be read."_s;
    const PushReview& review = *m_at.client.review();
    if (review.threads.isEmpty())
        return u"Nothing waits: the web has every chat that may go."_s;
    qint64 messages = 0;
    for (const DueThread& due : review.threads)
        messages += due.messages;
    const QString least = review.waitingThreads > 0 ? u"At least "_s : QString();
    return least + messagesOf(messages, u" in "_s, review.threads.size() + review.waitingThreads)
        + (messages == 1 ? u" is not on the web yet."_s : u" are not on the web yet."_s);
}

bool PushSettings::running() const
{
    return m_at.client.isRunning();
}

double PushSettings::progress() const
{
    const SyncClient::Progress& progress = m_at.client.progress();
    return progress.allMessages > 0 ? std::min(1.0, double(progress.messages) / double(progress.allMessages))
                                    : double(progress.chats) / std::max(1, progress.allChats);
}

QString PushSettings::progressText() const
{
    const SyncClient::Progress& progress = m_at.client.progress();
    if (progress.allChats == 0)
        return u"Checking what waits…"_s;
    const QLocale locale;
    return u"Chat %1 of %2 · %3 of %4 messages · %5"_s.arg(
        locale.toString(std::min(progress.chats + 1, progress.allChats)), locale.toString(progress.allChats),
        locale.toString(progress.messages), locale.toString(progress.allMessages), WAName::pretty(progress.title));
}

QString PushSettings::pushLabel() const
{
    return m_at.client.isApproved() ? u"Push now"_s : u"Review and push…"_s;
}

bool PushSettings::canPush() const
{
    return m_at.session.signedIn() && !running();
}

bool PushSettings::canReview() const
{
    return canPush() && m_at.client.isApproved();
}

QString PushSettings::leftOutText() const
{
    const auto& review = m_at.client.review();
    if (!review || review->leftOutMessages == 0)
        return {};
    return messagesOf(review->leftOutMessages, u" of "_s, review->leftOutThreads)
        + u" were left out: a push takes the first %1 of a chat."_s.arg(SyncClient::mostMessages);
}

bool PushSettings::batch() const
{
    return m_at.db.defaults().boolean(batchKey).value_or(false);
}

void PushSettings::setBatch(bool batch)
{
    m_at.db.defaults().setBoolean(batchKey, batch);
    Q_EMIT changed();
}

bool PushSettings::canStartOver() const
{
    return canReview();
}

void PushSettings::refresh()
{
    m_at.client.lookUp();
}

void PushSettings::push()
{
    if (m_at.client.isApproved())
        m_at.client.syncNow();
    else
        m_sheet.open();
}

void PushSettings::review()
{
    m_sheet.open();
}

void PushSettings::pushTheRest()
{
    m_at.client.pushTheRest();
}

void PushSettings::cancel()
{
    m_at.client.cancel();
}

void PushSettings::release(int keptLine)
{
    if (keptLine < 0 || keptLine >= m_keptRows.size())
        return;
    stopKeepingLocal(m_at.db, m_keptRows.at(keptLine));
    m_at.client.lookUp();
}

void PushSettings::startOver()
{
    m_at.client.startOver();
    m_at.client.lookUp();
}

void PushSettings::readKept()
{
    m_keptRows = fetchKeptLocal(m_at.db);
    m_kept.clear();
    for (const KeptLocal& row : std::as_const(m_keptRows)) {
        const QString account = accountName(m_at.accounts, row.accountId);
        if (row.conversationId.isEmpty())
            m_kept.append({ account, u"Every chat of this account"_s });
        else
            m_kept.append({ WAName::pretty(row.title), u"Chat · "_s + account });
    }
    Q_EMIT changed();
}

}
