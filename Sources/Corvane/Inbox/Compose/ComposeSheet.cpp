#include "Inbox/Compose/ComposeSheet.h"

#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Foundation/Text.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr int fewestDigits = 5;

/// The decimal digits of any script as 0 to 9.
QString digitsOf(const QString& text)
{
    QString digits;
    for (const QChar character : text) {
        if (character.category() == QChar::Number_DecimalDigit)
            digits.append(QChar(u'0' + character.digitValue()));
    }
    return digits;
}

/// The number in the provider's format, so that answers arrive in the same conversation.
QString internationalNumber(const QString& text)
{
    const QString digits = digitsOf(text);
    if (text.startsWith(u'+'))
        return u'+' + digits;
    return digits.startsWith(u"00"_s) ? u'+' + digits.sliced(2) : digits;
}

}

bool recipientValid(Channel channel, const QString& recipient)
{
    const QString trimmed = recipient.trimmed();
    switch (channel) {
    case Channel::Email:
        return trimmed.contains(u'@') && trimmed.contains(u'.');
    case Channel::WhatsApp:
    case Channel::Sms:
    case Channel::IMessage:
        return digitsOf(trimmed).size() >= fewestDigits;
    case Channel::LinkedIn:
    case Channel::Telegram:
    case Channel::Discord:
    case Channel::Slack:
    case Channel::Instagram:
    case Channel::Messenger:
        break;
    }
    return !trimmed.isEmpty();
}

QString recipientLabel(Channel channel)
{
    switch (channel) {
    case Channel::Email:
        return u"Email address"_s;
    case Channel::LinkedIn:
    case Channel::Instagram:
    case Channel::Messenger:
        return channelLabel(channelRaw(channel)) + u" profile"_s;
    default:
        return u"Recipient"_s;
    }
}

QString recipientExample(Channel channel)
{
    switch (channel) {
    case Channel::Email:
        return u"name@example.com"_s;
    case Channel::WhatsApp:
    case Channel::Sms:
    case Channel::IMessage:
        return u"+34 600 000 000"_s;
    default:
        return {};
    }
}

QString recipientAddress(Channel channel, const QString& recipient)
{
    if (channel == Channel::WhatsApp)
        return digitsOf(recipient) + u"@s.whatsapp.net"_s;
    if (channel == Channel::Sms)
        return internationalNumber(recipient.trimmed());
    // Mail addresses are case-insensitive in practice, and conversations use the lower-case address.
    return channel == Channel::Email ? recipient.trimmed().toLower() : recipient.trimmed();
}

ComposeSheet::ComposeSheet(
    AccountStore& accounts, EngineManager& engine, Desktop& desktop, Submit onSubmit, QObject* parent)
    : QObject(parent)
    , m_accounts(accounts)
    , m_engine(engine)
    , m_onSubmit(std::move(onSubmit))
    , m_attachments(engine.outbox(), desktop)
{
    connect(&accounts, &AccountStore::accountsChanged, this, &ComposeSheet::readFeatures);
    connect(&engine, &EngineManager::featuresChanged, this, &ComposeSheet::readFeatures);
    connect(&m_attachments, &Attachments::changed, this, &ComposeSheet::changed);
    connect(&m_attachments, &Attachments::refused, this, &ComposeSheet::refuse);
}

QString ComposeSheet::emptyText() const
{
    return m_accounts.accounts().isEmpty() ? u"Connect an account in Settings first."_s : QString();
}

QList<AccountChoice> ComposeSheet::accounts() const
{
    QList<AccountChoice> choices;
    for (const Account& each : m_accounts.accounts()) {
        const QString channel = channelRaw(each.channel());
        const QString word = channelLabel(channel);
        choices.append({ each.id.toString(), each.name == word ? word : u"%1 · %2"_s.arg(each.name, word), channel });
    }
    return choices;
}

std::optional<Account> ComposeSheet::account() const
{
    if (m_accountId) {
        if (auto picked = m_accounts.find(*m_accountId))
            return picked;
    }
    return m_accounts.accounts().isEmpty() ? std::nullopt : std::optional(m_accounts.accounts().first());
}

QString ComposeSheet::accountId() const
{
    const auto picked = account();
    return picked ? picked->id.toString() : QString();
}

void ComposeSheet::setAccountId(const QString& id)
{
    const QUuid wanted(id);
    if (!m_accounts.find(wanted))
        return;
    m_accountId = wanted;
    readFeatures();
}

void ComposeSheet::readFeatures()
{
    const auto picked = account();
    m_features = picked ? fetchFeatures(m_engine.db(), picked->slug) : ChannelFeatures();
    m_attachments.setChannel(picked ? channelLabel(channelRaw(picked->channel())) : QString(), m_features);
    Q_EMIT changed();
}

void ComposeSheet::refuse(const QString& why)
{
    m_errorText = why;
    Q_EMIT changed();
}

bool ComposeSheet::valid() const
{
    const bool says = !m_message.trimmed().isEmpty() || !m_attachments.files().isEmpty();
    return hasValidRecipient() && says && m_attachments.isReady();
}

void ComposeSheet::setSubject(const QString& subject)
{
    if (m_subject == subject)
        return;
    m_subject = subject;
    Q_EMIT changed();
}

QString ComposeSheet::label() const
{
    const auto picked = account();
    return corvane::recipientLabel(picked ? picked->channel() : Channel::WhatsApp);
}

QString ComposeSheet::example() const
{
    const auto picked = account();
    return picked ? corvane::recipientExample(picked->channel()) : QString();
}

void ComposeSheet::setRecipient(const QString& recipient)
{
    if (m_recipient == recipient)
        return;
    m_recipient = recipient;
    Q_EMIT changed();
}

bool ComposeSheet::hasValidRecipient() const
{
    const auto picked = account();
    return picked && corvane::recipientValid(picked->channel(), m_recipient);
}

void ComposeSheet::setMessage(const QString& message)
{
    if (m_message == message)
        return;
    m_message = message;
    Q_EMIT changed();
}

void ComposeSheet::open()
{
    m_shown = true;
    m_errorText.clear();
    readFeatures();
}

void ComposeSheet::close()
{
    m_shown = false;
    Q_EMIT changed();
}

void ComposeSheet::submit()
{
    const auto picked = account();
    if (!valid() || !picked)
        return;
    const QString subject = m_features.subject ? singleLine(m_subject) : QString();
    if (m_onSubmit(*picked, m_recipient, { m_message, subject, m_attachments.files() })) {
        m_engine.outbox().drop(m_attachments.files()); // the draft has copies
        m_attachments.show({}, {});
        m_recipient.clear();
        m_subject.clear();
        m_message.clear();
        m_errorText.clear();
        m_shown = false;
    } else {
        m_errorText = u"Couldn't queue the draft for this conversation."_s;
    }
    Q_EMIT changed();
}

}
