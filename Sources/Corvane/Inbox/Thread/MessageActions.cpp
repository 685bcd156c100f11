#include "Inbox/Thread/MessageActions.h"

#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Inbox/List/ContactItem.h"
#include "Inbox/Thread/MediaFile.h"
#include "Inbox/Thread/ThreadView.h"
#include "Inbox/Thread/UnifiedBubble.h"
#include "Platform/Desktop.h"
#include "Presentation/UndoOffer.h"
#include "Store/Approvals/OutboundQueries.h"
#include "Store/Core/StoreWatch.h"

#include <QUrl>

namespace corvane {

namespace {

constexpr qsizetype forwardLimit = 8;
constexpr Milliseconds noticeTime { 6000 };
const QString whatsApp = u"WHATSAPP"_s;
const QString whatsAppPerson = u"@s.whatsapp.net"_s;

/// A disabled action says why; an empty `obstacle` means enabled.
MessageOffer action(const QString& key, const QString& label, const QString& obstacle = {})
{
    return { key, label, obstacle.isEmpty(), obstacle };
}

}

MessageActions::MessageActions(const Surroundings& surroundings, QObject* parent)
    : QObject(parent)
    , m_surroundings(surroundings)
{
    connect(&m_surroundings.thread, &ThreadView::contactChanged, this, &MessageActions::updateCall);
}

QList<MessageOffer> MessageActions::actionsFor(const QString& messageId) const
{
    const UnifiedMsgRow* row = m_surroundings.thread.message(messageId);
    if (!row)
        return {};
    const EngineManager& engine = m_surroundings.engine;
    using Kind = UnifiedBubble::MediaState::Kind;
    const auto media = UnifiedBubble::mediaState(*row, engine.mediaDownloadStatus(row->id), engine.mediaPlaces(*row));
    QList<MessageOffer> actions;
    actions.append(action(u"react"_s, u"React"_s,
        engine.runningAccount(row->accountId) ? QString() : u"Account %1 is not connected"_s.arg(row->accountId)));
    actions.append(action(u"copy"_s, u"Copy text"_s,
        UnifiedBubble::readableText(*row).isEmpty() ? u"This message has no text"_s : QString()));
    QString obstacle;
    if (row->body.trimmed().isEmpty())
        obstacle = u"This message has no text"_s;
    else if (forwardTargets().isEmpty())
        obstacle = u"There is nobody else in the list"_s;
    actions.append(action(u"forward"_s, u"Forward as draft…"_s, obstacle));

    if (media.kind == Kind::Ready && UnifiedBubble::hasAudio(*row))
        actions.append(action(u"play"_s, u"Play"_s));
    if (media.kind == Kind::Ready && UnifiedBubble::hasAudio(*row))
        actions.append(action(u"transcribe"_s, u"Transcribe on this computer"_s));
    if (!UnifiedBubble::readableText(*row).isEmpty())
        actions.append(action(u"speak"_s, row->audioTranscript ? u"Read transcript aloud"_s : u"Read aloud"_s));
    if (media.kind == Kind::Download || media.kind == Kind::Failed)
        actions.append(action(u"fetch"_s, media.kind == Kind::Failed ? u"Try again"_s : u"Download"_s));
    else if (media.kind != Kind::None)
        actions.append(action(u"open"_s, u"Open file"_s, media.text));
    actions.append(action(u"delete"_s, u"Delete (local copy)"_s));
    return actions;
}

void MessageActions::react(const QString& messageId, const QString& emoji)
{
    const UnifiedMsgRow* row = m_surroundings.thread.message(messageId);
    if (!row)
        return;
    EngineManager& engine = m_surroundings.engine;
    const auto account = m_surroundings.accounts.findBySlug(row->accountId);
    if (!account || row->providerMsgId.isEmpty())
        return;
    if (!engine.react(*account, row->externalId, row->providerMsgId, row->direction == u"OUT", emoji))
        return;
    setReaction(engine.db(), messageId, emoji);
    m_surroundings.thread.reload();
}

QString MessageActions::readableText(const QString& messageId) const
{
    const UnifiedMsgRow* row = m_surroundings.thread.message(messageId);
    return row ? UnifiedBubble::readableText(*row) : QString();
}

void MessageActions::deleteLocal(const QString& messageId)
{
    if (!m_surroundings.thread.message(messageId))
        return;
    const auto refresh = [this] {
        m_surroundings.engine.refreshUnreadBadge();
        m_surroundings.thread.reload();
        Q_EMIT messagesChanged();
    };
    deleteMessageLocal(m_surroundings.engine.db(), messageId);
    m_surroundings.undo.offer(u"Deleted the local copy"_s, [this, messageId, refresh] {
        restoreMessageLocal(m_surroundings.engine.db(), messageId);
        refresh();
    });
    refresh();
}

QList<ContactChoice> MessageActions::forwardTargets() const
{
    QList<ContactChoice> targets;
    for (const ContactRow& row : m_surroundings.contacts()) {
        if (row.id == m_surroundings.thread.contactId())
            continue;
        QStringList channels;
        for (const QString& platform : row.platforms)
            channels.append(channelLabel(platform));
        targets.append({ row.id, contactName(row), {}, channels.join(u", "_s) });
        if (targets.size() == forwardLimit)
            break;
    }
    return targets;
}

void MessageActions::forward(const QString& messageId, const QString& contactId)
{
    const UnifiedMsgRow* row = m_surroundings.thread.message(messageId);
    if (!row || row->body.trimmed().isEmpty())
        return;
    const auto conversation = newestConversation(m_surroundings.engine.db(), contactId);
    if (conversation && forwardAsDraft(row->body, *conversation))
        setNotice(u"The draft waits for your approval"_s);
    else
        m_surroundings.thread.setError(u"Couldn't queue the draft for this conversation."_s);
}

bool MessageActions::forwardAsDraft(const QString& messageBody, const QString& conversationId)
{
    if (!queueDraft(m_surroundings.engine.db(), conversationId, messageBody, u"forward"_s))
        return false;
    m_surroundings.engine.db().watch().tell(StoreSubject::Drafts);
    return true;
}

void MessageActions::fetchMedia(const QString& messageId)
{
    if (const UnifiedMsgRow* row = m_surroundings.thread.message(messageId))
        m_surroundings.engine.retryMediaDownload(*row);
}

void MessageActions::openMedia(const QString& messageId)
{
    const UnifiedMsgRow* row = m_surroundings.thread.message(messageId);
    const QString path = row ? row->mediaPath.value_or(QString()) : QString();
    if (path.isEmpty())
        return;
    const QString kind = UnifiedBubble::mediaKind(*row);
    QString error = describe(checkMedia(path, kind, m_surroundings.engine.mediaPlaces(*row)), kind);
    if (error.isEmpty() && !m_surroundings.desktop.openFile(path))
        error = u"No program on this machine opens the file."_s;
    m_surroundings.thread.setError(error);
}

void MessageActions::callOnWhatsApp()
{
    const QString digits = phone();
    if (digits.isEmpty())
        return;
    if (!m_surroundings.desktop.openLink(QUrl(u"whatsapp://send?phone="_s + digits)))
        m_surroundings.thread.setError(u"No program on this machine opens WhatsApp."_s);
}

QString MessageActions::phone() const
{
    const QString contactId = m_surroundings.thread.contactId();
    const auto target
        = contactId.isEmpty() ? std::nullopt : replyTarget(m_surroundings.engine.db(), contactId, whatsApp);
    QString digits;
    if (target && target->chatId.endsWith(whatsAppPerson)) {
        for (const QChar character : target->chatId.chopped(whatsAppPerson.size())) {
            if (character >= u'0' && character <= u'9')
                digits.append(character);
        }
    }
    return digits;
}

void MessageActions::updateCall()
{
    const bool canCall = !phone().isEmpty();
    if (canCall == m_canCall)
        return;
    m_canCall = canCall;
    Q_EMIT canCallChanged();
}

void MessageActions::setNotice(const QString& text)
{
    m_noticeText = text;
    m_noticeEnd = text.isEmpty() ? nullptr : m_surroundings.scheduler.after(noticeTime, [this] { setNotice({}); });
    Q_EMIT noticeTextChanged();
}

}
