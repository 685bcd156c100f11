#include "Settings/ConnectFlow.h"

#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Foundation/MachineWords.h"

namespace corvane {

namespace {

const QString nameField = u"name"_s;
const QString tokenField = u"token"_s;
const QString appField = u"appToken"_s;
const QString botField = u"botToken"_s;
const QString sidField = u"sid"_s;
const QString authField = u"authToken"_s;
const QString fromField = u"from"_s;

ConnectFlow sheet(Channel channel, const QString& title, const QString& hint, const QList<FieldSpec>& fields)
{
    return { channel, title, hint, u"Connect"_s, fields };
}

ConnectFlow button(Channel channel, const QString& label, const QString& hint = {})
{
    return { channel, label, hint, label, {} };
}

FieldSpec masked(const QString& id, const QString& label, const QString& placeholder)
{
    return { id, label, placeholder, true };
}

QList<ConnectFlow> makeFlows()
{
    return {
        sheet(Channel::WhatsApp, u"Connect WhatsApp"_s,
            u"Give this number a name, then scan the QR code with the phone that holds it."_s,
            { { nameField, u"Account name"_s, u"Sales"_s } }),
        button(Channel::LinkedIn, u"Connect LinkedIn account"_s),
        sheet(Channel::Email, u"Connect email"_s,
            u"Works with Gmail, Outlook, iCloud, Yahoo, or any IMAP provider. Use an **app password** "
            "(not your login password) — Gmail/Outlook/iCloud require one. Microsoft mailboxes take "
            "only tokens: name a command that prints one in the server settings."_s,
            {}),
        sheet(Channel::Telegram, u"Connect Telegram bot"_s,
            u"Create a bot with **@BotFather** in Telegram and paste its token. (This connects a bot "
            "inbox — people who message your bot. Your personal chats need a separate login, coming "
            "later.)"_s,
            { masked(tokenField, u"Bot token"_s, u"123456:ABC-DEF…"_s) }),
        sheet(Channel::Discord, u"Connect Discord bot"_s,
            u"Create an application and a Bot in the Discord developer portal, enable the **Message "
            "Content** intent, paste the bot token here, and invite the bot to your server."_s,
            { masked(tokenField, u"Bot token"_s, u"Bot token"_s) }),
        sheet(Channel::Slack, u"Connect Slack"_s,
            u"Create an app in the Slack API console, enable **Socket Mode**, add an **App-Level "
            "token** (`connections:write`) and a **Bot token** with `chat:write` + "
            "`channels:history`/`im:history`, then paste both."_s,
            { masked(appField, u"App-Level token"_s, u"xapp-…"_s), masked(botField, u"Bot token"_s, u"xoxb-…"_s) }),
        button(Channel::Instagram, u"Connect Instagram account"_s),
        button(Channel::Messenger, u"Connect Messenger account"_s),
        sheet(Channel::Sms, u"Connect SMS (Twilio)"_s,
            u"From your **Twilio console**: the **Account SID** (`AC…`), the **Auth Token**, and a "
            "**Twilio phone number** (`+1…`) you own. Inbound texts to that number appear here; "
            "replies send from it."_s,
            { { sidField, u"Account SID"_s, u"AC…"_s }, masked(authField, u"Auth Token"_s, u"Auth Token"_s),
                { fromField, u"Twilio number (From)"_s, u"+1…"_s } }),
        button(Channel::IMessage, u"Add my phone (iMessage)"_s,
            u"Uses your own number — no account, no Twilio. Needs an engine that reaches your phone's "
            "messages; %1 has none of its own."_s.arg(machineWords::thisMachine)),
    };
}

/// The tokens' prefixes tell them apart, so that swapped fields are noticed.
bool slackTokensAreValid(const QString& app, const QString& bot)
{
    return app.startsWith("xapp-"_L1) && bot.startsWith("xoxb-"_L1);
}

QString secretMap(const QJsonObject& map)
{
    return QString::fromUtf8(compactJson(map));
}

ConnectRequest withSecret(const QString& name, const QString& secret)
{
    return { name, std::nullopt, secret };
}

ConnectRequest nameOnly(const QString& name)
{
    return { name, std::nullopt, std::nullopt };
}

}

QString ConnectFlow::channelWord() const
{
    return channelRaw(channel);
}

QString ConnectFlow::label() const
{
    return channelLabel(channelRaw(channel));
}

const QList<ConnectFlow>& connectFlows()
{
    static const QList<ConnectFlow> flows = makeFlows();
    return flows;
}

QString editTitle(const QString& accountName)
{
    return u"Edit %1"_s.arg(accountName);
}

QString saveLabel()
{
    return u"Save"_s;
}

std::optional<ConnectRequest> connectRequest(Channel channel, const ConnectValues& values)
{
    const auto value = [&](const QString& field) {
        return values.value(field).trimmed();
    };
    const auto token = [&](const QString& name) {
        const QString text = value(tokenField);
        return text.isEmpty() ? std::nullopt : std::optional(withSecret(name, text));
    };
    switch (channel) {
    case Channel::WhatsApp:
        return nameOnly(value(nameField));
    case Channel::LinkedIn:
        return nameOnly(u"LinkedIn"_s);
    case Channel::Instagram:
        return nameOnly(u"Instagram"_s);
    case Channel::Messenger:
        return nameOnly(u"Messenger"_s);
    case Channel::IMessage:
        return nameOnly(u"My phone"_s);
    case Channel::Telegram:
        return token(u"Telegram"_s);
    case Channel::Discord:
        return token(u"Discord"_s);
    case Channel::Email:
        return std::nullopt;
    case Channel::Slack:
        if (!slackTokensAreValid(value(appField), value(botField)))
            return std::nullopt;
        return withSecret(u"Slack"_s, secretMap({ { u"app"_s, value(appField) }, { u"bot"_s, value(botField) } }));
    case Channel::Sms:
        if (value(sidField).isEmpty() || value(authField).isEmpty() || value(fromField).isEmpty())
            return std::nullopt;
        return withSecret(u"SMS "_s + value(fromField),
            secretMap(
                { { u"sid"_s, value(sidField) }, { u"auth"_s, value(authField) }, { u"from"_s, value(fromField) } }));
    }
    Q_UNREACHABLE();
}

ConnectValues valuesOf(Channel channel, const QString& secret)
{
    const QJsonObject parts = jsonObject(secret.toUtf8()).value_or(QJsonObject());
    const auto part = [&](const char* key) {
        return parts.value(QLatin1StringView(key)).toString();
    };
    switch (channel) {
    case Channel::Telegram:
    case Channel::Discord:
        return { { tokenField, secret } };
    case Channel::Slack:
        return { { appField, part("app") }, { botField, part("bot") } };
    case Channel::Sms:
        return { { sidField, part("sid") }, { authField, part("auth") }, { fromField, part("from") } };
    default:
        return {};
    }
}

}
