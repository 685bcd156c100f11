#include "Inbox/Compose/Composer.h"

#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Foundation/Text.h"
#include "Inbox/Compose/DroppedText.h"
#include "Inbox/Compose/ReplyRouting.h"
#include "Presentation/SendKeys.h"
#include "Store/People/IdentityQueries.h"

#include <QDir>
#include <algorithm>

namespace corvane {

namespace {

/// Why the engine could not send; nothing if it can.
std::optional<QString> obstacle(const Account& account, WAStatus status)
{
    switch (status) {
    case WAStatus::Starting:
    case WAStatus::Connecting:
        return u"%1 is still connecting. Send again in a moment."_s.arg(account.name);
    case WAStatus::NeedsQR:
    case WAStatus::LoggedOut:
        return u"Account %1 is not connected"_s.arg(account.slug);
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
    , m_texts(surroundings.unsentFolder + u"/unsent.json"_s, surroundings.scheduler)
    , m_unsent(surroundings.engine, surroundings.scheduler, surroundings.unsentFolder + u"/unsent-messages.json"_s)
    , m_attachments(surroundings.engine.outbox(), surroundings.desktop)
    , m_voice(surroundings.microphone, surroundings.scheduler, QDir::tempPath())
    , m_dictation(surroundings.voice, surroundings.microphone, surroundings.scheduler, surroundings.defaults)
{
    connect(&m_voice, &VoiceRecorder::stateChanged, this, &Composer::voiceShown);
    connect(&m_dictation, &ComposerDictation::dictated, this, &Composer::takeDictation);
    connect(this, &Composer::replyPlatformChanged, this, &Composer::hintsChanged);
    connect(this, &Composer::replyPlatformChanged, this, &Composer::readFeatures);
    connect(&m_engine, &EngineManager::featuresChanged, this, &Composer::readFeatures);
    connect(&m_attachments, &Attachments::changed, this, &Composer::textChanged);
    connect(&m_attachments, &Attachments::refused, this, &Composer::setSendError);
    connect(&m_attachments, &Attachments::added, this, [this](const QString& contactId, const OutgoingFile& file) {
        OutgoingMessage message = m_texts.message(contactId);
        message.files.append(file);
        m_texts.set(contactId, message);
    });
    connect(&m_attachments, &Attachments::removed, this,
        [this] { change([this](OutgoingMessage& message) { message.files = m_attachments.files(); }); });
    m_engine.outbox().keepPicked(m_texts.files() + m_unsent.files());
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
        m_dictation.finish(); // pending dictation is inserted into the previous contact's text
    m_contact = contact;
    if (!samePerson || !contact.platforms.contains(m_replyPlatform))
        m_replyPlatform = contact.id.isEmpty() ? QString() : preferredReplyPlatform(m_defaults, contact);
    gatherMerged();
    m_unsent.show(contact.id);
    m_attachments.show(contact.id, m_texts.message(contact.id).files);
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
    change([&](OutgoingMessage& message) { message.text = text; });
}

void Composer::setSubject(const QString& subject)
{
    if (!m_contact.id.isEmpty() && subject != this->subject())
        change([&](OutgoingMessage& message) { message.subject = subject; });
}

void Composer::change(const std::function<void(OutgoingMessage& message)>& change)
{
    OutgoingMessage message = m_texts.message(m_contact.id);
    change(message);
    m_texts.set(m_contact.id, message);
    Q_EMIT textChanged();
}

bool Composer::canSend() const
{
    return m_attachments.isReady() && (!text().trimmed().isEmpty() || !m_attachments.files().isEmpty());
}

void Composer::readFeatures()
{
    const auto target
        = m_contact.id.isEmpty() ? std::nullopt : replyTarget(m_engine.db(), m_contact.id, m_replyPlatform);
    m_features = target ? fetchFeatures(m_engine.db(), target->account) : ChannelFeatures();
    m_attachments.setChannel(replyPlatformLabel(), m_features);
    Q_EMIT featuresChanged();
}

void Composer::gatherMerged()
{
    if (m_contact.id.isEmpty())
        return;
    for (const QString& id : m_texts.contactIds()) {
        if (id == m_contact.id || personBehind(m_engine.db(), id) != m_contact.id)
            continue;
        const OutgoingMessage theirs = m_texts.message(id);
        OutgoingMessage all = m_texts.message(m_contact.id);
        if (!all.text.isEmpty() && !theirs.text.isEmpty())
            all.text += u"\n\n"_s;
        all.text += theirs.text;
        if (all.subject.isEmpty())
            all.subject = theirs.subject;
        all.files += theirs.files;
        m_texts.set(m_contact.id, all);
        m_texts.set(id, {});
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
    return m_replyPlatform.isEmpty() ? QString() : u"Reply on %1 · %2 sends"_s.arg(replyPlatformLabel(), sendKeys());
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
    setText(placement == Placement::After && !before.isEmpty() ? before + u"\n\n"_s + text : text);
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
    if (m_attachments.allowed()) {
        setSendError({});
        return m_attachments.add(files);
    }
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
    if (!canSend())
        return;
    OutgoingMessage message = m_texts.message(m_contact.id);
    message.text = message.text.trimmed();
    message.subject = m_features.subject ? singleLine(message.subject) : QString();
    if (!sendMessage(m_replyPlatform, message))
        return;
    m_texts.forget(m_contact.id);
    m_attachments.show(m_contact.id, {});
    forgetUndo();
    Q_EMIT textChanged();
}

void Composer::retry(const QString& id)
{
    const auto message = m_unsent.find(id);
    if (message && sendMessage(message->platform, message->content))
        m_unsent.forget(id);
}

bool Composer::sendMessage(const QString& platform, const OutgoingMessage& message)
{
    return sendThrough(platform, [&](const Account& account, const QString& chatId) {
        const QString id = m_unsent.begin({ m_contact.id, platform, message }, account);
        const bool taken = m_engine.sendText(account, chatId, message, id);
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
        setSendError(u"A voice note to another contact waits: send or discard it first."_s);
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
    OutgoingMessage message = m_texts.message(contactId);
    message.text = message.text.isEmpty() ? said : message.text + QLatin1Char(' ') + said;
    m_texts.set(contactId, message);
}

int Composer::insertDictation(const QString& said, int cursor)
{
    const QString before = text();
    const qsizetype place = std::clamp<qsizetype>(cursor, 0, before.size());
    const QString head = before.left(place);
    const QString tail = before.mid(place);
    const bool needsBlank = !head.isEmpty() && !head.back().isSpace();
    const bool runsIntoWord = !tail.isEmpty() && tail.front().isLetterOrNumber();
    const QString inserted = (needsBlank ? u" "_s : QString()) + said + (runsIntoWord ? u" "_s : QString());
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
        setSendError(u"No %1 conversation for this contact"_s.arg(channelLabel(platform)));
        return false;
    }
    const auto account = m_accounts.findBySlug(target->account);
    if (const auto reason = account ? obstacle(*account, m_engine.runtime(account->id).status) : std::nullopt) {
        setSendError(*reason);
        return false;
    }
    if (!account || !say(*account, target->chatId)) {
        setSendError(u"Account %1 is not connected"_s.arg(target->account));
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
