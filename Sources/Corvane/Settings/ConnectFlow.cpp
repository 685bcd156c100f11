#include "Settings/ConnectFlow.h"

#include "Foundation/Json.h"
#include "Foundation/MachineWords.h"

namespace corvane {

namespace {

const QString nameField = QStringLiteral("name");
const QString tokenField = QStringLiteral("token");
const QString appField = QStringLiteral("appToken");
const QString botField = QStringLiteral("botToken");
const QString sidField = QStringLiteral("sid");
const QString authField = QStringLiteral("authToken");
const QString fromField = QStringLiteral("from");

ConnectFlow sheet(Channel channel, const QString& title, const QString& hint, const QList<ConnectField>& fields)
{
    return { channel, title, hint, QStringLiteral("Connect"), fields };
}

ConnectFlow button(Channel channel, const QString& label, const QString& hint = {})
{
    return { channel, label, hint, label, {} };
}

ConnectField masked(const QString& id, const QString& label, const QString& placeholder)
{
    return { id, label, placeholder, true };
}

QList<ConnectFlow> makeFlows()
{
    return {
        sheet(Channel::WhatsApp, QStringLiteral("Connect WhatsApp"),
            QStringLiteral("Give this number a name, then scan the QR code with the phone that holds it."),
            { { nameField, QStringLiteral("Account name"), QStringLiteral("Sales") } }),
        button(Channel::LinkedIn, QStringLiteral("Connect LinkedIn account")),
        sheet(Channel::Email, QStringLiteral("Connect email"),
            QStringLiteral("Works with Gmail, Outlook, iCloud, Yahoo, or any IMAP provider. Use an **app password** "
                           "(not your login password) — Gmail/Outlook/iCloud require one. Microsoft mailboxes take "
                           "only tokens: name a command that prints one in the server settings."),
            {}),
        sheet(Channel::Telegram, QStringLiteral("Connect Telegram bot"),
            QStringLiteral("Create a bot with **@BotFather** in Telegram and paste its token. (This connects a bot "
                           "inbox — people who message your bot. Your personal chats need a separate login, coming "
                           "later.)"),
            { masked(tokenField, QStringLiteral("Bot token"), QStringLiteral("123456:ABC-DEF…")) }),
        sheet(Channel::Discord, QStringLiteral("Connect Discord bot"),
            QStringLiteral("Create an application and a Bot in the Discord developer portal, enable the **Message "
                           "Content** intent, paste the bot token here, and invite the bot to your server."),
            { masked(tokenField, QStringLiteral("Bot token"), QStringLiteral("Bot token")) }),
        sheet(Channel::Slack, QStringLiteral("Connect Slack"),
            QStringLiteral("Create an app in the Slack API console, enable **Socket Mode**, add an **App-Level "
                           "token** (`connections:write`) and a **Bot token** with `chat:write` + "
                           "`channels:history`/`im:history`, then paste both."),
            { masked(appField, QStringLiteral("App-Level token"), QStringLiteral("xapp-…")),
                masked(botField, QStringLiteral("Bot token"), QStringLiteral("xoxb-…")) }),
        button(Channel::Instagram, QStringLiteral("Connect Instagram account")),
        button(Channel::Messenger, QStringLiteral("Connect Messenger account")),
        sheet(Channel::Sms, QStringLiteral("Connect SMS (Twilio)"),
            QStringLiteral("From your **Twilio console**: the **Account SID** (`AC…`), the **Auth Token**, and a "
                           "**Twilio phone number** (`+1…`) you own. Inbound texts to that number appear here; "
                           "replies send from it."),
            { { sidField, QStringLiteral("Account SID"), QStringLiteral("AC…") },
                masked(authField, QStringLiteral("Auth Token"), QStringLiteral("Auth Token")),
                { fromField, QStringLiteral("Twilio number (From)"), QStringLiteral("+1…") } }),
        button(Channel::IMessage, QStringLiteral("Add my phone (iMessage)"),
            QStringLiteral("Uses your own number — no account, no Twilio. Needs an engine that reaches your phone's "
                           "messages; %1 has none of its own.")
                .arg(machineWords::thisMachine)),
    };
}

/// The tokens' own prefixes tell them apart, so that neither lands in the other's field.
bool slackTokensAreValid(const QString& app, const QString& bot)
{
    return app.startsWith(QLatin1StringView("xapp-")) && bot.startsWith(QLatin1StringView("xoxb-"));
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
    return QStringLiteral("Edit %1").arg(accountName);
}

QString saveLabel()
{
    return QStringLiteral("Save");
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
        return nameOnly(QStringLiteral("LinkedIn"));
    case Channel::Instagram:
        return nameOnly(QStringLiteral("Instagram"));
    case Channel::Messenger:
        return nameOnly(QStringLiteral("Messenger"));
    case Channel::IMessage:
        return nameOnly(QStringLiteral("My phone"));
    case Channel::Telegram:
        return token(QStringLiteral("Telegram"));
    case Channel::Discord:
        return token(QStringLiteral("Discord"));
    case Channel::Email:
        return std::nullopt;
    case Channel::Slack:
        if (!slackTokensAreValid(value(appField), value(botField)))
            return std::nullopt;
        return withSecret(QStringLiteral("Slack"),
            secretMap({ { QStringLiteral("app"), value(appField) }, { QStringLiteral("bot"), value(botField) } }));
    case Channel::Sms:
        if (value(sidField).isEmpty() || value(authField).isEmpty() || value(fromField).isEmpty())
            return std::nullopt;
        return withSecret(QStringLiteral("SMS ") + value(fromField),
            secretMap({ { QStringLiteral("sid"), value(sidField) }, { QStringLiteral("auth"), value(authField) },
                { QStringLiteral("from"), value(fromField) } }));
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
