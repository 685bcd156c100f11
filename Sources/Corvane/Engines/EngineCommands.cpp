// The commands of EngineManager: one JSON object per line, written to an engine's standard input.

#include "Engines/EngineCommands.h"

#include "Engines/EngineManagerState.h"
#include "Foundation/Channel.h"
#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Store/Approvals/OutboundQueries.h"
#include "Store/Messages/ChannelFeatures.h"
#include "Store/Messages/ThreadQueries.h"

#include <QJsonArray>

namespace corvane {

namespace {

const QString cmdKey = u"cmd"_s;
const QString chatIdKey = u"chatId"_s;
const QString messageIdKey = u"messageId"_s;
const QString fromMeKey = u"fromMe"_s;
const QString textKey = u"text"_s;
const QString draftIdKey = u"draftId"_s;

MediaDownloadStatus failed(const QString& reason)
{
    return { MediaDownloadStatus::Kind::Failed, reason };
}

}

QJsonObject sendCommand(const QString& chatId, const OutgoingMessage& message, const ChannelFeatures& features,
    Acknowledges kind, const QString& id)
{
    QJsonObject command { { cmdKey, u"send"_s }, { chatIdKey, chatId }, { textKey, message.text } };
    if (features.subject && !message.subject.isEmpty())
        command.insert(u"subject"_s, message.subject);
    QJsonArray files;
    for (const OutgoingFile& file : message.files)
        files.append(QJsonObject { { u"path"_s, file.path }, { u"name"_s, file.name } });
    if (features.files && !files.isEmpty())
        command.insert(u"files"_s, files);
    if (!id.isEmpty())
        command.insert(kind == Acknowledges::Draft ? draftIdKey : u"sendId"_s, id);
    return command;
}

QJsonObject placeCommand(const QString& threadId, const QString& text, const QString& draftId)
{
    return { { cmdKey, u"draft"_s }, { u"threadId"_s, threadId }, { textKey, text }, { draftIdKey, draftId } };
}

QByteArray commandLine(const QJsonObject& command)
{
    return compactJson(command) + '\n';
}

std::shared_ptr<ChildProcess> EngineManager::engineOf(const Account& account) const
{
    return m_state->processes.child(account.id);
}

/// An engine that closed its input keeps running but cannot receive commands.
bool EngineManager::writeLine(const Account& account, const QByteArray& line, const QString& caller)
{
    const auto engine = engineOf(account);
    const auto written = engine->write(line);
    if (written)
        return true;
    log(u"EngineManager.%1: pipe write failed for %2: %3"_s.arg(caller, account.slug, written.error().message));
    if (engine->isRunning() && !engine->isInputOpen()) {
        m_state->runtime.setStatus(account.id, WAStatus::Error);
        m_state->runtime.setLog(account.id, u"The engine takes no commands: it closed its input. Start it again."_s);
    }
    return false;
}

bool EngineManager::writeCommand(const Account& account, const QJsonObject& command)
{
    if (!engineOf(account)) {
        log(u"EngineManager.writeCommand: no running engine pipe for %1 cmd=%2"_s.arg(
            account.slug, command.value(cmdKey).toString(u"unknown"_s)));
        return false;
    }
    return writeLine(account, commandLine(command), u"writeCommand"_s);
}

bool EngineManager::sendText(
    const Account& account, const QString& chatId, const OutgoingMessage& message, const QString& sendId)
{
    if (!engineOf(account))
        return false;
    const QJsonObject command
        = sendCommand(chatId, message, fetchFeatures(db(), account.slug), Acknowledges::DirectSend, sendId);
    return writeLine(account, commandLine(command), u"sendText"_s);
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
    return writeCommand(account, { { cmdKey, u"sendAudio"_s }, { chatIdKey, chatId }, { u"path"_s, path } });
}

bool EngineManager::markRead(const Account& account, const QString& chatId)
{
    const bool written = writeCommand(account, { { cmdKey, u"markRead"_s }, { chatIdKey, chatId } });
    if (!written)
        log(u"EngineManager.markRead: command write failed for %1 chatId=%2"_s.arg(account.slug, chatId));
    return written;
}

bool EngineManager::loadMoreHistory(const Account& account, const QString& chatId, int count)
{
    return writeCommand(account, { { cmdKey, u"loadMore"_s }, { chatIdKey, chatId }, { u"count"_s, count } });
}

bool EngineManager::react(
    const Account& account, const QString& chatId, const QString& messageId, bool fromMe, const QString& emoji)
{
    return writeCommand(account,
        { { cmdKey, u"react"_s }, { chatIdKey, chatId }, { messageIdKey, messageId }, { fromMeKey, fromMe },
            { u"emoji"_s, emoji } });
}

bool EngineManager::fetchAvatar(const Account& account, const QString& jid)
{
    return writeCommand(account, { { cmdKey, u"fetchAvatar"_s }, { u"jid"_s, jid } });
}

bool EngineManager::sync(const Account& account)
{
    return writeCommand(account, { { cmdKey, u"sync"_s } });
}

void EngineManager::retryMediaDownload(const UnifiedMsgRow& row)
{
    const QString channel = channelLabel(row.platform);
    const QString providerId = row.providerMsgId.isEmpty() ? QString(row.id).remove(u"wa:msg:"_s) : row.providerMsgId;
    if (row.accountId.isEmpty() || row.externalId.isEmpty() || providerId.isEmpty()) {
        setMediaDownload(row.id, failed(u"This message is missing the %1 ids needed to retry."_s.arg(channel)));
        return;
    }
    const MediaDownloadStatus notRunning = failed(u"%1 engine is not running for this account."_s.arg(channel));
    const auto account = runningAccount(row.accountId);
    if (!account) {
        setMediaDownload(row.id, notRunning);
        return;
    }
    setMediaDownload(row.id, MediaDownloadStatus { MediaDownloadStatus::Kind::Downloading, {} });
    QJsonObject command { { cmdKey, u"downloadMedia"_s }, { chatIdKey, row.externalId }, { messageIdKey, providerId },
        { fromMeKey, row.direction == u"OUT" } };
    // In a group an engine may report the sender's address, which the download request must name.
    if (row.sender.contains(u'@'))
        command.insert(u"participant"_s, row.sender);
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
            setMediaDownload(message, failed(u"The engine ended before the file was there."_s));
    }
}

}
