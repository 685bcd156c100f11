#include "Engines/EngineSpec.h"
#include "Settings/AccountRow.h"

#include "Support/Print.h"

#include <gtest/gtest.h>

namespace corvane {

namespace {

const QList<WAStatus> allStatuses { WAStatus::Connected, WAStatus::NeedsQR, WAStatus::Starting, WAStatus::Connecting,
    WAStatus::LoggedOut, WAStatus::Error, WAStatus::Stopped };

Account accountOf(const QString& channel, bool paused = false)
{
    Account account;
    account.id = QUuid::createUuid();
    account.name = "Team";
    account.slug = "team";
    account.channelRaw = channel;
    account.paused = paused;
    return account;
}

RuntimeState stateOf(WAStatus status)
{
    RuntimeState state;
    state.status = status;
    state.userName = "Ana";
    state.lastLog = "socket closed";
    return state;
}

/// The texts of a channel in every state, with status and detail joined by " | ".
QStringList lines(const QString& channel, bool paused = false)
{
    QStringList result;
    for (const WAStatus status : allStatuses) {
        const AccountRow row = accountRow(accountOf(channel, paused), stateOf(status), {});
        result.append(row.kind + ": " + row.status + (row.detail.isEmpty() ? "" : " | " + row.detail));
    }
    return result;
}

QStringList actionLabels(const QString& channel, WAStatus status, bool paused = false)
{
    QStringList labels;
    const AccountRow row = accountRow(accountOf(channel, paused), stateOf(status), {});
    for (const AccountAction& action : row.actions)
        labels.append(action.label + (action.destructive ? "!" : QString()));
    return labels;
}

}

TEST(AccountRowWords, whatsApp)
{
    EXPECT_EQ(lines("WHATSAPP"),
        QStringList({ "good: Connected | Ana", "warn: Scan QR to link", "busy: Starting", "busy: Connecting…",
            "warn: Logged out — unlink & relink", "bad: Error | socket closed", "idle: Stopped" }));
    EXPECT_EQ(lines("WHATSAPP", true).last(), "idle: Paused · engine stopped (frees RAM)");
    EXPECT_EQ(lines("no such channel"), lines("WHATSAPP"));
}

TEST(AccountRowWords, channelsThatAreDrivenThroughABrowser)
{
    for (const QString& label : { "LinkedIn", "Instagram", "Messenger" }) {
        EXPECT_EQ(lines(label.toUpper()),
            QStringList(
                { "good: Connected · Ana", "busy: Connecting…", "busy: Opening Chrome…", "busy: Opening Chrome…",
                    "warn: Log in to " + label + " in the Chrome window", "bad: Error — see logs", "idle: Stopped" }));
        EXPECT_EQ(lines(label.toUpper(), true).last(), "idle: Paused · engine stopped (frees RAM)");
    }
    RuntimeState nameless;
    nameless.status = WAStatus::Connected;
    EXPECT_EQ(accountRow(accountOf("LINKEDIN"), nameless, {}).status, "Connected");
}

TEST(AccountRowWords, channelsWithATokenOrAPassword)
{
    for (const char* channel : { "TELEGRAM", "DISCORD", "SLACK" }) {
        EXPECT_EQ(lines(channel),
            QStringList({ "good: Connected", "warn: Scan QR to link", "busy: Starting", "busy: Connecting…",
                "bad: Invalid token", "bad: Error", "idle: Stopped" }));
        EXPECT_EQ(lines(channel, true).last(), "idle: Stopped");
    }
    EXPECT_EQ(lines("EMAIL").mid(4, 2),
        QStringList(
            { "bad: Sign-in failed — check the app password", "bad: Sign-in failed — check the app password" }));
}

TEST(AccountRowWords, theRowReadsAsOneSentence)
{
    const AccountRow row = accountRow(accountOf("WHATSAPP"), stateOf(WAStatus::Connected), "14:20");
    EXPECT_EQ(row.sentence, "Team, WhatsApp, Connected, Ana, Last message 14:20, socket closed");
    EXPECT_EQ(accountRow(accountOf("SMS"), {}, {}).sentence, "Team, SMS, Stopped, No messages yet");
}

TEST(AccountRowActions, dependOnTheStateAndTheChannel)
{
    const QString whatsApp = "WHATSAPP";
    EXPECT_EQ(actionLabels(whatsApp, WAStatus::Stopped), QStringList({ "Start", "Re-pair (reset QR)!", "Remove!" }));
    EXPECT_EQ(actionLabels(whatsApp, WAStatus::Stopped, true)[0], "Resume");
    EXPECT_EQ(actionLabels(whatsApp, WAStatus::Connected),
        QStringList({ "Pause (free RAM)", "Re-pair (reset QR)!", "Remove!" }));
    EXPECT_EQ(actionLabels(whatsApp, WAStatus::NeedsQR),
        QStringList({ "Scan QR to link", "Pause (free RAM)", "Re-pair (reset QR)", "Remove!" }));
    EXPECT_EQ(actionLabels(whatsApp, WAStatus::LoggedOut), QStringList({ "Start", "Re-pair (reset QR)", "Remove!" }))
        << "a link that is gone is nothing to lose";
    EXPECT_EQ(actionLabels("LINKEDIN", WAStatus::Connected),
        QStringList({ "Sync now", "Pause (free RAM)", "Re-login (reset session)!", "Start with Corvane", "Remove!" }));
    EXPECT_EQ(actionLabels("INSTAGRAM", WAStatus::Connected),
        QStringList({ "Pause (free RAM)", "Re-login (reset session)!", "Start with Corvane", "Remove!" }));
    EXPECT_EQ(actionLabels("TELEGRAM", WAStatus::Error),
        QStringList({ "Start", "Edit account", "Start with Corvane", "Remove!" }));
    EXPECT_EQ(actionLabels("EMAIL", WAStatus::LoggedOut),
        QStringList({ "Edit account", "Start", "Start with Corvane", "Remove!" }));
    Account unpaused = accountOf(whatsApp);
    unpaused.paused.reset();
    const AccountRow row = accountRow(unpaused, stateOf(WAStatus::Stopped), {});
    EXPECT_EQ(row.first().label, "Start");
    ASSERT_EQ(row.others().size(), 2);
    EXPECT_EQ(row.others().first().confirmation, "Unlink Team and pair it again?");
    EXPECT_FALSE(row.others().first().checkable);
    Account bot = accountOf("TELEGRAM");
    for (const bool starts : { false, true }) {
        bot.startAtBoot = starts;
        const AccountAction boot = accountRow(bot, stateOf(WAStatus::Connected), {}).actions.at(2);
        EXPECT_EQ(boot.label, "Start with Corvane");
        EXPECT_TRUE(boot.checkable);
        EXPECT_EQ(boot.checked, starts);
    }
    EXPECT_EQ(accountRow(bot, {}, {}).lastMessage, "No messages yet · Starts with Corvane");
}

TEST(AccountRowActions, secretsBelongToTheChannelsThatAskedForOne)
{
    QStringList keepers;
    for (int i = 0; i <= int(Channel::IMessage); ++i) {
        if (keepsSecret(Channel(i)))
            keepers.append(channelRaw(Channel(i)));
    }
    keepers.sort();
    EXPECT_EQ(keepers, QStringList({ "DISCORD", "EMAIL", "SLACK", "SMS", "TELEGRAM" }));
}

}
