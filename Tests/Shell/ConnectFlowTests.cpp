#include "Shell/ConnectFlow.h"

#include "Support/Print.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

namespace corvane {

namespace {

const ConnectFlow& flowOf(Channel channel)
{
    for (const ConnectFlow& flow : connectFlows()) {
        if (flow.channel == channel)
            return flow;
    }
    ADD_FAILURE() << "a channel without a flow";
    return connectFlows().first();
}

QJsonObject secretOf(Channel channel, const ConnectValues& values)
{
    const auto request = connectRequest(channel, values);
    return QJsonDocument::fromJson(request ? request->secret.value_or(QString()).toUtf8() : QByteArray()).object();
}

}

TEST(ConnectFlows, thereIsOneForEachOfTheTenChannels)
{
    EXPECT_EQ(connectFlows().size(), 10);
    QStringList buttons;
    for (const ConnectFlow& flow : connectFlows()) {
        EXPECT_FALSE(flow.title.isEmpty());
        EXPECT_FALSE(flow.buttonLabel.isEmpty());
        if (flow.fields.isEmpty())
            buttons.append(flow.buttonLabel);
    }
    EXPECT_EQ(buttons,
        QStringList({ "Connect LinkedIn account", "Connect Instagram account", "Connect Messenger account",
            "Add my phone (iMessage)" }));
}

TEST(ConnectFlows, theSheetsSpeakTheirWords)
{
    EXPECT_EQ(flowOf(Channel::Telegram).title, "Connect Telegram bot");
    EXPECT_EQ(flowOf(Channel::Telegram).hint,
        "Create a bot with **@BotFather** in Telegram and paste its token. (This connects a bot inbox — people who "
        "message your bot. Your personal chats need a separate login, coming later.)");
    EXPECT_EQ(flowOf(Channel::Telegram).fields[0].placeholder, "123456:ABC-DEF…");
    EXPECT_EQ(flowOf(Channel::Discord).title, "Connect Discord bot");
    EXPECT_TRUE(flowOf(Channel::Discord).hint.contains("**Message Content**"));
    EXPECT_EQ(flowOf(Channel::Email).hint,
        "Works with Gmail, Outlook, iCloud, Yahoo, or any IMAP provider. Use an **app password** (not your login "
        "password) — Gmail/Outlook/iCloud require one.");
    EXPECT_TRUE(flowOf(Channel::Slack).hint.contains("`chat:write` + `channels:history`/`im:history`"));
    EXPECT_EQ(flowOf(Channel::Sms).title, "Connect SMS (Twilio)");
    EXPECT_EQ(flowOf(Channel::Sms).fields.last().label, "Twilio number (From)");
    EXPECT_EQ(flowOf(Channel::IMessage).hint,
        "Needs Full Disk Access (to read texts) + Automation → Messages (to send), granted in System Settings → "
        "Privacy. Uses your own number — no account, no Twilio.");
}

TEST(ConnectFlows, whatIsSecretIsMasked)
{
    for (const ConnectFlow& flow : connectFlows()) {
        for (const ConnectField& field : flow.fields) {
            const bool secret = field.id.contains("oken", Qt::CaseInsensitive) || field.id == "password";
            EXPECT_EQ(field.masked, secret) << qPrintable(flow.title + u' ' + field.id);
        }
    }
}

TEST(ConnectFlows, aSheetWhoseRuleDoesNotHoldConnectsNothing)
{
    const QList<std::pair<Channel, ConnectValues>> refused {
        { Channel::Email, { { "email", "ana.example" }, { "password", "x" } } },
        { Channel::Email, { { "email", "ana@b" }, { "password", "  " } } },
        { Channel::Telegram, { { "token", " \t" } } },
        { Channel::Discord, {} },
        { Channel::Slack, { { "appToken", "xapp-1" } } },
        { Channel::Slack, { { "appToken", "xoxb-1" }, { "botToken", "xapp-1" } } },
        { Channel::Sms, { { "sid", "AC1" }, { "authToken", "a" }, { "from", " " } } },
        { Channel::Sms, { { "sid", "" }, { "authToken", "a" }, { "from", "+1" } } },
    };
    for (const auto& [channel, values] : refused)
        EXPECT_FALSE(connectRequest(channel, values)) << qPrintable(flowOf(channel).title);
}

TEST(ConnectFlows, aFilledSheetNamesTheAccountAndItsSecret)
{
    const auto email = connectRequest(Channel::Email, { { "email", " ana@b.example " }, { "password", " ab cd " } });
    ASSERT_TRUE(email);
    EXPECT_EQ(email->name, "ana@b.example");
    EXPECT_EQ(email->email, "ana@b.example");
    EXPECT_EQ(email->secret, "ab cd");

    const auto discord = connectRequest(Channel::Discord, { { "token", " t0k " } });
    ASSERT_TRUE(discord);
    EXPECT_EQ(discord->name, "Discord");
    EXPECT_EQ(discord->secret, "t0k");
    EXPECT_EQ(connectRequest(Channel::Telegram, { { "token", "t" } })->name, "Telegram");

    EXPECT_EQ(secretOf(Channel::Slack, { { "appToken", " xapp-1" }, { "botToken", "xoxb-2 " } }),
        QJsonObject({ { "app", "xapp-1" }, { "bot", "xoxb-2" } }));
    const ConnectValues twilio { { "sid", "AC\"1" }, { "authToken", "a" }, { "from", " +15550100 " } };
    EXPECT_EQ(
        secretOf(Channel::Sms, twilio), QJsonObject({ { "sid", "AC\"1" }, { "auth", "a" }, { "from", "+15550100" } }));
    EXPECT_EQ(connectRequest(Channel::Sms, twilio)->name, "SMS +15550100");

    EXPECT_EQ(connectRequest(Channel::WhatsApp, { { "name", " Sales " } })->name, "Sales");
    EXPECT_EQ(connectRequest(Channel::WhatsApp, {})->name, "") << "the account store finds a name of its own";
    for (const Channel channel : { Channel::LinkedIn, Channel::Instagram, Channel::Messenger, Channel::IMessage })
        EXPECT_FALSE(connectRequest(channel, {})->secret);
}

}
