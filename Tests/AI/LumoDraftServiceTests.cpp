#include "AI/LumoDraftService.h"
#include "Foundation/Literals.h"

#include "AI/LumoGuidedDraftResult.h"
#include "Platform/Linux/Services.h"
#include "Support/Await.h"
#include "Support/FakeLanguageModel.h"
#include "Support/HostileTexts.h"
#include "Support/Outcome.h"
#include "Support/StoreTest.h"

#include <QFile>
#include <QJsonArray>

namespace corvane {

class LumoDraftServiceTest : public StoreTest {
protected:
    LumoDraftServiceTest() { open(); }

    static UnifiedMsgRow message(const QString& body)
    {
        UnifiedMsgRow row;
        row.id = u"wa:msg:1"_s;
        row.direction = u"IN"_s;
        row.platform = u"WHATSAPP"_s;
        row.body = body;
        row.ts = 1'772'357'400'000;
        return row;
    }
    static QJsonObject guided(const QString& body, bool sends = false)
    {
        return { { "body", body }, { "intent", "draft_reply" }, { "citations", QJsonArray() },
            { "warnings", QJsonArray { "no price known" } }, { "send_side_effect", sends } };
    }
    Result<LumoDraftResult> reply(const QList<UnifiedMsgRow>& messages)
    {
        return **outcome(m_service->draftReply(m_person, messages, "warm", {}));
    }
    Result<LumoDraftResult> rewrite(const QString& text, LumoDraftRewriteAction action, const QString& language = {})
    {
        return **outcome(m_service->rewrite(text, action, language, m_person, {}, "warm"));
    }
    QString rows()
    {
        return cell("SELECT (SELECT COUNT(*) FROM outbound_draft) + (SELECT COUNT(*) FROM ai_requests) + "
                    "(SELECT COUNT(*) FROM calendar_command) + (SELECT COUNT(*) FROM unified_message) + "
                    "(SELECT COUNT(*) FROM crm_mutation_queue) + (SELECT COUNT(*) FROM draft_metadata);");
    }

    FakeLumo m_lumo;
    std::unique_ptr<LumoDraftService> m_service = std::make_unique<LumoDraftService>(m_lumo.ai, m_clock);
    LumoDraftCRMContext m_person { "ct:1", "Ana", { "WHATSAPP" }, {}, {} };
};

TEST_F(LumoDraftServiceTest, aReplyIsAskedForUnderTheSchemaWithWhatIsRemembered)
{
    m_db->exec("INSERT INTO work_memory_entries VALUES('c','contact:ct:1','Pays late','3'),('o','owner',"
               "'Signs as \nTom','2'),('p','owner','Sells panels','1'),('x','contact:ct:2','Other','1');");
    m_service->setMemoryDB(*m_db);
    m_lumo.model.willAnswer(guided(" Hi Ana, 14 panels at 900 €? Petra will call. Tom "));
    const Result<LumoDraftResult> result = reply({ message("14 panels please") });
    ASSERT_TRUE(result) << qPrintable(result.error().message);
    EXPECT_EQ(result->draft, "Hi Ana, 14 panels at 900 €? Petra will call. Tom");
    EXPECT_EQ(result->intent + u'/' + result->operationLabel + u'/' + result->model.displayName,
        "draft_reply/Draft reply/Fake Model");
    EXPECT_EQ(result->generatedAt, m_clock.nowMs());
    EXPECT_EQ(result->responseMetadata,
        (AIDraftResponseMetadata { "draft_reply", "warm", "unknown", 1, { "M1" }, {},
            { "no price known", "Not in the local context: 900 €, Petra" }, false }));

    const LumoDraftPrompt prompt = makeDraftReplyPrompt(m_person, { message("14 panels please") }, "warm");
    const FakeLanguageModel::Question& asked = m_lumo.model.asked.last();
    EXPECT_EQ(asked.schema, guidedDraftSchema());
    EXPECT_EQ(asked.prompt, prompt.prompt + guidedDraftPromptAddition());
    EXPECT_EQ(asked.instructions,
        prompt.instructions
            + "\n\nKNOWN CONTEXT (curated memory — treat as true, never contradict):\n"
              "Owner:\n- Sells panels\n- Signs as  Tom\nThis contact:\n- Pays late");
    EXPECT_EQ(result->promptFingerprint, prompt.promptFingerprint);

    storeDraftMetadata(*m_db, "ct:1", "wa:main:1", *result);
    EXPECT_EQ(table("SELECT contact_id, conversation_id, intent, model, prompt_ref, result_ref, used_message_ids, "
                    "warnings, created_at, workspace_id FROM draft_metadata"),
        QStringList { "ct:1|wa:main:1|draft_reply|Fake Model|" + prompt.promptFingerprint + u'|' + result->id
            + "|[\"wa:msg:1\"]|[\"no price known\",\"Not in the local context: 900 €, Petra\"]|"
            + QString::number(m_clock.nowMs()) + "|local" });
    EXPECT_TRUE(cell("SELECT id FROM draft_metadata;").startsWith("dm:"));

    m_db->exec("DROP TABLE work_memory_entries;");
    m_lumo.model.willAnswer(guided("Hi"));
    EXPECT_TRUE(reply({ message("x") }));
    EXPECT_EQ(m_lumo.model.asked.last().instructions, prompt.instructions);
}

TEST_F(LumoDraftServiceTest, withoutATextNothingIsAsked)
{
    EXPECT_EQ(
        reply({ message(" \n"), message("") }).error().message, "There are no local text messages to draft from.");
    EXPECT_EQ(rewrite(" \n", LumoDraftRewriteAction::Shorten).error().message, "There is no composer text to rewrite.");
    EXPECT_EQ(m_lumo.model.asked.size(), 0);
}

TEST_F(LumoDraftServiceTest, aFailureIsTheResult)
{
    m_lumo.model.willFail("out of words");
    EXPECT_EQ(reply({ message("x") }).error().message, "out of words");
    m_lumo.model.willAnswer(guided("Done, I sent it.", true));
    EXPECT_EQ(reply({ message("x") }).error().message,
        "LumoAI tried to mark the draft as sent. Drafts cannot send themselves.");
    m_lumo.model.willAnswer(QJsonObject { { "body", 7 } });
    EXPECT_EQ(reply({ message("x") }).error().message, "LumoAI response was not a valid draft shape.");
    EXPECT_EQ(m_lumo.model.asked.size(), 3) << "the plain path is not tried";
    m_lumo.model.setUnavailable("no server");
    EXPECT_EQ(reply({ message("x") }).error().message,
        "There is no model on this computer — falling back requires the codex CLI.");
}

TEST_F(LumoDraftServiceTest, withoutAModelOfThePlatformTheCodexToolIsAskedInPlainText)
{
    m_lumo.model.setUnavailable("no server");
    m_home.write("codex",
        "#!/bin/sh\ncat >\"$0.asked\"\n"
        "printf 'Sure:\\n```\\n{\"draft\":\"Hi {Ana}\"}\\n```' >\"$8\"\n");
    QFile::setPermissions(m_home.path("codex"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    const std::unique_ptr<ToolRunner> tools = makeToolRunner();
    const CLIChatService codex(*tools, { m_home.path("codex") });
    LumoAI ai(m_lumo.onDevice, codex);
    LumoDraftService service(ai, m_clock);
    const auto result = outcome(service.draftReply(m_person, { message("hi") }, "warm", {}));
    ASSERT_TRUE(await([&] { return result->has_value(); }));
    ASSERT_TRUE((*result)->has_value()) << qPrintable((*result)->error().message);
    EXPECT_EQ((*result)->value().draft, "Sure:\n```\n{\"draft\":\"Hi {Ana}\"}\n```") << "repaired, JSON and all";
    EXPECT_EQ((*result)->value().model.displayName, "Codex CLI");
    const LumoDraftPrompt prompt = makeDraftReplyPrompt(m_person, { message("hi") }, "warm");
    EXPECT_EQ(m_home.read("codex.asked"), (prompt.instructions + "\n\n" + prompt.prompt).toUtf8());
}

TEST_F(LumoDraftServiceTest, aRewriteKeepsWhatWasQuoted)
{
    m_lumo.model.willAnswer(u"```\nHallo Ana, \"Aurora\" kostet 900 €.\n```"_s);
    const auto translated = rewrite(" Hi Ana, \"Aurora\" is 900 €. ", LumoDraftRewriteAction::Translate, "German");
    ASSERT_TRUE(translated);
    EXPECT_EQ(translated->draft, "Hallo Ana, \"Aurora\" kostet 900 €.");
    EXPECT_EQ(translated->intent + u'/' + translated->operationLabel, "rewrite_text/Translate");
    EXPECT_EQ(translated->responseMetadata.warnings.size(), 1) << "repaired, and nothing new in it";
    EXPECT_EQ(translated->addingWarnings({ "a", "b" }).responseMetadata.warnings.mid(1), (QStringList { "a", "b" }));
    EXPECT_FALSE(m_lumo.model.asked.last().schema);
    m_lumo.model.willAnswer(u"Hi Ana, it is 900 €."_s);
    EXPECT_EQ(rewrite("Hi Ana, \"Aurora\" is 900 €.", LumoDraftRewriteAction::Shorten).error().message,
        "The rewrite changed quoted client text: \"Aurora\".");
}

TEST_F(LumoDraftServiceTest, whoeverGoesAwayMeanwhileGetsNoDraft)
{
    const auto late = m_lumo.model.willAnswerLater();
    const CancelHandle cancel;
    const auto cancelledReply = outcome(m_service->draftReply(m_person, { message("x") }, {}, {}, cancel));
    cancel.cancel();
    EXPECT_EQ((*cancelledReply)->error().message, "Cancelled.");
    const auto later = m_lumo.model.willAnswerLater();
    const auto orphan = outcome(m_service->rewrite("x", LumoDraftRewriteAction::Warmer, {}, m_person, {}, {}));
    m_service.reset();
    later.arrive(FakeLanguageModel::text("y"));
    EXPECT_EQ((*orphan)->error().message, "Cancelled.");
}

/// Compares line by line: the hostile prompt may have any text where the harmless one has "¤"; the rest must be equal.
void expectSameFrame(const QString& hostile, const QString& harmless)
{
    const QStringList lines = hostile.split(u'\n');
    const QStringList frame = harmless.split(u'\n');
    ASSERT_EQ(lines.size(), frame.size()) << qPrintable(hostile.left(3000));
    for (qsizetype at = 0; at < frame.size(); ++at) {
        const QString before = frame.at(at).section(u'¤', 0, 0);
        const QString after = frame.at(at).section(u'¤', -1);
        ASSERT_TRUE(lines.at(at).startsWith(before) && lines.at(at).endsWith(after)
            && (frame.at(at).contains(u'¤') || lines.at(at) == before))
            << qPrintable(lines.at(at).left(200));
    }
}

TEST_F(LumoDraftServiceTest, hostileTextNeitherBreaksAPromptNorActs)
{
    m_service->setMemoryDB(*m_db);
    // All requests about a person whose every field is `text`.
    const auto askAll = [&](const QString& text, bool sends) {
        m_person = { "ct:1", text, { "WHATSAPP" }, { { "EMAIL", text, text, text } }, { { "n1", text, 0 } } };
        m_db->run("INSERT OR REPLACE INTO work_memory_entries VALUES('m','owner',?,'1'),('n','contact:ct:1',?,'1');",
            { text, text });
        const QList<UnifiedMsgRow> thread { message(text), message(text) };
        m_lumo.model.asked.clear();
        // The worst case: the model follows the injected instructions.
        m_lumo.model.willAnswer(guided(text, sends));
        for (int times = 0; times < 3; ++times)
            m_lumo.model.willAnswer(text);
        const auto drafted = reply(thread);
        EXPECT_EQ(drafted.has_value(), !sends);
        const auto rewritten
            = **outcome(m_service->rewrite("Hello", LumoDraftRewriteAction::Grammar, {}, m_person, thread, "warm"));
        EXPECT_TRUE(!rewritten || !rewritten->responseMetadata.sendSideEffect);
        EXPECT_TRUE(!rewritten || !rewritten->draft.trimmed().isEmpty());
        EXPECT_TRUE(**outcome(m_lumo.summaries.summarize(text, thread)));
        EXPECT_TRUE(**outcome(m_lumo.summaries.ask(text, m_person.recentNotes, thread, "What now?")));
        return drafted && rewritten;
    };
    EXPECT_TRUE(askAll("¤", false));
    const QList<FakeLanguageModel::Question> harmless = m_lumo.model.asked;
    int refused = 0;
    for (const QString& text : hostileTexts(500, 20'260'301)) {
        SCOPED_TRACE(qPrintable(text.left(300)));
        refused += askAll(text, text.contains("send_side_effect")) ? 0 : 1;
        ASSERT_EQ(m_lumo.model.asked.size(), 4);
        for (qsizetype at = 0; at < 4; ++at) {
            expectSameFrame(m_lumo.model.asked.at(at).prompt, harmless.at(at).prompt);
            expectSameFrame(m_lumo.model.asked.at(at).instructions, harmless.at(at).instructions);
        }
        if (HasFatalFailure())
            return;
    }
    EXPECT_GT(refused, 100);
    EXPECT_EQ(rows(), "0") << "nothing was sent, queued or stored";
}

}
