#include "Inbox/Compose/ReplyRouting.h"

#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"

namespace corvane {

namespace {

QString keyOf(const ContactRow& contact)
{
    return u"nimb.replyPlatform."_s + contact.id;
}

/// The remembered channel while the contact still has it, else the contact's first.
QString preferredReplyPlatform(const UserDefaults& defaults, const ContactRow& contact)
{
    const auto remembered = defaults.text(keyOf(contact));
    if (remembered && contact.platforms.contains(*remembered))
        return *remembered;
    return contact.platforms.value(0, u"WHATSAPP"_s);
}

void rememberReplyPlatform(UserDefaults& defaults, const QString& platform, const ContactRow& contact)
{
    if (contact.platforms.contains(platform))
        defaults.setText(keyOf(contact), platform);
}

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

ReplyRouting::ReplyRouting(EngineManager& engine, AccountStore& accounts, UserDefaults& defaults, QObject* parent)
    : QObject(parent)
    , m_engine(engine)
    , m_accounts(accounts)
    , m_defaults(defaults)
{
    connect(&m_engine, &EngineManager::featuresChanged, this, &ReplyRouting::readFeatures);
}

void ReplyRouting::open(const ContactRow& contact)
{
    if (contact.id != m_contact.id || !contact.platforms.contains(m_replyPlatform))
        m_replyPlatform = contact.id.isEmpty() ? QString() : preferredReplyPlatform(m_defaults, contact);
    m_contact = contact;
    Q_EMIT platformsChanged();
    readFeatures();
}

void ReplyRouting::readFeatures()
{
    const auto target
        = m_contact.id.isEmpty() ? std::nullopt : replyTarget(m_engine.db(), m_contact.id, m_replyPlatform);
    m_features = target ? fetchFeatures(m_engine.db(), target->account) : ChannelFeatures();
    Q_EMIT changed();
}

QList<Choice> ReplyRouting::platforms() const
{
    QList<Choice> choices;
    for (const QString& platform : m_contact.platforms)
        choices.append({ platform, channelLabel(platform) });
    return choices;
}

void ReplyRouting::setReplyPlatform(const QString& platform)
{
    if (platform == m_replyPlatform || !m_contact.platforms.contains(platform))
        return;
    m_replyPlatform = platform;
    readFeatures();
}

QString ReplyRouting::label() const
{
    return channelLabel(m_replyPlatform);
}

Result<void> ReplyRouting::send(const QString& platform, const Say& say)
{
    const auto target = replyTarget(m_engine.db(), m_contact.id, platform);
    if (!target)
        return failure(u"No %1 conversation for this contact"_s.arg(channelLabel(platform)));
    const auto account = m_accounts.findBySlug(target->account);
    if (const auto reason = account ? obstacle(*account, m_engine.runtime(account->id).status) : std::nullopt)
        return failure(*reason);
    if (!account || !say(*account, target->chatId))
        return failure(u"Account %1 is not connected"_s.arg(target->account));
    rememberReplyPlatform(m_defaults, platform, m_contact);
    return {};
}

}
