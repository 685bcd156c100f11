#include "Settings/ConnectFlow.h"

#include "Support/Print.h"

#include <gtest/gtest.h>

namespace corvane {

TEST(ConnectFlows, thereIsOneForEachOfTheTenChannelsAndWhatIsSecretIsMasked)
{
    EXPECT_EQ(connectFlows().size(), 10);
    QStringList buttons;
    for (const ConnectFlow& flow : connectFlows()) {
        EXPECT_FALSE(flow.title.isEmpty() || flow.buttonLabel.isEmpty());
        if (flow.fields.isEmpty() && flow.channel != Channel::Email)
            buttons.append(flow.buttonLabel);
        for (const FieldSpec& field : flow.fields) {
            const bool secret = field.id.contains("oken", Qt::CaseInsensitive);
            EXPECT_EQ(field.masked, secret) << qPrintable(flow.title + u' ' + field.id);
        }
    }
    EXPECT_EQ(buttons,
        QStringList({ "Connect LinkedIn account", "Connect Instagram account", "Connect Messenger account",
            "Add my phone (iMessage)" }));
}

TEST(ConnectFlows, aSheetWhoseRuleDoesNotHoldConnectsNothing)
{
    const QList<std::pair<Channel, ConnectValues>> refused {
        { Channel::Telegram, { { "token", " \t" } } },
        { Channel::Discord, {} },
        { Channel::Email, {} },
        { Channel::Slack, { { "appToken", "xapp-1" } } },
        { Channel::Slack, { { "appToken", "xoxb-1" }, { "botToken", "xapp-1" } } },
        { Channel::Sms, { { "sid", "AC1" }, { "authToken", "a" }, { "from", " " } } },
        { Channel::Sms, { { "sid", "" }, { "authToken", "a" }, { "from", "+1" } } },
        { Channel::Sms, { { "sid", "AC1" }, { "authToken", "" }, { "from", "+1" } } },
    };
    for (const auto& [channel, values] : refused)
        EXPECT_FALSE(connectRequest(channel, values)) << qPrintable(channelRaw(channel));
}

TEST(ConnectFlows, aKeptSecretFillsTheFieldsOfItsSheetAgain)
{
    const QList<std::pair<Channel, ConnectValues>> kept {
        { Channel::Telegram, { { "token", "1:a" } } },
        { Channel::Discord, { { "token", "d" } } },
        { Channel::Slack, { { "appToken", "xapp-1" }, { "botToken", "xoxb-2" } } },
        { Channel::Sms, { { "sid", "AC1" }, { "authToken", "a" }, { "from", "+1" } } },
    };
    for (const auto& [channel, values] : kept) {
        const auto request = connectRequest(channel, values);
        ASSERT_TRUE(request && request->secret);
        EXPECT_EQ(valuesOf(channel, *request->secret), values) << qPrintable(channelRaw(channel));
    }
    EXPECT_EQ(
        valuesOf(Channel::Sms, "no object"), (ConnectValues { { "sid", "" }, { "authToken", "" }, { "from", "" } }));
    EXPECT_TRUE(valuesOf(Channel::LinkedIn, "x").isEmpty());
    EXPECT_EQ(connectFlows().first().label(), "WhatsApp");
    EXPECT_EQ(
        connectFlows().first().hint, "Give this number a name, then scan the QR code with the phone that holds it.");
}

}
