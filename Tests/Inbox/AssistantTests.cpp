#include "Foundation/Literals.h"
#include "InboxViewTest.h"

#include <QJsonArray>

using namespace corvane;

namespace {

class AssistantTest : public InboxViewTest {
protected:
    AssistantTest()
    {
        receive(ana, "Can you do Thursday at 15:00?");
        inbox.person()->select(ana);
        model.setAvailable();
    }

    QString cell(const QString& sql) { return EngineWorld::cell(sql); }

    static QJsonObject guided(const QString& body, const QStringList& citations = { "M1" })
    {
        return { { "body", body }, { "intent", "draft_reply" }, { "citations", QJsonArray::fromStringList(citations) },
            { "warnings", QJsonArray() }, { "send_side_effect", false } };
    }
    static QString rewritten(const QString& text)
    {
        return compactJson({ { "draft", text },
            { "metadata",
                QJsonObject { { "intent", "rewrite_text" }, { "tone", "" }, { "language", "en" }, { "confidence", 1 },
                    { "used_message_labels", QJsonArray() }, { "used_note_ids", QJsonArray() },
                    { "warnings", QJsonArray() }, { "send_side_effect", false } } } });
    }

    FakeLanguageModel& model = lumo.model;
    DraftAssistant& draft = *inbox.reply()->assistant();
    Composer& composer = *inbox.reply()->composer();
};

}

TEST_F(AssistantTest, aDraftIsAPreviewUntilItIsTakenAndCanBeTakenBack)
{
    const auto answer = model.willAnswerLater();
    draft.draftReply();
    EXPECT_EQ(draft.stateWord() + '|' + draft.title(), "loading|Drafting with Fake Model");
    answer.arrive(guided("Thursday at 16:00 suits me."));
    EXPECT_EQ(draft.stateWord() + '|' + draft.draft() + '|' + draft.modelName(),
        "ready|Thursday at 16:00 suits me.|Fake Model");
    ASSERT_EQ(draft.citations().size(), 1);
    EXPECT_EQ(draft.citations().first().messageId, "wa:msg:m1");
    EXPECT_FALSE(draft.warnings().filter("16:00").isEmpty()) << "a time that nobody named";
    EXPECT_EQ(composer.text(), "");

    composer.setText("Hello Ana,");
    draft.accept();
    EXPECT_EQ(composer.text(), "Hello Ana,\n\nThursday at 16:00 suits me.");
    EXPECT_EQ(draft.stateWord(), "idle");
    EXPECT_EQ(cell("SELECT contact_id || '|' || intent || '|' || model FROM draft_metadata;"),
        ana + "|draft_reply|Fake Model");
    composer.undo();
    EXPECT_EQ(composer.text(), "Hello Ana,");

    model.willAnswer(guided("Yes."));
    draft.draftReply();
    draft.replace();
    EXPECT_EQ(composer.text(), "Yes.");
    draft.accept(); // there is nothing to accept
    EXPECT_EQ(composer.text(), "Yes.");
    EXPECT_TRUE(commands("send").isEmpty());
    EXPECT_EQ(cell("SELECT COUNT(*) FROM outbound_draft;"), "0");
}

TEST_F(AssistantTest, aRewriteKeepsWhatIsQuotedOrIsNotShown)
{
    draft.rewrite("shorten");
    EXPECT_EQ(draft.stateWord() + '|' + draft.title(), "error|There is no composer text to rewrite.");
    EXPECT_EQ(draft.caption(), "Composer draft only");
    QStringList offered;
    for (const Choice& rewrite : draft.rewrites())
        offered.append(rewrite.id + ' ' + rewrite.label);
    EXPECT_EQ(offered, QStringList({ "shorten Shorten", "warmer Make warmer", "grammar Fix grammar" }));
    EXPECT_TRUE(draft.languages().contains("German"));
    EXPECT_TRUE(draft.citations().isEmpty());
    draft.dismiss();
    draft.rewrite("longer");
    EXPECT_EQ(draft.stateWord(), "idle");
    composer.setText("She said \"by Friday\" and nothing else at all.");
    model.willAnswer(rewritten("She said \"by Friday\"."));
    draft.rewrite("shorten");
    EXPECT_EQ(draft.draft() + '|' + draft.title(), "She said \"by Friday\".|Shorten");
    EXPECT_TRUE(draft.isRewrite());
    model.willAnswer(rewritten("She said by Monday."));
    draft.rewrite("warmer");
    EXPECT_EQ(draft.title(), "The rewrite changed quoted client text: \"by Friday\".");
    EXPECT_EQ(draft.draft(), "");
    EXPECT_EQ(composer.text(), "She said \"by Friday\" and nothing else at all.");
}

TEST_F(AssistantTest, aTranslationFallsBackToTheModelAndSaysWhy)
{
    composer.setText("Good morning");
    const auto answer = model.willAnswerLater();
    draft.translate("German");
    EXPECT_EQ(draft.title(), "Falling back to LumoAI translate...");
    answer.arrive(FakeLanguageModel::text(rewritten("Guten Morgen")));
    EXPECT_EQ(draft.draft(), "Guten Morgen");
    EXPECT_EQ(draft.operationLabel(), "Translate");
    EXPECT_EQ(draft.warnings().last(),
        "Translation on this computer was unavailable or failed mid-flight; LumoAI fallback translated this draft. "
        "Error: Translation on this computer is not set up.");
    EXPECT_TRUE(model.asked.last().prompt.contains("Translate the draft to German"));
}

TEST_F(AssistantTest, whatIsCancelledOrAboutAnotherPersonIsNeverShown)
{
    const auto first = model.willAnswerLater();
    draft.draftReply();
    draft.dismiss();
    EXPECT_TRUE(first.hasArrived()) << "the request has ended";
    EXPECT_EQ(draft.stateWord(), "idle");

    receive(ben, "good day");
    const auto second = model.willAnswerLater();
    const auto third = model.willAnswerLater();
    draft.draftReply();
    inbox.reply()->summary()->summarize();
    inbox.person()->select(ben);
    EXPECT_TRUE(second.hasArrived() && third.hasArrived());
    EXPECT_EQ(inbox.reply()->summary()->html(), "");
    EXPECT_TRUE(inbox.reply()->summary()->citations().isEmpty());
    EXPECT_EQ(draft.stateWord() + inbox.reply()->summary()->stateWord(), "idleidle");
}

TEST_F(AssistantTest, withoutABackendEachPlaceSaysWhatIsMissing)
{
    model.setUnavailable("no server");
    composer.setText("text");
    for (const auto& act :
        std::initializer_list<std::function<void()>> { [&] { draft.draftReply(); }, [&] { draft.rewrite("grammar"); },
            [&] {
                draft.translate("French");
            } }) {
        act();
        EXPECT_EQ(draft.stateWord() + '|' + draft.title() + '|' + draft.detail(),
            "missingModel|No model and no Codex CLI|Start a model on this computer or install Codex CLI. "
            "Current backend: none");
    }
    inbox.reply()->summary()->summarize();
    EXPECT_EQ(inbox.reply()->summary()->detail(), "Start a model on this computer or install Codex CLI.");
    EXPECT_EQ(inbox.reply()->askLumo()->actionLabel(), "no AI backend");
    EXPECT_EQ(inbox.reply()->askLumo()->footer(), "Grounded in the local thread + notes · no AI backend");
    EXPECT_FALSE(inbox.reply()->askLumo()->canAsk());
}

TEST_F(AssistantTest, aSummaryLinksItsLabelsToTheirMessages)
{
    ThreadSummary& summary = *inbox.reply()->summary();
    model.willAnswer(u"- Situation: <b>Ana</b> asks for Thursday [M1, M7].\n  * **Next**: answer M1"_s);
    summary.summarize();
    EXPECT_EQ(summary.stateWord() + '|' + summary.title(), "ready|Summary");
    EXPECT_EQ(summary.html(),
        "• Situation: &lt;b&gt;Ana&lt;/b&gt; asks for Thursday [<a href=\"wa:msg:m1\">M1</a>, "
        "M7].<br>&nbsp;&nbsp;&nbsp;"
        "&nbsp;• <b>Next</b>: answer M1");
    ASSERT_EQ(summary.citations().size(), 1);
    EXPECT_EQ(summary.citations().first().messageId, "wa:msg:m1");
    EXPECT_TRUE(model.asked.last().prompt.startsWith("Summarize this local thread with Ana Ruiz.\n\nReturn exactly:"));

    model.willFail("The model server closed the connection.");
    summary.summarize();
    EXPECT_EQ(summary.stateWord() + '|' + summary.title(), "error|The model server closed the connection.");
    EXPECT_EQ(summary.html(), "");
    engines.db().exec("UPDATE unified_message SET body='  ';");
    summary.summarize();
    EXPECT_EQ(summary.stateWord() + '|' + summary.title() + '|' + summary.detail(),
        "empty|No local text to summarize|This thread has no saved text messages yet.");
}

TEST_F(AssistantTest, aQuestionIsAnsweredFromTheThreadAndTheNotes)
{
    AskLumo& ask = *inbox.reply()->askLumo();
    EXPECT_EQ(ask.heading(), "Ask Lumo about Ana Ruiz");
    EXPECT_TRUE(ask.placeholder().startsWith("e.g. What did we agree on?"));
    EXPECT_EQ(ask.actionLabel(), "Ask");
    ask.ask("  \n");
    EXPECT_EQ(ask.stateWord(), "idle");
    model.willAnswer(u"Thursday at 15:00.\n"_s);
    ask.ask(" When? ");
    EXPECT_EQ(ask.question() + '|' + ask.answer() + '|' + ask.title(), "When?|Thursday at 15:00.|When?");
    const QString prompt = model.asked.last().prompt;
    EXPECT_TRUE(prompt.startsWith("Contact: Ana Ruiz\nNotes:\n(none)\n\nRecent thread:\n[M1] IN WHATSAPP "));
    EXPECT_TRUE(prompt.endsWith(": Can you do Thursday at 15:00?\n\nQuestion: When?"));
    model.willFail("The model server closed the connection.");
    inbox.person()->crm()->addNote("likes\ntea");
    engines.db().exec("UPDATE unified_message SET body='';");
    ask.ask("And?");
    EXPECT_EQ(
        ask.stateWord() + '|' + ask.title() + '|' + ask.answer(), "error|The model server closed the connection.|");
    EXPECT_TRUE(model.asked.last().prompt.contains("Notes:\n- likes tea\n\nRecent thread:\n(no messages)"));
    model.willAnswer(u"Tea."_s);
    ask.tryAgain();
    EXPECT_EQ(ask.question() + '|' + ask.answer(), "And?|Tea.");
    ask.tryAgain(); // nothing to retry
    EXPECT_EQ(ask.answer(), "Tea.");
    const auto later = model.willAnswerLater();
    ask.ask("Milk?");
    EXPECT_EQ(ask.question() + '|' + ask.answer(), "Milk?|") << "the old answer is gone";
    ask.dismiss();

    inbox.person()->select({});
    ask.ask("Who?");
    inbox.reply()->summary()->summarize();
    draft.draftReply();
    draft.translate("German");
    EXPECT_EQ(ask.stateWord() + inbox.reply()->summary()->stateWord() + draft.stateWord(), "idleidleidle");
    ContactRow stranger;
    stranger.id = "ct:WHATSAPP:491725550199@s.whatsapp.net";
    stranger.name = "491725550199@s.whatsapp.net";
    ask.open(stranger);
    EXPECT_EQ(ask.heading(), "Ask Lumo about +491725550199");
}
