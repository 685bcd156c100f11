#include "AI/LumoDraftPrompt.h"
#include "Foundation/Literals.h"

#include "Foundation/Json.h"
#include "Support/Places.h"
#include "Support/Print.h"

#include <QFile>
#include <QJsonArray>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

QByteArray golden(const char* name)
{
    QFile file(QStringLiteral(CORVANE_SOURCE "/Tests/AI/golden/") + QString(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    return file.readAll();
}

QByteArray printed(const LumoDraftPrompt& prompt)
{
    return u"%1\n=== prompt ===\n%2\n=== fingerprint ===\n%3\n"_s
        .arg(prompt.instructions, prompt.prompt, prompt.promptFingerprint)
        .toUtf8();
}

struct Input {
    Input()
    {
        all = jsonObject(golden("context.json")).value_or(QJsonObject());
        const QJsonObject person = all["context"].toObject();
        context.contactId = person["contactId"].toString();
        context.contactName = person["contactName"].toString();
        for (const QJsonValue& each : person["platforms"].toArray())
            context.platforms.append(each.toString());
        for (const QJsonValue& each : person["identities"].toArray()) {
            const QJsonObject identity = each.toObject();
            context.identities.append({ identity["channel"].toString(), identity["handle"].toString(),
                textValue(identity, "email"_L1), textValue(identity, "phone"_L1) });
        }
        for (const QJsonValue& note : person["recentNotes"].toArray())
            context.recentNotes.append({ note["id"].toString(), note["body"].toString(), note["ts"].toInteger() });
        for (const QJsonValue& each : all["messages"].toArray()) {
            UnifiedMsgRow row;
            row.id = each["id"].toString();
            row.direction = each["direction"].toString();
            row.platform = each["platform"].toString();
            row.body = each["body"].toString();
            row.ts = each["ts"].toInteger();
            messages.append(row);
        }
    }
    QString text(const char* key) const { return all[QLatin1StringView(key)].toString(); }

    QJsonObject all;
    LumoDraftCRMContext context;
    QList<UnifiedMsgRow> messages;
};

}

TEST(LumoDraftPrompt, isTheSameToTheByte)
{
    const Input input;
    const LumoDraftPrompt reply = makeDraftReplyPrompt(input.context, input.messages, input.text("style"));
    EXPECT_EQ(printed(reply), golden("reply.txt"));
    const LumoDraftPrompt translation = makeRewritePrompt(input.text("text"), LumoDraftRewriteAction::Translate,
        input.text("targetLanguage"), input.context, input.messages, input.text("style"));
    EXPECT_EQ(printed(translation), golden("translate.txt"));
    ASSERT_EQ(reply.citations.size(), 80);
    EXPECT_EQ(reply.citations.last().label, "M80");
    EXPECT_EQ(reply.citations.last().id, "wa:msg:85");
    EXPECT_EQ(translation.citations, reply.citations);
}

TEST(LumoDraftPrompt, saysSoWhereNothingIsKnown)
{
    const LumoDraftCRMContext nobody { "ct:1", "Ana", {}, {}, {} };
    const LumoDraftPrompt reply = makeDraftReplyPrompt(nobody, {}, QString(180, u's'));
    EXPECT_TRUE(reply.prompt.contains("Requested style/tone: " + QString(180, u's')
        + "\n\nCRM person:\nName: Ana\n"
          "Contact id: ct:1\nPlatforms: unknown\n\nRecent local notes:\nNo recent local notes.\n\n"
          "Local thread:\nNo local text messages available.\n\nDraft rules:"));
    EXPECT_EQ(reply.citations, QList<LocalAIMessageCitation>());
    EXPECT_EQ(reply.promptFingerprint.size(), 16);

    const LumoDraftPrompt rewrite
        = makeRewritePrompt("hello", LumoDraftRewriteAction::Shorten, {}, nobody, {}, QString());
    EXPECT_TRUE(rewrite.prompt.startsWith("Task: Shorten the draft while keeping every concrete fact, quote, date, "
                                          "name, number, and commitment.\nRequested style/tone: \nContact: Ana\n"
                                          "Channels: \n\nRecent local context, for tone only:\nNo local text"));
    EXPECT_TRUE(rewrite.prompt.contains("must remain exact:\nNone\n\nJSON shape:"));
    EXPECT_TRUE(rewrite.prompt.contains("\"language\": \"detected or requested language\""));
    const std::pair<LumoDraftRewriteAction, QString> labels[] {
        { LumoDraftRewriteAction::Shorten, "Shorten" },
        { LumoDraftRewriteAction::Warmer, "Make warmer" },
        { LumoDraftRewriteAction::Grammar, "Fix grammar" },
        { LumoDraftRewriteAction::Translate, "Translate" },
    };
    for (const auto& [action, label] : labels)
        EXPECT_EQ(operationLabel(action), label);
    EXPECT_TRUE(instruction(LumoDraftRewriteAction::Warmer, {}).startsWith("Make the draft warmer "));
    EXPECT_TRUE(instruction(LumoDraftRewriteAction::Grammar, {}).startsWith("Fix grammar and clarity only."));
    EXPECT_EQ(instruction(LumoDraftRewriteAction::Translate, {}),
        "Translate the draft to English while preserving every quoted segment exactly as written.");
}
