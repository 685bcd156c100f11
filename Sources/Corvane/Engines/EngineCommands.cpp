// The commands of EngineManager: one JSON object a line, written to an engine's standard input.

#include "Engines/EngineManagerState.h"
#include "Foundation/Json.h"
#include "Foundation/Log.h"
#include "Store/Messages/ThreadQueries.h"

namespace corvane {

namespace {

const QString cmdKey = QStringLiteral("cmd");
const QString chatIdKey = QStringLiteral("chatId");
const QString messageIdKey = QStringLiteral("messageId");
const QString fromMeKey = QStringLiteral("fromMe");

MediaDownloadStatus failed(const QString& reason)
{
    return { MediaDownloadStatus::Kind::Failed, reason };
}

}

bool EngineManager::writeCommand(const Account& account, const QJsonObject& command)
{
    ChildProcess* engine = m_state->processes.child(account.id);
    if (!engine) {
        log(QStringLiteral("EngineManager.writeCommand: no running engine pipe for %1 cmd=%2")
                .arg(account.slug, command.value(cmdKey).toString(QStringLiteral("unknown"))));
        return false;
    }
    const auto written = engine->write(compactJson(command) + '\n');
    if (!written)
        log(QStringLiteral("EngineManager.writeCommand: pipe write failed for %1: %2")
                .arg(account.slug, written.error().message));
    return written.has_value();
}

bool EngineManager::sendText(const Account& account, const QString& chatId, const QString& text, const QString& draftId)
{
    ChildProcess* engine = m_state->processes.child(account.id);
    if (!engine)
        return false;
    QJsonObject command { { cmdKey, QStringLiteral("send") }, { chatIdKey, chatId }, { QStringLiteral("text"), text } };
    if (!draftId.isEmpty())
        command.insert(QStringLiteral("draftId"), draftId);
    const auto written = engine->write(compactJson(command) + '\n');
    if (!written)
        log(QStringLiteral("EngineManager.sendText: pipe write failed for %1: %2")
                .arg(account.slug, written.error().message));
    return written.has_value();
}

bool EngineManager::sendAudio(const Account& account, const QString& chatId, const QString& path)
{
    return writeCommand(
        account, { { cmdKey, QStringLiteral("sendAudio") }, { chatIdKey, chatId }, { QStringLiteral("path"), path } });
}

bool EngineManager::markRead(const Account& account, const QString& chatId)
{
    const bool written = writeCommand(account, { { cmdKey, QStringLiteral("markRead") }, { chatIdKey, chatId } });
    if (!written)
        log(QStringLiteral("EngineManager.markRead: command write failed for %1 chatId=%2").arg(account.slug, chatId));
    return written;
}

bool EngineManager::loadMoreHistory(const Account& account, const QString& chatId, int count)
{
    return writeCommand(
        account, { { cmdKey, QStringLiteral("loadMore") }, { chatIdKey, chatId }, { QStringLiteral("count"), count } });
}

bool EngineManager::react(
    const Account& account, const QString& chatId, const QString& messageId, bool fromMe, const QString& emoji)
{
    return writeCommand(account,
        { { cmdKey, QStringLiteral("react") }, { chatIdKey, chatId }, { messageIdKey, messageId },
            { fromMeKey, fromMe }, { QStringLiteral("emoji"), emoji } });
}

bool EngineManager::fetchAvatar(const Account& account, const QString& jid)
{
    return writeCommand(account, { { cmdKey, QStringLiteral("fetchAvatar") }, { QStringLiteral("jid"), jid } });
}

bool EngineManager::sync(const Account& account)
{
    return writeCommand(account, { { cmdKey, QStringLiteral("sync") } });
}

void EngineManager::retryMediaDownload(const UnifiedMsgRow& row)
{
    if (row.platform != channelRaw(Channel::WhatsApp))
        return;
    const QString providerId
        = row.providerMsgId.isEmpty() ? QString(row.id).remove(QStringLiteral("wa:msg:")) : row.providerMsgId;
    if (row.accountId.isEmpty() || row.externalId.isEmpty() || providerId.isEmpty()) {
        setMediaDownload(row.id, failed(QStringLiteral("This message is missing the WhatsApp ids needed to retry.")));
        return;
    }
    const MediaDownloadStatus notRunning = failed(QStringLiteral("WhatsApp engine is not running for this account."));
    const auto account = runningAccount(row.accountId);
    if (!account) {
        setMediaDownload(row.id, notRunning);
        return;
    }
    setMediaDownload(row.id, MediaDownloadStatus { MediaDownloadStatus::Kind::Downloading, {} });
    QJsonObject command { { cmdKey, QStringLiteral("downloadMedia") }, { chatIdKey, row.externalId },
        { messageIdKey, providerId }, { fromMeKey, row.direction == u"OUT" } };
    // In a group an engine may report the sender by address, which then says who to ask for the file.
    if (row.sender.contains(u'@'))
        command.insert(QStringLiteral("participant"), row.sender);
    if (!writeCommand(*account, command))
        setMediaDownload(row.id, notRunning);
}

}
