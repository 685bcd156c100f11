// The commands of EngineManager: one JSON object a line, written to an engine's standard input.

#include "Engines/EngineCommands.h"

#include "Engines/EngineManagerState.h"
#include "Foundation/Channel.h"
#include "Foundation/Json.h"
#include "Foundation/Log.h"
#include "Store/Approvals/OutboundQueries.h"
#include "Store/Messages/ChannelFeatures.h"
#include "Store/Messages/ThreadQueries.h"

#include <QJsonArray>

namespace corvane {

namespace {

const QString cmdKey = QStringLiteral("cmd");
const QString chatIdKey = QStringLiteral("chatId");
const QString messageIdKey = QStringLiteral("messageId");
const QString fromMeKey = QStringLiteral("fromMe");
const QString textKey = QStringLiteral("text");
const QString draftIdKey = QStringLiteral("draftId");

MediaDownloadStatus failed(const QString& reason)
{
    return { MediaDownloadStatus::Kind::Failed, reason };
}

}

QJsonObject sendCommand(const QString& chatId, const OutgoingMessage& message, const ChannelFeatures& features,
    Acknowledges kind, const QString& id)
{
    QJsonObject command { { cmdKey, QStringLiteral("send") }, { chatIdKey, chatId }, { textKey, message.text } };
    if (features.subject && !message.subject.isEmpty())
        command.insert(QStringLiteral("subject"), message.subject);
    QJsonArray files;
    for (const OutgoingFile& file : message.files)
        files.append(QJsonObject { { QStringLiteral("path"), file.path }, { QStringLiteral("name"), file.name } });
    if (features.files && !files.isEmpty())
        command.insert(QStringLiteral("files"), files);
    if (!id.isEmpty())
        command.insert(kind == Acknowledges::Draft ? draftIdKey : QStringLiteral("sendId"), id);
    return command;
}

QJsonObject placeCommand(const QString& threadId, const QString& text, const QString& draftId)
{
    return { { cmdKey, QStringLiteral("draft") }, { QStringLiteral("threadId"), threadId }, { textKey, text },
        { draftIdKey, draftId } };
}

QByteArray commandLine(const QJsonObject& command)
{
    return compactJson(command) + '\n';
}

std::shared_ptr<ChildProcess> EngineManager::engineOf(const Account& account) const
{
    return m_state->processes.child(account.id);
}

/// An engine that closed its input runs on and can be told nothing.
bool EngineManager::writeLine(const Account& account, const QByteArray& line, const QString& caller)
{
    const auto engine = engineOf(account);
    const auto written = engine->write(line);
    if (written)
        return true;
    log(QStringLiteral("EngineManager.%1: pipe write failed for %2: %3")
            .arg(caller, account.slug, written.error().message));
    if (engine->isRunning() && !engine->isInputOpen()) {
        m_state->runtime.setStatus(account.id, WAStatus::Error);
        m_state->runtime.setLog(
            account.id, QStringLiteral("The engine takes no commands: it closed its input. Start it again."));
    }
    return false;
}

bool EngineManager::writeCommand(const Account& account, const QJsonObject& command)
{
    if (!engineOf(account)) {
        log(QStringLiteral("EngineManager.writeCommand: no running engine pipe for %1 cmd=%2")
                .arg(account.slug, command.value(cmdKey).toString(QStringLiteral("unknown"))));
        return false;
    }
    return writeLine(account, commandLine(command), QStringLiteral("writeCommand"));
}

bool EngineManager::sendText(
    const Account& account, const QString& chatId, const OutgoingMessage& message, const QString& sendId)
{
    if (!engineOf(account))
        return false;
    const QJsonObject command
        = sendCommand(chatId, message, fetchFeatures(db(), account.slug), Acknowledges::DirectSend, sendId);
    return writeLine(account, commandLine(command), QStringLiteral("sendText"));
}

const Outbox& EngineManager::outbox() const
{
    return m_state->outbox;
}

bool EngineManager::queueDraft(const QString& conversationId, const OutgoingMessage& message, const QString& source)
{
    OutgoingMessage queued = message;
    const auto files = outbox().copyForDraft(message.files);
    queued.files = files.value_or(QList<OutgoingFile>());
    return files && corvane::queueDraft(db(), conversationId, queued, source);
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
    const QString channel = channelLabel(row.platform);
    const QString providerId
        = row.providerMsgId.isEmpty() ? QString(row.id).remove(QStringLiteral("wa:msg:")) : row.providerMsgId;
    if (row.accountId.isEmpty() || row.externalId.isEmpty() || providerId.isEmpty()) {
        setMediaDownload(
            row.id, failed(QStringLiteral("This message is missing the %1 ids needed to retry.").arg(channel)));
        return;
    }
    const MediaDownloadStatus notRunning
        = failed(QStringLiteral("%1 engine is not running for this account.").arg(channel));
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
    m_state->mediaAskedOf.insert(row.id, engineOf(*account));
    if (!writeCommand(*account, command))
        setMediaDownload(row.id, notRunning);
}

void EngineManager::failMediaOf(const std::shared_ptr<ChildProcess>& engine)
{
    const QStringList messages = m_state->mediaAskedOf.keys();
    for (const QString& message : messages) {
        if (m_state->mediaAskedOf.value(message).lock() != engine)
            continue;
        m_state->mediaAskedOf.remove(message);
        const auto status = mediaDownloadStatus(message);
        if (status && status->kind == MediaDownloadStatus::Kind::Downloading)
            setMediaDownload(message, failed(QStringLiteral("The engine ended before the file was there.")));
    }
}

}
