#include "Inbox/Compose/Composer.h"

#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Inbox/Compose/DroppedText.h"
#include "Inbox/Compose/ReplyRouting.h"
#include "Presentation/SendKeys.h"
#include "Store/Approvals/OutgoingMessage.h"
#include "Store/People/IdentityQueries.h"

#include <QDir>
#include <algorithm>

namespace corvane {

namespace {

/// Why an engine could only drop what it is given; nothing where it can send.
std::optional<QString> obstacle(const Account& account, WAStatus status)
{
    switch (status) {
    case WAStatus::Starting:
    case WAStatus::Connecting:
        return QStringLiteral("%1 is still connecting. Send again in a moment.").arg(account.name);
    case WAStatus::NeedsQR:
    case WAStatus::LoggedOut:
        return QStringLiteral("Account %1 is not connected").arg(account.slug);
    case WAStatus::Connected:
    case WAStatus::Error:
    case WAStatus::Stopped:
        return std::nullopt;
    }
    Q_UNREACHABLE();
}

}

Composer::Composer(const Surroundings& surroundings, QObject* parent)
    : QObject(parent)
    , m_engine(surroundings.engine)
    , m_accounts(surroundings.accounts)
    , m_defaults(surroundings.defaults)
    , m_texts(surroundings.unsentTextsFile, surroundings.scheduler)
    , m_unsent(surroundings.engine, surroundings.scheduler, surroundings.unsentMessagesFile)
    , m_voice(surroundings.microphone, surroundings.scheduler, QDir::tempPath())
    , m_dictation(surroundings.voice, surroundings.microphone, surroundings.scheduler, surroundings.defaults)
{
    connect(&m_voice, &VoiceRecorder::stateChanged, this, &Composer::voiceShown);
    connect(&m_dictation, &ComposerDictation::dictated, this, &Composer::takeDictation);
    connect(this, &Composer::replyPlatformChanged, this, &Composer::hintsChanged);
}

Composer::~Composer() = default;

void Composer::open(const ContactRow& contact)
{
    const bool samePerson = contact.id == m_contact.id;
    if (samePerson && contact.platforms == m_contact.platforms)
        return;
    if (!samePerson && showsVoice())
        m_voice.leave();
    if (!samePerson)
        m_dictation.finish(); // what was said to the other one goes into their text
    m_contact = contact;
    if (!samePerson || !contact.platforms.contains(m_replyPlatform))
        m_replyPlatform = contact.id.isEmpty() ? QString() : preferredReplyPlatform(m_defaults, contact);
    gatherMerged();
    m_unsent.show(contact.id);
    if (!samePerson) {
        forgetUndo();
        setSendError({});
        m_voice.dismissNotice();
    }
    Q_EMIT contactChanged();
    Q_EMIT replyPlatformChanged();
    Q_EMIT voiceShown();
    Q_EMIT textChanged();
}

bool Composer::showsVoice() const
{
    return !m_voice.idle() && personBehind(m_engine.db(), m_voice.contactId()) == m_contact.id;
}

void Composer::setText(const QString& text)
{
    if (m_contact.id.isEmpty() || text == this->text())
        return;
    m_texts.setText(m_contact.id, text);
    Q_EMIT textChanged();
}

void Composer::gatherMerged()
{
    if (m_contact.id.isEmpty())
        return;
    for (const QString& id : m_texts.contactIds()) {
        if (id == m_contact.id || personBehind(m_engine.db(), id) != m_contact.id)
            continue;
        const QString theirs = m_texts.text(id);
        m_texts.setText(m_contact.id, text().isEmpty() ? theirs : text() + QStringLiteral("\n\n") + theirs);
        m_texts.setText(id, {});
    }
}

QList<Choice> Composer::replyPlatforms() const
{
    QList<Choice> choices;
    for (const QString& platform : m_contact.platforms)
        choices.append({ platform, channelLabel(platform) });
    return choices;
}

void Composer::setReplyPlatform(const QString& platform)
{
    if (platform == m_replyPlatform || !m_contact.platforms.contains(platform))
        return;
    m_replyPlatform = platform;
    Q_EMIT replyPlatformChanged();
}

QString Composer::replyPlatformLabel() const
{
    return channelLabel(m_replyPlatform);
}

QString Composer::placeholder() const
{
    return m_replyPlatform.isEmpty() ? QString()
                                     : QStringLiteral("Reply on %1 · %2 sends").arg(replyPlatformLabel(), sendKeys());
}

bool Composer::returnSends() const
{
    return corvane::returnSends(m_defaults);
}

QString Composer::sendKeys() const
{
    return corvane::sendKeys(m_defaults);
}

void Composer::apply(const QString& text, Placement placement)
{
    if (m_contact.id.isEmpty())
        return;
    const QString before = this->text();
    setText(placement == Placement::After && !before.isEmpty() ? before + QStringLiteral("\n\n") + text : text);
    m_beforeApply = before;
    Q_EMIT undoChanged();
    Q_EMIT focusRequested();
}

void Composer::dropText(const QString& text)
{
    setSendError({});
    if (!text.trimmed().isEmpty())
        apply(text.trimmed(), Placement::After);
}

void Composer::dropFiles(const QList<QUrl>& files)
{
    const auto text = DroppedText::ofFiles(files);
    if (text)
        dropText(*text);
    else
        setSendError(text.error().message);
}

void Composer::undo()
{
    if (!m_beforeApply)
        return;
    setText(*m_beforeApply);
    forgetUndo();
    Q_EMIT focusRequested();
}

void Composer::forgetUndo()
{
    m_beforeApply.reset();
    Q_EMIT undoChanged();
}

void Composer::send()
{
    const QString said = text().trimmed();
    if (said.isEmpty())
        return;
    if (!sendText(m_replyPlatform, said))
        return;
    m_texts.forget(m_contact.id);
    forgetUndo();
    Q_EMIT textChanged();
}

void Composer::retry(const QString& id)
{
    const auto message = m_unsent.find(id);
    if (message && sendText(message->platform, message->text))
        m_unsent.forget(id);
}

bool Composer::sendText(const QString& platform, const QString& text)
{
    return sendThrough(platform, [&](const Account& account, const QString& chatId) {
        const QString id = m_unsent.begin({ m_contact.id, platform, text }, account);
        const bool taken = m_engine.sendText(account, chatId, { text }, id);
        if (!taken)
            m_unsent.forget(id);
        return taken;
    });
}

void Composer::startVoice()
{
    if (m_contact.id.isEmpty())
        return;
    if (m_voice.idle())
        m_voice.start(m_contact.id);
    else if (!showsVoice())
        setSendError(QStringLiteral("A voice note to another contact waits: send or discard it first."));
}

void Composer::dictate()
{
    if (m_dictation.active())
        m_dictation.finish();
    else if (!showsVoice())
        m_dictation.start(m_contact.id);
}

void Composer::takeDictation(const QString& contactId, const QString& said)
{
    if (personBehind(m_engine.db(), contactId) == m_contact.id) {
        Q_EMIT dictated(said);
        return;
    }
    const QString before = m_texts.text(contactId);
    m_texts.setText(contactId, before.isEmpty() ? said : before + QLatin1Char(' ') + said);
}

int Composer::insertDictation(const QString& said, int cursor)
{
    const QString before = text();
    const qsizetype place = std::clamp<qsizetype>(cursor, 0, before.size());
    const QString head = before.left(place);
    const QString tail = before.mid(place);
    const bool needsBlank = !head.isEmpty() && !head.back().isSpace();
    const bool runsIntoWord = !tail.isEmpty() && tail.front().isLetterOrNumber();
    const QString inserted
        = (needsBlank ? QStringLiteral(" ") : QString()) + said + (runsIntoWord ? QStringLiteral(" ") : QString());
    setText(head + inserted + tail);
    m_beforeApply = before;
    Q_EMIT undoChanged();
    return int(place + inserted.size());
}

void Composer::sendVoice()
{
    const QString path = showsVoice() ? m_voice.stop() : QString();
    if (path.isEmpty())
        return;
    const bool taken = sendThrough(m_replyPlatform,
        [&](const Account& account, const QString& chatId) { return m_engine.sendAudio(account, chatId, path); });
    if (taken)
        m_voice.handedOver();
}

bool Composer::sendThrough(
    const QString& platform, const std::function<bool(const Account& account, const QString& chatId)>& say)
{
    if (m_contact.id.isEmpty())
        return false;
    const auto target = replyTarget(m_engine.db(), m_contact.id, platform);
    if (!target) {
        setSendError(QStringLiteral("No %1 conversation for this contact").arg(channelLabel(platform)));
        return false;
    }
    const auto account = m_accounts.findBySlug(target->account);
    if (const auto reason = account ? obstacle(*account, m_engine.runtime(account->id).status) : std::nullopt) {
        setSendError(*reason);
        return false;
    }
    if (!account || !say(*account, target->chatId)) {
        setSendError(QStringLiteral("Account %1 is not connected").arg(target->account));
        return false;
    }
    setSendError({});
    rememberReplyPlatform(m_defaults, platform, m_contact);
    Q_EMIT sent();
    return true;
}

void Composer::setSendError(const QString& error)
{
    if (m_sendError == error)
        return;
    m_sendError = error;
    Q_EMIT sendErrorChanged();
}

}
