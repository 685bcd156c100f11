#include "Foundation/Literals.h"
#include "Work/OpsAsks.h"
#include "Work/WorkTerminalChat.h"
#include "WorkTest.h"

namespace corvane {

namespace {

class TerminalChat : public WorkTest {
protected:
    QList<WorkChatSeed> lines()
    {
        chat.reload();
        return static_cast<RowListModel<WorkChatSeed>*>(chat.lines())->rows();
    }

    WorkContextRow may = context(u"May invoices"_s);
    WorkTerminalChat chat { services, nullptr };
};

}

TEST_F(TerminalChat, thePacketIsWhatTheAssistantReadsToTheByte)
{
    EXPECT_EQ(terminalChatPrompt(*m_db, may, "How many?"),
        "Selected work_context:\n- id: ctx:ops:may-invoices\n- module: ops\n- kind: workspace\n- slug: may-invoices\n"
        "- title: May invoices\n- subtitle: \n- status: active\n- owner: \n- updated_at: "
            + may.updatedAt
            + "\n\nRecent work_message rows:\n- none\n\nRecent work_item rows:\n- none\n\nRecent work_evidence rows:\n"
              "- none\n\nUser question:\nHow many?");
    for (int i = 1; i <= 210; ++i)
        m_db->run("INSERT INTO work_message(id, context_id, module, speaker, role, body, created_at) "
                  "VALUES(?,?,'ops',?,'agent',?,?);",
            { i, may.id, i == 200 ? QString() : u"Ana"_s, u"%1 %2 line"_s.arg(i), u"%1"_s.arg(i, 4, 10, QChar('0')) });
    item(may.id, u"Pay"_s);
    m_db->exec("UPDATE work_item SET summary='now';");
    insertWorkEvidence(*m_db, { "ops", may.id, {}, "note", "Bill", "mail", "", "340" });
    const QString prompt = terminalChatPrompt(*m_db, may, "?");
    EXPECT_TRUE(prompt.contains("rows:\n- [0189] Ana: 189 %2 line\n")) << "the last twelve of the oldest 200";
    EXPECT_TRUE(
        prompt.contains("- [0200] agent: 200 %2 line\n\nRecent work_item rows:\n- normal open task: Pay - now\n"));
    EXPECT_TRUE(prompt.contains("rows:\n- note: Bill - source: mail - 340\n\nUser question:\n?"));
}

TEST_F(TerminalChat, aQuestionIsWrittenFirstAndAnsweredOnce)
{
    EXPECT_FALSE(chat.ask("  "));
    EXPECT_FALSE(chat.ask("Hello?"));
    EXPECT_EQ(chat.status(), "No context selected yet. Terminal Chat appears when this pane shows a saved context.");
    chat.setContext(u"ops"_s, may);
    chat.reload();
    EXPECT_EQ(chat.emptyTitle(), "Ask about this context. Questions and answers stay with it.");
    item(may.id, u"Pay the clay"_s);
    const auto answer = lumo.model.willAnswerLater();
    EXPECT_TRUE(chat.ask(" What is open? "));
    EXPECT_FALSE(chat.ask("Twice?")) << "one question at a time";
    EXPECT_EQ(chat.status() + chat.actionLabel(), "LumoAI is reading LocalDB context...Asking");
    EXPECT_EQ(lumo.model.asked.first().instructions, terminalChatInstructions());
    EXPECT_TRUE(lumo.model.asked.first().prompt.contains("Oskel: What is open?")) << "it is among the rows";
    chat.setContext(u"ops"_s, context(u"June"_s)); // the user switched to another context
    answer.arrive(FakeLanguageModel::text("Only pay the clay."));
    EXPECT_FALSE(chat.busy());
    EXPECT_EQ(table("SELECT context_id, speaker, role, kind FROM work_message ORDER BY rowid;"),
        (QStringList { may.id + "|Oskel|oskel|message", may.id + "|LumoAI|assistant|answer" }));
    chat.setContext(u"ops"_s, may);
    ASSERT_EQ(lines().size(), 2);
    EXPECT_TRUE(lines().first().isOskel);
    ASSERT_EQ(lines().last().sources.size(), 1) << "the row that it names";
    EXPECT_EQ(lines().last().sources.first().label, "Pay the clay");

    lumo.model.willFail("no model");
    chat.ask("And now?");
    EXPECT_EQ(chat.status(), "no model");
    EXPECT_EQ(messages().last(), "error|Ask failed: no model");
    lumo.model.willAnswer(" \n");
    chat.ask("Blank?");
    EXPECT_EQ(messages().last(), "message|Blank?");
    EXPECT_FALSE(chat.busy());
    lumo.model.willAnswerLater();
    chat.ask("Stop?");
    chat.cancel();
    EXPECT_FALSE(chat.busy());
    EXPECT_EQ(messages().last(), "message|Stop?") << "a question that is cancelled stays";
    m_db->exec("DROP TABLE work_message;");
    EXPECT_FALSE(chat.ask("Saved?"));
    EXPECT_EQ(chat.status(), "Could not save the question.");
}

TEST_F(TerminalChat, anAskIsAnsweredByTheAssistantOrWaits)
{
    const auto ask = createOpsAsk(*m_db, { .projectSlug = "none", .question = "Which clay?", .urgency = "high" });
    chat.answerAsk(*ask);
    EXPECT_EQ(chat.status(), "Ask saved. There is no context for LumoAI to answer from.");
    chat.setContext(u"ops"_s, may);
    lumo.model.willFail("no model");
    chat.answerAsk(*ask);
    EXPECT_EQ(chat.status(), "Ask saved; LumoAI could not answer: no model");
    EXPECT_EQ(fetchOpsAsk(*m_db, ask->id)->status, "open");
    EXPECT_TRUE(messages().isEmpty());
    lumo.model.willAnswer("The iron one.");
    chat.answerAsk(*ask);
    EXPECT_EQ(fetchOpsAsk(*m_db, ask->id)->answeredBy, "LumoAI");
    EXPECT_EQ(messages(), QStringList("answer|The iron one."));

    m_db->exec("INSERT INTO project(id, slug, name) VALUES('p','shop','Shop');");
    OpsAsks asks(services, nullptr);
    const auto other = createOpsAsk(*m_db, { .projectSlug = "shop", .question = "Ship %1?", .urgency = "low" });
    asks.beginAnswer(other->id);
    EXPECT_EQ(asks.answering(), "Ship %1?");
    const auto answer = lumo.model.willAnswerLater();
    asks.answerWithLumo();
    EXPECT_TRUE(
        lumo.model.asked.last().prompt.startsWith("Answer this ops ask:\nShip %1?\n\nProject:\n- slug: shop\n"));
    EXPECT_EQ(lumo.model.asked.last().instructions, opsAskInstructions());
    asks.cancelLumo();
    EXPECT_FALSE(asks.busy());
    asks.saveAnswer();
    EXPECT_EQ(asks.error(), "An answer is required.");
    asks.setAnswerText(u"Yes"_s);
    answerOpsAsk(*m_db, other->id, "No", "Agent");
    asks.reload();
    EXPECT_EQ(asks.error(), "Agent answered meanwhile: No");
    asks.saveAnswer();
    EXPECT_EQ(fetchOpsAsk(*m_db, other->id)->answer, "Yes");
    EXPECT_EQ(asks.answering(), "");
}

}
