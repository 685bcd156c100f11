#include "BareStatement.h"
#include "Foundation/Literals.h"
#include "Mirror.h"
#include "Rivals.h"

#include "Foundation/NotificationCentre.h"
#include "Foundation/SystemScheduler.h"
#include "Foundation/UserDefaults.h"
#include "Platform/AppPaths.h"
#include "Platform/Keychain.h"
#include "Support/FakeDesktop.h"
#include "Support/FakeKeyring.h"
#include "Support/Places.h"
#include "Web/SessionStore.h"
#include "Web/SyncClient.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace corvane::bench {

namespace {

constexpr int chats = 200;
constexpr int messagesOfAChat = 500;
constexpr double allMessages = chats * messagesOfAChat;

void turnUntil(const std::function<bool()>& over)
{
    while (!over())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

/// The longest time that the main thread was busy without processing events.
class LongestTurn {
public:
    LongestTurn()
    {
        auto* const dispatcher = QAbstractEventDispatcher::instance();
        QObject::connect(dispatcher, &QAbstractEventDispatcher::awake, &m_context, [this] { m_turn.restart(); });
        QObject::connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, &m_context,
            [this] { m_longestNs = std::max(m_longestNs, m_turn.nsecsElapsed()); });
        m_turn.start();
    }
    double milliseconds() const { return double(m_longestNs) / 1e6; }

private:
    QObject m_context;
    QElapsedTimer m_turn;
    qint64 m_longestNs = 0;
};

/// The stand-in of the web service as a child process, a profile that is signed in to it, and chats to push.
class World {
public:
    World()
    {
        QProcess find;
        find.start(QStringLiteral(CORVANE_SOURCE "/tools/find-node"), QStringList());
        find.waitForFinished();
        m_service.setStandardErrorFile(QProcess::nullDevice());
        m_service.start(QString::fromLocal8Bit(find.readAllStandardOutput()).trimmed(),
            { u"--experimental-strip-types"_s, u"--no-warnings"_s,
                QStringLiteral(CORVANE_SOURCE "/demo/web/src/main.ts") });
        while (!m_service.canReadLine())
            m_service.waitForReadyRead();
        base = QString::fromUtf8(m_service.readLine()).trimmed();
        m_defaults.setText(u"nimb.apiBaseUrl"_s, base);
        m_defaults.setBoolean(u"nimb.batchIngest"_s, true);
        db.exec(
            u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<%1)"
            "INSERT INTO unified_conversation(id, channel, account_id, external_id, title, last_ts)"
            " SELECT 'c' || i, 'WHATSAPP', 'shop', i || '@s.whatsapp.net', 'Chat ' || i, 1763126400000 FROM n;"_s.arg(
                chats));
        db.exec(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<%1)"
                "INSERT INTO unified_message(id, conversation_id, direction, body, sender, ts)"
                " SELECT c.id || '-' || i, c.id, CASE i%2 WHEN 0 THEN 'IN' ELSE 'OUT' END,"
                " 'Message ' || i || ': the order is ready, please tell us when you would like to come by for it.',"
                " 'Ana Ruiz', 1763126400000 - (%1 - i) * 60000 FROM unified_conversation c, n;"_s.arg(messagesOfAChat));
        session.signIn(u"ana@ruiz.example"_s, u"secret"_s);
        turnUntil([this] { return !session.busy(); });
        client.attach();
    }
    ~World()
    {
        m_service.kill();
        m_service.waitForFinished();
    }

private:
    QTemporaryDir m_folder;
    AppPaths m_paths { m_folder.path(), m_folder.filePath(u"share"_s), m_folder.filePath(u"defaults.ini"_s),
        resourceFolder() };
    SystemScheduler m_scheduler;
    UserDefaults m_defaults { m_paths.defaultsFile };
    NotificationCentre m_centre;
    FakeKeyring m_keyring;
    Keychain m_keychain { m_keyring, m_paths.secretsFile(), m_scheduler };
    FakeDesktop m_desktop;
    QProcess m_service;

public:
    QString base;
    LocalDB db { m_paths.database(), { resourceFolder(), {} }, m_scheduler, m_defaults, m_centre };
    SessionStore session { m_paths, m_keychain, m_defaults, m_desktop, m_scheduler };
    SyncClient client { session, db, m_scheduler };
};

World& world()
{
    static World made;
    return made;
}

void push(benchmark::State& state)
{
    SyncClient& client = world().client;
    double longest = 0;
    for (auto _ : state) {
        state.PauseTiming();
        client.startOver();
        client.approve();
        state.ResumeTiming();
        const LongestTurn turn;
        client.syncNow();
        turnUntil([&] { return !client.isRunning(); });
        longest = std::max(longest, turn.milliseconds());
        if (client.lastSyncedMessages() != int(allMessages))
            return state.SkipWithError(qPrintable(client.statusLine()));
    }
    state.counters["messages/s"] = benchmark::Counter(allMessages, benchmark::Counter::kIsIterationInvariantRate);
    state.counters["longest turn ms"] = longest;
}

/// The same requests with the bare libraries, on one thread, without recording progress.
void pushBare(benchmark::State& state)
{
    QNetworkAccessManager network;
    const auto post = [&](const QString& path, const QJsonObject& body) {
        QNetworkRequest request(QUrl(world().base + u"/corvane/api/v1"_s + path));
        request.setHeader(QNetworkRequest::ContentTypeHeader, u"application/json"_s);
        request.setRawHeader("Authorization", "Bearer " + world().session.token()->toUtf8());
        QNetworkReply* const reply = network.post(request, QJsonDocument(body).toJson(QJsonDocument::Compact));
        QEventLoop loop;
        QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
        loop.exec();
        reply->deleteLater();
        const QJsonObject data = QJsonDocument::fromJson(reply->readAll()).object()[u"data"].toObject();
        return data[u"chat"].isObject() ? data[u"chat"][u"id"].toString() : data[u"id"].toString();
    };
    sqlite3* db = nullptr;
    sqlite3_open(world().db.path().toUtf8().constData(), &db);
    for (auto _ : state) {
        const QString account
            = post(u"/accounts"_s, { { u"account_type"_s, u"WHATSAPP"_s }, { u"provider_id"_s, u"shop"_s } });
        BareStatement select(
            db, "SELECT id, direction, body, ts FROM unified_message WHERE conversation_id=? ORDER BY ts LIMIT 500;");
        for (int i = 1; i <= chats; ++i) {
            const QString provider = QString::number(i) + u"@s.whatsapp.net"_s;
            const QString chat = post(u"/chats"_s,
                { { u"object"_s, u"Chat"_s }, { u"account_id"_s, account }, { u"account_type"_s, u"WHATSAPP"_s },
                    { u"provider_id"_s, provider }, { u"type"_s, 0 }, { u"timestamp"_s, u"2025-11-14T13:20:00.000Z"_s },
                    { u"unread_count"_s, 0 }, { u"archived"_s, false }, { u"muted_until"_s, QJsonValue::Null },
                    { u"read_only"_s, false }, { u"pinned"_s, false } });
            QJsonArray messages;
            const QByteArray id = "c" + QByteArray::number(i);
            for (bool row = select.step(id); row; row = sqlite3_step(select.get()) == SQLITE_ROW) {
                const auto text = [&](int column) {
                    return QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(select.get(), column)));
                };
                const QDateTime time = QDateTime::fromMSecsSinceEpoch(sqlite3_column_int64(select.get(), 3), Qt::UTC);
                messages.append(
                    QJsonObject { { u"id"_s, text(0) }, { u"chat_id"_s, chat }, { u"account_id"_s, account },
                        { u"sender_id"_s, provider }, { u"timestamp"_s, time.toString(Qt::ISODateWithMs) },
                        { u"is_outgoing"_s, text(1) == u"OUT"_s }, { u"text"_s, text(2) } });
            }
            sqlite3_reset(select.get());
            post(u"/chats/"_s + chat + u"/messages"_s, { { u"messages"_s, messages } });
        }
    }
    sqlite3_close(db);
    state.counters["messages/s"] = benchmark::Counter(allMessages, benchmark::Counter::kIsIterationInvariantRate);
}

BENCHMARK(push)->Name("push 100,000 messages/corvane")->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);
BENCHMARK(pushBare)->Name("push 100,000 messages/bare")->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);

}

}

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    return corvane::bench::runAgainstRivals(argc, argv);
}
