#include "Inbox/Compose/Composer.h"

#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Foundation/Text.h"
#include "Inbox/Compose/DroppedText.h"
#include "Store/People/IdentityQueries.h"

#include <algorithm>

namespace corvane {

Composer::Composer(const Surroundings& surroundings, QObject* parent)
    : QObject(parent)
    , m_engine(surroundings.engine)
    , m_texts(surroundings.unsentFolder + u"/unsent.json"_s, surroundings.scheduler)
    , m_unsent(surroundings.engine, surroundings.scheduler, surroundings.unsentFolder + u"/unsent-messages.json"_s)
    , m_attachments(surroundings.engine.outbox(), surroundings.desktop)
    , m_routing(surroundings.engine, surroundings.accounts, surroundings.defaults)
    , m_hints(m_routing, surroundings.defaults)
    , m_voice(surroundings.engine.db(), surroundings.voice, surroundings.microphone, surroundings.scheduler,
          surroundings.defaults)
{
    connect(&m_routing, &ReplyRouting::changed, this,
        [this] { m_attachments.setChannel(m_routing.label(), m_routing.features()); });
    connect(&m_voice, &ComposerVoice::refused, this, &Composer::setSendError);
    connect(&m_voice, &ComposerVoice::dictatedTo, this, &Composer::append);
    connect(
        &m_unsent, &UnsentMessages::retried, this, [this](const QString& id, const UnsentMessages::Message& message) {
            if (sendMessage(message.platform, message.content))
                m_unsent.forget(id);
        });
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
    m_voice.open(contact.id);
    m_contact = contact;
    gatherMerged();
    m_unsent.show(contact.id);
    m_attachments.show(contact.id, m_texts.message(contact.id).files);
    if (!samePerson) {
        forgetUndo();
        setSendError({});
    }
    Q_EMIT contactChanged();
    m_routing.open(contact);
    Q_EMIT textChanged();
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
    message.subject = m_routing.takesSubject() ? singleLine(message.subject) : QString();
    if (!sendMessage(m_routing.replyPlatform(), message))
        return;
    m_texts.forget(m_contact.id);
    m_attachments.show(m_contact.id, {});
    forgetUndo();
    Q_EMIT textChanged();
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

void Composer::append(const QString& contactId, const QString& said)
{
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
    VoiceRecorder& note = *m_voice.note();
    const QString path = m_voice.showsNote() ? note.stop() : QString();
    if (path.isEmpty())
        return;
    const bool taken = sendThrough(m_routing.replyPlatform(),
        [&](const Account& account, const QString& chatId) { return m_engine.sendAudio(account, chatId, path); });
    if (taken)
        note.handedOver();
}

bool Composer::sendThrough(const QString& platform, const ReplyRouting::Say& say)
{
    const Result<void> taken = m_routing.send(platform, say);
    setSendError(taken ? QString() : taken.error().message);
    if (taken)
        Q_EMIT sent();
    return taken.has_value();
}

void Composer::setSendError(const QString& error)
{
    if (m_sendError == error)
        return;
    m_sendError = error;
    Q_EMIT sendErrorChanged();
}

}
