#include "Web/SyncRun.h"

#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Core/Transaction.h"
#include "Store/Core/Workspaces.h"
#include "Store/Sync/SyncQueries.h"
#include "Web/SessionStore.h"
#include "Web/WebClient.h"

#include <QSet>

namespace corvane {

namespace {

constexpr Milliseconds betweenTries { 250 };
constexpr int tries = 20; // between attempts to write while another program holds the database

QString encoded(const QString& id)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(id));
}

}

SyncClient::Run::Run(SyncClient& of)
    : token(of.m_session.token().value_or(QString()))
    , client(&of)
    , base(webBase(of.m_defaults))
    , ingest(of.ingestBase())
    , workspaceId(activeWorkspaceId(of.m_db))
    , batching(of.m_defaults.boolean(u"nimb.batchIngest"_s).value_or(false) ? Batching::AllInOne : Batching::EachAlone)
    , reader(std::make_shared<CloudReader>(of.m_db.path()))
{
}

void SyncClient::Run::end(Ended why)
{
    if (!goesOn())
        return;
    ended = why;
    reader->stop();
    cancel.cancel();
}

void SyncClient::Run::comesTo(
    const Status& status, const QString& health, const QString& error, const QJsonObject& extra)
{
    outcome = { status, health, error, extra };
}

QCoro::Task<> SyncClient::Run::go(Pointer run, What what)
{
    const bool whole = co_await (what == What::Due ? pushDue(run) : pushLeftOut(run));
    co_await finish(run, whole);
}

QCoro::Task<bool> SyncClient::Run::pushDue(Pointer run)
{
    const auto review = co_await read<PushReview>(
        run, [workspace = run->workspaceId](SqlConnection& db) { return fetchPushReview(db, workspace, mostThreads); });
    if (!review || !run->goesOn())
        co_return false;
    Progress& progress = run->client->m_progress;
    progress.allChats = int(review->threads.size());
    for (const DueThread& due : review->threads)
        progress.allMessages += std::min<qint64>(due.messages, mostMessages);
    co_await recordBridgeHealth(run, u"running"_s, {}, { { u"localThreadsQueued"_s, progress.allChats } });
    for (const DueThread& due : review->threads) {
        if (!run->goesOn() || !co_await pushThread(run, due.thread.conversationId))
            co_return false;
    }
    co_return run->goesOn();
}

QCoro::Task<bool> SyncClient::Run::pushThread(Pointer run, QString conversationId)
{
    // Since the run started, it may have been deleted or excluded by the user.
    const auto thread = co_await read<std::optional<CloudThread>>(
        run, [conversationId](SqlConnection& db) { return cloudThread(db, conversationId); });
    if (!thread || !run->goesOn())
        co_return false;
    if (!*thread)
        co_return true;
    run->client->m_progress.title = (*thread)->shownTitle();
    run->client->m_tell.request();
    const auto at = co_await Run::place(run, **thread);
    if (!at)
        co_return false;

    struct Due {
        qint64 sinceMs = 0;
        MessageBodies messages;
    };
    const auto due
        = co_await read<Due>(run, [conversationId, chat = at->chat, batching = run->batching](SqlConnection& db) {
              const qint64 sinceMs = cloudCursor(db, conversationId).lastSyncedMs;
              return Due { sinceMs,
                  messageBodies(cloudMessagesToSync(db, conversationId, sinceMs, mostMessages), chat, batching) };
          });
    if (!due || !run->goesOn())
        co_return false;
    const MessageBodies& sent = due->messages;
    if (!co_await pushMessages(run, at->chat.chatId, sent))
        co_return false;

    const qint64 reachedMs = std::max(at->thread.lastTs, due->sinceMs);
    const bool stored = co_await store(run, [conversationId, reachedMs, chatId = at->chat.chatId, sent](LocalDB& db) {
        storeCloudCursor(
            db, conversationId, chatId, reachedMs, sent.messages > 0 ? std::optional(sent.lastId) : std::nullopt);
        if (sent.messages == mostMessages)
            storeLeftOut(db, { conversationId, sent.lastMs, sent.lastId, reachedMs });
    });
    if (!stored)
        co_return false;
    SyncClient& client = *run->client;
    client.m_newestMs = std::max(client.m_newestMs, reachedMs);
    client.m_progress.chats = ++client.m_lastSyncedThreads;
    client.m_tell.request();
    co_return true;
}

QCoro::Task<bool> SyncClient::Run::pushLeftOut(Pointer run)
{
    struct Rest {
        PushReview review;
        QList<LeftOutRange> ranges;
    };
    const auto rest = co_await read<Rest>(run, [workspace = run->workspaceId](SqlConnection& db) {
        return Rest { fetchPushReview(db, workspace, 0), fetchLeftOut(db, workspace) };
    });
    if (!rest || !run->goesOn())
        co_return false;
    run->client->m_progress.allChats = int(rest->review.leftOutThreads);
    run->client->m_progress.allMessages = rest->review.leftOutMessages;
    co_await recordBridgeHealth(run, u"running"_s, {}, { { u"localThreadsQueued"_s, rest->review.leftOutThreads } });
    QSet<QString> chats;
    for (const LeftOutRange& range : rest->ranges) {
        const qint64 before = run->client->m_progress.messages;
        if (!run->goesOn() || !co_await pushRange(run, range))
            co_return false;
        if (run->client->m_progress.messages > before)
            chats.insert(range.conversationId);
        run->client->m_lastSyncedThreads = run->client->m_progress.chats = int(chats.size());
    }
    co_return run->goesOn();
}

QCoro::Task<bool> SyncClient::Run::pushRange(Pointer run, LeftOutRange range)
{
    for (;;) {
        const auto thread = co_await read<std::optional<CloudThread>>(
            run, [range](SqlConnection& db) { return cloudThread(db, range.conversationId); });
        if (!thread || !run->goesOn())
            co_return false;
        if (!*thread)
            co_return true;
        run->client->m_progress.title = (*thread)->shownTitle();
        const auto at = co_await Run::place(run, **thread);
        if (!at)
            co_return false;
        const auto sent
            = co_await read<MessageBodies>(run, [range, chat = at->chat, batching = run->batching](SqlConnection& db) {
                  return messageBodies(cloudMessagesLeftOut(db, range, mostMessages), chat, batching);
              });
        if (!sent || !run->goesOn() || !co_await pushMessages(run, at->chat.chatId, *sent))
            co_return false;
        const LeftOutRange next { range.conversationId, sent->lastMs, sent->lastId, range.toMs };
        const bool isLast = sent->messages < mostMessages;
        const bool stored = co_await store(run, [range, next, isLast](LocalDB& db) {
            removeLeftOut(db, range);
            if (!isLast)
                storeLeftOut(db, next);
        });
        if (!stored || isLast)
            co_return stored;
        range = next;
    }
}

QCoro::Task<std::optional<SyncClient::Run::Place>> SyncClient::Run::place(Pointer run, CloudThread thread)
{
    const auto accountId = co_await ensureAccount(run, thread.accountId);
    if (!accountId)
        co_return std::nullopt;
    auto chatId = thread.cloudChatId;
    if (!chatId)
        chatId = co_await upsertThread(run, thread, *accountId);
    if (!chatId)
        co_return std::nullopt;
    co_return Place { thread, { *accountId, *chatId, thread.accountId, thread.externalId, thread.isGroup() } };
}

QCoro::Task<std::optional<QString>> SyncClient::Run::ensureAccount(Pointer run, QString slug)
{
    const QString key = accountIdKey(slug);
    if (const auto known = run->client->m_defaults.text(key); known && !known->isEmpty())
        co_return known;
    const Endpoint accounts { u"accounts"_s, u"/accounts"_s, u"Web Corvane ingest not live yet (accounts %1)"_s };
    const auto reply = co_await post(run, accounts, compactJson(mapAccount(slug)));
    if (!reply)
        co_return std::nullopt;
    const auto id = decodeId(reply->body);
    if (id)
        run->client->m_defaults.setText(key, *id);
    else
        run->failWithStatus(accounts, reply->status);
    co_return id;
}

QCoro::Task<std::optional<QString>> SyncClient::Run::upsertThread(Pointer run, CloudThread thread, QString accountId)
{
    const Endpoint chats { u"chats"_s, u"/chats"_s, u"Web Corvane ingest not live yet (chats %1)"_s };
    const auto reply = co_await post(run, chats, compactJson(mapThread(thread, accountId)));
    if (!reply)
        co_return std::nullopt;
    const auto id = decodeId(reply->body);
    if (!id)
        run->failWithStatus(chats, reply->status);
    co_return id;
}

QCoro::Task<bool> SyncClient::Run::pushMessages(Pointer run, QString chatId, MessageBodies messages)
{
    const Endpoint endpoint { u"messages"_s, u"/chats/%1/messages"_s.arg(encoded(chatId)),
        u"Web message ingest not live yet (%1)"_s };
    for (const QByteArray& body : messages.bodies) {
        if (!co_await post(run, endpoint, body))
            co_return false;
        run->client->m_progress.messages += run->batching == Batching::AllInOne ? messages.messages : 1;
        run->client->m_tell.request();
    }
    run->client->m_lastSyncedMessages += int(messages.messages);
    co_return true;
}

QCoro::Task<std::optional<HttpReply>> SyncClient::Run::post(Pointer run, Endpoint endpoint, QByteArray body)
{
    const QString path = run->ingest + endpoint.path;
    const QJsonObject where { { u"lastEndpoint"_s, path } };
    const QUrl url = webUrl(run->base, path);
    if (!url.isValid()) {
        run->comesTo({ Status::Kind::Error, u"Bad URL "_s + path }, u"error"_s, u"Bad URL "_s + path, where);
        co_return std::nullopt;
    }
    const Result<HttpReply> reply = co_await run->client->m_client->post(url, body, run->token, run->cancel);
    if (!run->goesOn())
        co_return std::nullopt;
    if (!reply) {
        const QString words = reply.error().message;
        run->comesTo({ Status::Kind::Error, words }, u"error"_s, words, where);
        co_return std::nullopt;
    }
    if (reply->isSuccess())
        co_return *reply;
    run->failWithStatus(endpoint, reply->status);
    co_return std::nullopt;
}

void SyncClient::Run::failWithStatus(const Endpoint& endpoint, int status)
{
    const bool waits = status == 501 || status == 404;
    const QString words
        = waits ? endpoint.waiting.arg(status) : u"%1 -> HTTP %2"_s.arg(endpoint.name, QString::number(status));
    comesTo({ waits ? Status::Kind::WaitingForWeb : Status::Kind::Error, words },
        waits ? u"waiting_for_web"_s : u"error"_s, words,
        { { u"lastEndpoint"_s, ingest + endpoint.path }, { u"httpStatus"_s, status } });
}

template <typename Value>
QCoro::Task<std::optional<Value>> SyncClient::Run::read(Pointer run, std::function<Value(SqlConnection&)> query)
{
    using Read = Result<Value>;
    const auto found = co_await away<Read>(&run->client->m_background, run->cancel,
        [reader = run->reader, query = std::move(query)] { return reader->read<Value>(query); });
    if (!found || !run->goesOn())
        co_return std::nullopt;
    if (*found)
        co_return **found;
    run->comesTo({ Status::Kind::Error, found->error().message }, u"error"_s, found->error().message);
    co_return std::nullopt;
}

/// Never blocks on another program's write lock.
QCoro::Task<bool> SyncClient::Run::store(Pointer run, std::function<void(LocalDB&)> write)
{
    for (int i = 0; i < tries; ++i) {
        LocalDB& db = run->client->m_db;
        if (Transaction transaction(db, Patience::Frame); transaction.begun()) {
            write(db);
            if (transaction.commit())
                co_return true;
            break;
        }
        if (!run->goesOn() || !db.isSound())
            break;
        co_await pause(&run->client->m_scheduler, run->cancel, betweenTries);
        if (run->ended == Ended::Gone)
            co_return false;
    }
    const QString words = u"The progress of the push could not be saved."_s;
    run->comesTo({ Status::Kind::Error, words }, u"error"_s, words);
    co_return false;
}

QCoro::Task<> SyncClient::Run::recordBridgeHealth(Pointer run, QString status, QString error, QJsonObject extra)
{
    const SyncHealthRow row = run->client->healthRow(status, error, extra);
    const Outcome kept = run->outcome;
    co_await store(run, [row](LocalDB& db) { recordSyncHealth(db, row); });
    run->outcome = kept;
    if (run->ended != Ended::Gone)
        run->client->m_db.watch().tell(StoreSubject::Sync);
}

QCoro::Task<> SyncClient::Run::finish(Pointer run, bool whole)
{
    if (run->ended == Ended::Gone)
        co_return;
    SyncClient& client = *run->client;
    if (run->ended == Ended::Cancelled)
        run->comesTo({ Status::Kind::Cancelled, {}, client.m_lastSyncedThreads }, u"skipped"_s, u"cancelled"_s);
    else if (run->ended == Ended::SignedOut)
        run->comesTo({ Status::Kind::WaitingForWeb, u"Sign in first"_s }, u"skipped"_s, u"sign in first"_s);
    else if (whole)
        run->comesTo({ Status::Kind::Done, {}, client.m_lastSyncedThreads }, u"ok"_s, {},
            { { u"localThreads"_s, client.m_lastSyncedThreads }, { u"localMessages"_s, client.m_lastSyncedMessages } });
    co_await recordBridgeHealth(run, run->outcome.health, run->outcome.error, run->outcome.extra);
    if (run->ended == Ended::Gone)
        co_return;
    client.m_run.reset();
    client.setStatus(run->outcome.status);
    client.lookUp();
}

}
