#pragma once

#include "Web/CloudReader.h"
#include "Web/IngestBodies.h"
#include "Web/SyncClient.h"

namespace corvane {

struct HttpReply;

/// One push. Its steps return false, or nothing, when the run is over; `outcome` then has its result, unless it was
/// cancelled from outside. Each step keeps the run alive and checks after each suspension whether to go on.
struct SyncClient::Run {
    enum class Ended { No, Cancelled, SignedOut, Gone };
    using Pointer = std::shared_ptr<Run>;

    struct Outcome {
        Status status;
        QString health;
        QString error;
        QJsonObject extra;
    };

    explicit Run(SyncClient& client);

    static QCoro::Task<> go(Pointer run, What what);
    void end(Ended why); ///< from outside

    const QString token;

private:
    struct Endpoint {
        QString name;
        QString path; ///< after the ingest base
        QString waiting; ///< the status text if the web does not support it yet
    };
    struct Place {
        CloudThread thread;
        IngestChat chat;
    };

    bool goesOn() const { return ended == Ended::No; }
    void comesTo(const Status& status, const QString& health, const QString& error, const QJsonObject& extra = {});
    void failWithStatus(const Endpoint& endpoint, int status);

    static QCoro::Task<bool> pushDue(Pointer run);
    static QCoro::Task<bool> pushThread(Pointer run, QString conversationId);
    static QCoro::Task<bool> pushLeftOut(Pointer run);
    static QCoro::Task<bool> pushRange(Pointer run, LeftOutRange range);
    static QCoro::Task<std::optional<Place>> place(Pointer run, CloudThread thread);
    static QCoro::Task<std::optional<QString>> ensureAccount(Pointer run, QString slug);
    static QCoro::Task<std::optional<QString>> upsertThread(Pointer run, CloudThread thread, QString accountId);
    static QCoro::Task<bool> pushMessages(Pointer run, QString chatId, MessageBodies messages);
    static QCoro::Task<std::optional<HttpReply>> post(Pointer run, Endpoint endpoint, QByteArray body);
    static QCoro::Task<bool> store(Pointer run, std::function<void(LocalDB&)> write);
    static QCoro::Task<> recordBridgeHealth(Pointer run, QString status, QString error, QJsonObject extra);
    static QCoro::Task<> finish(Pointer run, bool whole);

    template <typename Value>
    static QCoro::Task<std::optional<Value>> read(Pointer run, std::function<Value(SqlConnection&)> query);

    SyncClient* client; ///< until the run is `Gone`
    const QString base; ///< of the service that the user agreed to
    const QString ingest;
    const QString workspaceId;
    const Batching batching;
    CancelHandle cancel;
    Ended ended = Ended::No;
    Outcome outcome;
    std::shared_ptr<CloudReader> reader;
};

}
