#include "Engines/EngineManager.h"

#include "Engines/AccountStore.h"
#include "Engines/ConnectionEvents.h"
#include "Engines/EngineManagerState.h"
#include "Engines/EngineSpec.h"
#include "Engines/MediaPlaces.h"
#include "Foundation/Ids.h"
#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Foundation/Text.h"
#include "Notifications/Notifier.h"
#include "Platform/AppPaths.h"
#include "Platform/Desktop.h"
#include "Platform/Keychain.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Messages/InboxQueries.h"
#include "Store/Messages/ThreadQueries.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace corvane {

namespace {

constexpr Milliseconds badgePeriod { 100 };
constexpr int loggedLength = 400;

/// Removes a symbolic link but not its target.
void removeFolder(const QString& path)
{
    if (QFileInfo(path).isSymLink())
        QFile::remove(path);
    else
        QDir(path).removeRecursively();
}

/// A thread may be read anywhere: here, on the phone, or in another program.
void withdrawRead(LocalDB& db, Notifier& notifier, const QSet<QString>& contacts)
{
    for (const QString& contact : contacts) {
        if (unreadOf(db, contact) == 0)
            notifier.withdrawMessages(contact);
    }
}

const QString directSendPrefix = u"ds"_s;

/// The id of the direct message that an acknowledgment answers; nothing if it answers none.
std::optional<QString> answeredDirectSend(const QString& type, const QJsonObject& event)
{
    return type == u"sendAck" ? textValue(event, "sendId"_L1) : std::nullopt;
}

/// The id in the send command: a draft or a direct message.
QString nameOfSend(const QJsonObject& event)
{
    const auto draftId = textValue(event, "draftId"_L1);
    return draftId ? *draftId : textValue(event, "sendId"_L1).value_or(QString());
}

SendFate fateOf(const QString& status)
{
    if (status == u"sent" || status == u"placed")
        return SendFate::Sent;
    return status == u"uncertain" ? SendFate::Uncertain : SendFate::Failed;
}

EventSource sourceOf(const AppPaths& paths, const QUuid& accountId, const std::optional<Account>& account)
{
    if (account)
        return { account->slug, channelRaw(account->channel()), account->slug, mediaPlaces(paths, *account) };
    return { accountId.toString(QUuid::WithoutBraces).toUpper(), channelRaw(Channel::WhatsApp), u"x"_s };
}

}

EngineManager::State::State(EngineManager& manager, const Surroundings& surroundings, std::unique_ptr<LocalDB> database)
    : paths(surroundings.paths)
    , scheduler(surroundings.scheduler)
    , desktop(surroundings.desktop)
    , notifier(surroundings.notifier)
    , db(std::move(database))
    , lines(*db)
    , runtime([&manager](const QUuid& accountId) { Q_EMIT manager.runtimeChanged(accountId); })
    , processes(surroundings.paths, surroundings.scheduler, surroundings.launcher, surroundings.keychain, runtime,
          EngineProcesses::Handlers {
              .event = [&manager](const QUuid& accountId, Speaker speaker,
                           const QJsonObject& event) { return manager.takeEvent(accountId, event, speaker); },
              .ended = [&manager](const std::shared_ptr<ChildProcess>& child) { Q_EMIT manager.engineEnded(child); },
              .allEnded = [&manager] { Q_EMIT manager.allEnded(); },
          },
          lines)
    , outbox(surroundings.paths)
    , toolServer(surroundings.paths, surroundings.scheduler, surroundings.launcher, surroundings.ports,
          surroundings.background, [&manager] { Q_EMIT manager.mcpRunningChanged(); })
    , ingest(*db, lines, surroundings.notifier, surroundings.paths.applicationSupport)
    , unread(*db)
    , badge(surroundings.scheduler, badgePeriod, [&manager] { manager.countUnread(); })
{
}

EngineManager::EngineManager(const Surroundings& surroundings, std::unique_ptr<LocalDB> db, QObject* parent)
    : QObject(parent)
    , m_state(std::make_unique<State>(*this, surroundings, std::move(db)))
{
    connect(&surroundings.keychain, &Keychain::changed, this, [this] { m_state->processes.secretsArrived(); });
    connect(&m_state->ingest, &Ingest::inboxChanged, this, &EngineManager::bump);
    m_state->db->watch().on(StoreSubject::Messages, this, [this] { bump(); });
    connect(&m_state->ingest, &Ingest::featuresChanged, this, &EngineManager::featuresChanged);
    connect(&m_state->ingest, &Ingest::mediaDownloadChanged, this, &EngineManager::setMediaDownload);
    connect(this, &EngineManager::engineEnded, this, &EngineManager::failMediaOf);
}

EngineManager::~EngineManager() = default;

QString EngineManager::directSendId(qint64 nowMs)
{
    return stampedId(directSendPrefix, nowMs);
}

LocalDB& EngineManager::db()
{
    return *m_state->db;
}

void EngineManager::setContactsBridge(ContactsBridge* contacts)
{
    m_state->ingest.setContactsBridge(contacts);
}

void EngineManager::setAccounts(AccountStore* accounts)
{
    m_state->accounts = accounts;
}

void EngineManager::start(const Account& account)
{
    m_state->processes.start(account);
}

void EngineManager::resume(const Account& account)
{
    if (m_state->accounts && account.paused.value_or(false)) {
        Account unpaused = account;
        unpaused.paused = false;
        m_state->accounts->update(unpaused);
        return start(unpaused);
    }
    start(account);
}

void EngineManager::stop(const Account& account)
{
    m_state->processes.stop(account);
}

void EngineManager::forget(const Account& account)
{
    m_state->processes.forget(account);
}

void EngineManager::stopAll()
{
    Q_EMIT stopping();
    m_state->toolServer.stop();
    m_state->processes.stopAll();
}

void EngineManager::resetAuth(const Account& account)
{
    stop(account);
    for (const auto& folder : { stateFolder(m_state->paths, account), memoryFolder(m_state->paths, account) }) {
        if (folder)
            removeFolder(*folder);
    }
    RuntimeState state = runtime(account.id);
    state.status = WAStatus::Stopped;
    state.qr.reset();
    state.userName.reset();
    m_state->runtime.set(account.id, state);
}

bool EngineManager::isRunning(const Account& account) const
{
    return m_state->processes.isRunning(account.id);
}

bool EngineManager::isStarting(const Account& account) const
{
    return m_state->processes.isStarting(account.id);
}

std::optional<Account> EngineManager::accountBySlug(const QString& slug) const
{
    return m_state->accounts ? m_state->accounts->findBySlug(slug) : runningAccount(slug);
}

bool EngineManager::isGone(const QString& slug) const
{
    return m_state->accounts && !m_state->accounts->findBySlug(slug);
}

bool EngineManager::isRunning(const QUuid& accountId) const
{
    return m_state->processes.isRunning(accountId);
}

std::optional<Account> EngineManager::runningAccount(const QString& slug) const
{
    return m_state->processes.accountBySlug(slug);
}

RuntimeState EngineManager::runtime(const QUuid& accountId) const
{
    return m_state->runtime.get(accountId);
}

qint64 EngineManager::processId(const Account& account) const
{
    return isRunning(account) ? m_state->processes.child(account.id)->pid() : 0;
}

void EngineManager::startUnifiedMCP(int port)
{
    m_state->toolServer.start(port);
}

void EngineManager::stopUnifiedMCP()
{
    m_state->toolServer.stop();
}

bool EngineManager::mcpRunning() const
{
    return m_state->toolServer.isRunning();
}

const QString& EngineManager::mcpProblem() const
{
    return m_state->toolServer.problem();
}

QString EngineManager::mcpURL() const
{
    return m_state->toolServer.url();
}

void EngineManager::startAIRequestWatch(LumoAI& ai)
{
    if (!m_state->aiRequests)
        m_state->aiRequests = std::make_unique<AIRequestWatcher>(*m_state->db, ai, m_state->scheduler);
    m_state->aiRequests->start();
}

const QString& EngineManager::openContactId() const
{
    return m_state->ingest.openContactId();
}

void EngineManager::setOpenContactId(const QString& contactId)
{
    m_state->ingest.setOpenContactId(contactId);
}

QStringList EngineManager::mediaPlaces(const UnifiedMsgRow& row) const
{
    // The account may be gone while its files still exist.
    Account account;
    account.slug = row.accountId;
    account.channelRaw = row.platform;
    return corvane::mediaPlaces(m_state->paths, account);
}

std::optional<MediaDownloadStatus> EngineManager::mediaDownloadStatus(const QString& messageId) const
{
    const auto found = m_state->mediaDownloads.constFind(messageId);
    return found == m_state->mediaDownloads.cend() ? std::nullopt : std::optional(*found);
}

void EngineManager::setMediaDownload(const QString& messageId, const std::optional<MediaDownloadStatus>& status)
{
    if (mediaDownloadStatus(messageId) == status)
        return;
    if (status)
        m_state->mediaDownloads.insert(messageId, *status);
    else
        m_state->mediaDownloads.remove(messageId);
    Q_EMIT mediaDownloadStatusChanged(messageId);
}

void EngineManager::refreshUnreadBadge()
{
    m_state->bumped.insert(QString());
    countUnread();
}

void EngineManager::countUnread()
{
    QSet<QString> bumped = std::exchange(m_state->bumped, {});
    const bool everyone = bumped.contains(QString());
    if (everyone)
        m_state->unread.read();
    else
        m_state->unread.read(bumped);
    const int total = m_state->unread.total();
    if (std::exchange(m_unreadTotal, total) != total)
        Q_EMIT unreadTotalChanged();
    m_state->desktop.setBadge(total);
    const QSet<QString> told = m_state->notifier.contactsTold();
    withdrawRead(*m_state->db, m_state->notifier, everyone ? told : bumped.intersect(told));
}

void EngineManager::bump(const QString& contactId)
{
    ++m_inboxRevision;
    Q_EMIT inboxRevisionChanged(contactId);
    m_state->bumped.insert(contactId);
    m_state->badge.request();
}

void EngineManager::handleEvent(const QUuid& accountId, const QString& line, Speaker speaker)
{
    const auto event = jsonObject(line.toUtf8());
    if (event && takeEvent(accountId, *event, speaker) && m_state->lines.commit())
        m_state->lines.tell();
    else
        m_state->lines.rollBack();
}

void EngineManager::tellDirectSend(const QString& id, const QJsonObject& acknowledgment)
{
    const auto text = [&](const char* key) {
        return textValue(acknowledgment, QLatin1StringView(key)).value_or(QString());
    };
    const SendFate fate = fateOf(text("status"));
    const QString error = text("error");
    const QString reason = fate == SendFate::Uncertain ? u"No answer came."_s : u"Send failed"_s;
    Q_EMIT directSendAnswered(id, fate, error.isEmpty() ? reason : error);
}

/// False if the event must be delivered again.
bool EngineManager::takeEvent(const QUuid& accountId, const QJsonObject& event, Speaker speaker)
{
    const auto type = textValue(event, "type"_L1);
    if (!type)
        return true;
    LineGroup& lines = m_state->lines;
    const EventSource source = sourceOf(m_state->paths, accountId, m_state->processes.account(accountId));
    const auto tell = [this, slug = source.slug, type = *type] {
        Q_EMIT eventHandled(slug, type);
    };
    if (const auto sendId = answeredDirectSend(*type, event)) {
        lines.afterCommit([this, id = *sendId, event] { tellDirectSend(id, event); });
        lines.afterCommit(tell);
    } else if (*type == u"sendProgress") {
        lines.afterCommit([this, slug = source.slug, id = nameOfSend(event)] { Q_EMIT sendProgressed(slug, id); });
        lines.afterCommit(tell);
    } else if (Ingest::storesRows(*type)) {
        const bool stored = lines.add([&] {
            if (m_state->ingest.store(source, *type, event))
                lines.afterCommit(tell);
        });
        if (!stored)
            return false;
    } else {
        if (const auto said = *type == u"log" ? textValue(event, "msg"_L1) : std::nullopt)
            lines.afterCommit([slug = source.slug, said = *said] {
                log(u"engine %1 says: %2"_s.arg(slug, firstCharacters(said, loggedLength)));
            });
        lines.afterCommit(tell);
    }
    if (speaker == Speaker::Current && isConnectionEvent(*type)) {
        lines.afterCommit([this, accountId, type = *type, event] {
            const RuntimeState state = runtime(accountId);
            if (reportsOpen(type, event))
                m_state->processes.connectionOpened(accountId);
            m_state->runtime.set(accountId, afterConnectionEvent(state, type, event));
        });
    }
    return true;
}

}
