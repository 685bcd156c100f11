#include "Shell/AccountRow.h"

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
    account.name = QStringLiteral("Team");
    account.slug = QStringLiteral("team");
    account.channelRaw = channel;
    account.paused = paused;
    return account;
}

RuntimeState stateOf(WAStatus status)
{
    RuntimeState state;
    state.status = status;
    state.userName = QStringLiteral("Ana");
    state.lastLog = QStringLiteral("socket closed");
    return state;
}

/// The words of a channel in every state, the two parts of a line joined by " | ".
QStringList lines(const QString& channel, bool paused = false)
{
    QStringList result;
    for (const WAStatus status : allStatuses) {
        const AccountRow row = accountRow(accountOf(channel, paused), stateOf(status), {});
        result.append(row.detail.isEmpty() ? row.status : row.status + QStringLiteral(" | ") + row.detail);
    }
    return result;
}

QStringList actionLabels(const QString& channel, WAStatus status, bool paused = false)
{
    QStringList labels;
    for (const QVariant& each : accountRow(accountOf(channel, paused), stateOf(status), {}).actions) {
        const QVariantMap action = each.toMap();
        labels.append(action["label"].toString() + (action["destructive"].toBool() ? u"!"_qs : QString()));
    }
    return labels;
}

}

TEST(AccountRowWords, whatsApp)
{
    EXPECT_EQ(lines(QStringLiteral("WHATSAPP")),
        QStringList({ "Connected | Ana", "Scan QR to link", "Starting", "Connecting…", "Logged out — unlink & relink",
            "Error | socket closed", "Stopped" }));
    EXPECT_EQ(lines(QStringLiteral("WHATSAPP"), true).last(), "Paused · engine stopped (frees RAM)");
    EXPECT_EQ(lines(QStringLiteral("no such channel")), lines(QStringLiteral("WHATSAPP")));
}

TEST(AccountRowWords, channelsThatAreDrivenThroughABrowser)
{
    for (const QString& label : { u"LinkedIn"_qs, u"Instagram"_qs, u"Messenger"_qs }) {
        EXPECT_EQ(lines(label.toUpper()),
            QStringList({ "Connected · Ana", "Connecting…", "Opening Chrome…", "Opening Chrome…",
                "Log in to " + label + " in the Chrome window", "Error — see logs", "Stopped" }));
        EXPECT_EQ(lines(label.toUpper(), true).last(), "Paused · engine stopped (frees RAM)");
    }
    RuntimeState nameless;
    nameless.status = WAStatus::Connected;
    EXPECT_EQ(accountRow(accountOf(QStringLiteral("LINKEDIN")), nameless, {}).status, "Connected");
}

TEST(AccountRowWords, channelsWithATokenOrAPassword)
{
    for (const QString& channel : { u"TELEGRAM"_qs, u"DISCORD"_qs, u"SLACK"_qs }) {
        EXPECT_EQ(lines(channel),
            QStringList(
                { "Connected", "Scan QR to link", "Starting", "Connecting…", "Invalid token", "Error", "Stopped" }));
        EXPECT_EQ(lines(channel, true).last(), "Stopped");
    }
    EXPECT_EQ(lines(QStringLiteral("EMAIL"))[5], "Sign-in failed — check the app password");
}

TEST(AccountRowWords, theRowReadsAsOneSentence)
{
    const AccountRow row
        = accountRow(accountOf(QStringLiteral("WHATSAPP")), stateOf(WAStatus::Connected), QStringLiteral("14:20"));
    EXPECT_EQ(row.sentence, "Team, WhatsApp, Connected, Ana, Last message 14:20");
    EXPECT_EQ(accountRow(accountOf(QStringLiteral("SMS")), {}, {}).sentence, "Team, SMS, Stopped, No messages yet");
}

TEST(AccountRowWords, aColourNeverStandsAlone)
{
    const QStringList kinds { "good", "warn", "busy", "busy", "warn", "bad", "idle" };
    QStringList seen;
    for (const WAStatus status : allStatuses)
        seen.append(accountRow(accountOf(QStringLiteral("WHATSAPP")), stateOf(status), {}).kind);
    EXPECT_EQ(seen, kinds);
}

TEST(AccountRowActions, dependOnTheStateAndTheChannel)
{
    const QString whatsApp = QStringLiteral("WHATSAPP");
    EXPECT_EQ(actionLabels(whatsApp, WAStatus::Stopped), QStringList({ "Start", "Re-pair (reset QR)!", "Remove!" }));
    EXPECT_EQ(actionLabels(whatsApp, WAStatus::Stopped, true)[0], "Resume");
    EXPECT_EQ(actionLabels(whatsApp, WAStatus::Connected),
        QStringList({ "Pause (free RAM)", "Re-pair (reset QR)!", "Remove!" }));
    EXPECT_EQ(actionLabels(whatsApp, WAStatus::NeedsQR),
        QStringList({ "Scan QR to link", "Pause (free RAM)", "Re-pair (reset QR)", "Remove!" }));
    EXPECT_EQ(actionLabels(whatsApp, WAStatus::LoggedOut), QStringList({ "Start", "Re-pair (reset QR)", "Remove!" }))
        << "a link that is gone is nothing to lose";
    EXPECT_EQ(actionLabels(QStringLiteral("LINKEDIN"), WAStatus::Connected),
        QStringList({ "Sync now", "Pause (free RAM)", "Re-login (reset session)!", "Remove!" }));
    EXPECT_EQ(actionLabels(QStringLiteral("INSTAGRAM"), WAStatus::Connected),
        QStringList({ "Pause (free RAM)", "Re-login (reset session)!", "Remove!" }));
    EXPECT_EQ(actionLabels(QStringLiteral("TELEGRAM"), WAStatus::Error), QStringList({ "Start", "Remove!" }));
}

TEST(AccountRowActions, secretsBelongToTheChannelsThatAskedForOne)
{
    QStringList keepers;
    for (const QString& raw : { u"WHATSAPP"_qs, u"LINKEDIN"_qs, u"EMAIL"_qs, u"TELEGRAM"_qs, u"DISCORD"_qs, u"SLACK"_qs,
             u"INSTAGRAM"_qs, u"MESSENGER"_qs, u"SMS"_qs, u"IMESSAGE"_qs }) {
        if (keepsSecret(channelFromRaw(raw)))
            keepers.append(raw);
    }
    EXPECT_EQ(keepers, QStringList({ "EMAIL", "TELEGRAM", "DISCORD", "SLACK", "SMS" }));
}

}
