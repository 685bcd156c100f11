#include "Web/DryRun.h"

#include "Foundation/Literals.h"
#include "Web/IngestBodies.h"

#include <QFile>
#include <QJsonDocument>
#include <QSaveFile>
#include <QSet>

namespace corvane {

namespace {

const QString given = u"(given by the service)"_s;

class Writer {
public:
    explicit Writer(const QString& path)
        : m_file(path)
    {
        m_file.open(QIODevice::WriteOnly);
        m_file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    }

    void line(const QString& text) { m_file.write(text.toUtf8() + '\n'); }
    void request(const QString& address, const QJsonObject& body)
    {
        line(u"POST "_s + address);
        m_file.write(QJsonDocument(body).toJson() + '\n');
    }
    QString close() { return m_file.commit() ? QString() : m_file.errorString(); }
    void giveUp() { m_file.cancelWriting(); }

private:
    QSaveFile m_file;
};

}

QString writeDryRun(SqlConnection& db, const DryRun& dry)
{
    const PushReview review = fetchPushReview(db, dry.workspaceId, dry.mostThreads);
    Writer writer(dry.path);
    qint64 messages = 0;
    for (const DueThread& due : review.threads)
        messages += std::min<qint64>(due.messages, dry.mostMessages);
    writer.line(u"What the next push would send to %1: %2 chats, %3 messages.\n"
                "Nothing was sent. Chats that wait for a later push are not listed: %4.\n"_s.arg(dry.target)
                    .arg(review.threads.size())
                    .arg(messages)
                    .arg(review.waitingThreads));
    QSet<QString> accounts;
    for (const DueThread& due : review.threads) {
        const CloudThread& thread = due.thread;
        if (!accounts.contains(thread.accountId))
            writer.request(dry.target + u"/accounts"_s, mapAccount(thread.accountId));
        accounts.insert(thread.accountId);
        writer.line(u"----- %1 -----\n"_s.arg(thread.shownTitle()));
        if (!thread.cloudChatId)
            writer.request(dry.target + u"/chats"_s, mapThread(thread, given));
        const QString chatId = thread.cloudChatId.value_or(given);
        const IngestChat chat { given, chatId, thread.accountId, thread.externalId, thread.isGroup() };
        const qint64 sinceMs = cloudCursor(db, thread.conversationId).lastSyncedMs;
        for (const CloudMessage& message : cloudMessagesToSync(db, thread.conversationId, sinceMs, dry.mostMessages))
            writer.request(dry.target + u"/chats/%1/messages"_s.arg(chatId), mapMessage(message, chat));
    }
    if (db.failure() != 0)
        writer.giveUp();
    return writer.close();
}

}
