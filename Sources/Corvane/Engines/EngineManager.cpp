#include "Engines/EngineManager.h"

#include "Engines/AccountStore.h"
#include "Engines/ConnectionEvents.h"
#include "Engines/EngineManagerState.h"
#include "Engines/EngineSpec.h"
#include "Foundation/Ids.h"
#include "Foundation/Json.h"
#include "Foundation/Log.h"
#include "Foundation/Text.h"
#include "Notifications/Notifier.h"
#include "Platform/AppPaths.h"
#include "Platform/Desktop.h"
#include "Platform/Keychain.h"
#include "Store/Messages/InboxQueries.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr Milliseconds badgePeriod { 100 };
constexpr int loggedLength = 400;

/// A link is removed and what it leads to stays.
void removeFolder(const QString& path)
{
    if (QFileInfo(path).isSymLink())
        QFile::remove(path);
    else
        QDir(path).removeRecursively();
}

/// A thread may be read anywhere: here, on the phone, by another program.
void withdrawRead(LocalDB& db, Notifier& notifier)
{
    for (const QString& contact : QSet<QString>(notifier.contactsTold())) {
        if (unreadOf(db, contact) == 0)
            notifier.withdrawMessages(contact);
    }
}

const QString directSendPrefix = QStringLiteral("ds");

bool isDirectSend(const QString& id)
{
    return id.startsWith(directSendPrefix + u':');
}

EventSource sourceOf(const QUuid& accountId, const std::optional<Account>& account)
{
    if (account)
        return { account->slug, channelRaw(account->channel()), account->slug };
    return { accountId.toString(QUuid::WithoutBraces).toUpper(), channelRaw(Channel::WhatsApp), QStringLiteral("x") };
}

}

EngineManager::State::State(EngineManager& manager, const Surroundings& surroundings, std::unique_ptr<LocalDB> database)
    : paths(surroundings.paths)
    , scheduler(surroundings.scheduler)
    , desktop(surroundings.desktop)
    , notifier(surroundings.notifier)
    , db(std::move(database))
    , runtime([&manager](const QUuid& accountId) { Q_EMIT manager.runtimeChanged(accountId); })
    , processes(surroundings.paths, surroundings.scheduler, surroundings.launcher, surroundings.keychain, runtime,
          EngineProcesses::Handlers {
              .event = [&manager](const QUuid& accountId, Speaker speaker,
                           const QString& event) { manager.handleEvent(accountId, event, speaker); },
              .ended = [this](const std::shared_ptr<ChildProcess>& child) { drafts.engineEnded(child); },
              .allEnded = [&manager] { Q_EMIT manager.allEnded(); },
          },
          // A message is several writes; each would hold the window for its five seconds, then lose its part.
          [this] { return db->isHeldElsewhere(); })
    , toolServer(surroundings.paths, surroundings.scheduler, surroundings.launcher, surroundings.ports,
          surroundings.background, [&manager] { Q_EMIT manager.mcpRunningChanged(); })
    , ingest(*db, surroundings.notifier, surroundings.paths.applicationSupport)
    , drafts(manager, surroundings.scheduler)
    , badge(surroundings.scheduler, badgePeriod, [&manager] { manager.refreshUnreadBadge(); })
{
}

EngineManager::EngineManager(const Surroundings& surroundings, std::unique_ptr<LocalDB> db, QObject* parent)
    : QObject(parent)
    , m_state(std::make_unique<State>(*this, surroundings, std::move(db)))
{
    connect(&surroundings.keychain, &Keychain::changed, this, [this] { m_state->processes.secretsArrived(); });
    connect(&m_state->ingest, &Ingest::inboxChanged, this, &EngineManager::bump);
    connect(&m_state->ingest, &Ingest::draftAcknowledged, this, &EngineManager::refreshDrafts);
    connect(&m_state->ingest, &Ingest::mediaDownloadChanged, this, &EngineManager::setMediaDownload);
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
    m_state->drafts.stop();
    m_state->toolServer.stop();
    m_state->processes.stopAll();
}

void EngineManager::resetAuth(const Account& account)
{
    stop(account);
    if (const auto folder = stateFolder(m_state->paths, account))
        removeFolder(*folder);
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

QString EngineManager::mcpURL() const
{
    return m_state->toolServer.url();
}

void EngineManager::startDraftWatch()
{
    m_state->drafts.startWatch();
}

void EngineManager::startAIRequestWatch(LumoAI& ai)
{
    if (!m_state->aiRequests)
        m_state->aiRequests = std::make_unique<AIRequestWatcher>(*m_state->db, ai, m_state->scheduler);
    m_state->aiRequests->start();
}

void EngineManager::refreshDrafts()
{
    m_state->drafts.refresh();
}

const QList<PendingDraft>& EngineManager::pendingDrafts() const
{
    return m_state->drafts.pending();
}

const QString& EngineManager::openContactId() const
{
    return m_state->ingest.openContactId();
}

void EngineManager::setOpenContactId(const QString& contactId)
{
    m_state->ingest.setOpenContactId(contactId);
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
    const int total = totalUnread(*m_state->db);
    if (std::exchange(m_unreadTotal, total) != total)
        Q_EMIT unreadTotalChanged();
    m_state->desktop.setBadge(total);
    withdrawRead(*m_state->db, m_state->notifier);
}

void EngineManager::bump(const QString& contactId)
{
    ++m_inboxRevision;
    Q_EMIT inboxRevisionChanged(contactId);
    m_state->badge.request();
}

void EngineManager::handleEvent(const QUuid& accountId, const QString& line, Speaker speaker)
{
    const auto event = jsonObject(line.toUtf8());
    const auto type = event ? textValue(*event, QLatin1StringView("type")) : std::nullopt;
    if (!type)
        return;
    const EventSource source = sourceOf(accountId, m_state->processes.account(accountId));
    RuntimeState state = runtime(accountId);
    if (const auto said = *type == u"log" ? textValue(*event, QLatin1StringView("msg")) : std::nullopt)
        log(QStringLiteral("engine %1 says: %2").arg(source.slug, firstCharacters(*said, loggedLength)));
    if (const auto id = *type == u"sendAck" ? textValue(*event, QLatin1StringView("draftId")) : std::nullopt;
        id && isDirectSend(*id)) {
        const auto status = textValue(*event, QLatin1StringView("status"));
        Q_EMIT directSendAnswered(*id, status == u"sent"_s || status == u"placed"_s,
            textValue(*event, QLatin1StringView("error")).value_or(QStringLiteral("Send failed")));
    } else if (!isConnectionEvent(*type)) {
        m_state->ingest.handle(source, *type, *event);
        state = runtime(accountId); // an acknowledgment may have started an engine
    } else if (speaker == Speaker::Current) {
        state = afterConnectionEvent(state, *type, *event);
        if (reportsOpen(*type, *event))
            m_state->processes.connectionOpened(accountId);
    }
    m_state->runtime.set(accountId, state);
    Q_EMIT eventHandled(source.slug, *type);
}

}
