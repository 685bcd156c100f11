#include "Foundation/Literals.h"
#include "Presentation/DateWords.h"
#include "Work/OpsAsks.h"
#include "Work/WorkTerminalChat.h"
#include "WorkTest.h"

#include <QSignalSpy>

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

TEST_F(TerminalChat, aLineIsToldByWhoSpeaksAndWhatItNames)
{
    EXPECT_EQ(chat.emptyTitle() + ". " + chat.emptyText(),
        "No context selected. Terminal Chat appears when this pane shows a saved context.");
    EXPECT_FALSE(chat.contextAvailable());
    item(may.id, u"Pay the clay"_s);
    item(may.id, u"Tax"_s);
    insertWorkEvidence(*m_db, { "ops", may.id, {}, "note", "Bill", "mail", "", "340" });
    insertWorkMessage(*m_db, { "ops", may.id, "LumoAI", "assistant", "answer", "pay THE clay, bill, tax" });
    insertWorkMessage(*m_db, { "ops", may.id, "", "agent", "message", "Bill it" });
    insertWorkMessage(*m_db, { "ops", may.id, "Corvane", "system", "status", "Saved" });
    insertWorkMessage(*m_db, { "ops", may.id, "Corvane", "system", "error", "Lost" });
    chat.setContext(u"ops"_s, may);
    const QList<WorkChatSeed> shown = lines();
    ASSERT_EQ(shown.size(), 4);
    QStringList told;
    for (const WorkChatSeed& each : shown) {
        QStringList sources;
        for (const Choice& source : each.sources)
            sources.append(source.id.section(u':', 0, 0) + ' ' + source.label);
        told.append(QStringList { each.speaker, each.tone, each.body, sources.join(',') }.join('|'));
        EXPECT_FALSE(each.isOskel);
    }
    EXPECT_EQ(told,
        (QStringList { "LumoAI|answer|pay THE clay, bill, tax|item Pay the clay,evidence Bill", "agent||Bill it|",
            "Corvane|system|Saved|", "Corvane|bad|Lost|" }))
        << "a title of three letters may be any word";
    EXPECT_EQ(shown.at(1).aloud, "agent, " + shown.at(1).time + ": Bill it");
    EXPECT_NE(shown.at(1).time, "");
    EXPECT_EQ(chat.emptyTitle() + chat.emptyText() + chat.earlierText(), "");
    EXPECT_TRUE(chat.contextAvailable());
    EXPECT_EQ(chat.hint() + '|' + chat.actionLabel(), "Ask LumoAI about this context|Ask");
    EXPECT_TRUE(chat.log().startsWith("ops:May invoices work_context selected\n"));
    m_db->run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<97) "
              "INSERT INTO work_message(id, context_id, module, speaker, body) SELECT i, ?, 'ops', 'Ana', i FROM n;",
        { may.id });
    EXPECT_EQ(lines().size(), 100);
    EXPECT_EQ(chat.earlierText(), "Show earlier messages");
    chat.showEarlier();
    EXPECT_EQ(chat.lines()->rowCount(), 101);
    EXPECT_EQ(chat.earlierText(), "");
    chat.setContext(u"ops"_s, context(u"June"_s));
    chat.setContext(u"ops"_s, may);
    EXPECT_EQ(lines().size(), 100) << "another visit begins with the newest";
}

TEST_F(TerminalChat, whatRunsIsAskedOnceAndEndsWithItsScreen)
{
    const auto ask = createOpsAsk(*m_db, { .projectSlug = "none", .question = "Which clay?", .urgency = "high" });
    auto own = std::make_unique<WorkTerminalChat>(services, nullptr);
    own->setContext(u"ops"_s, may);
    const auto answer = lumo.model.willAnswerLater();
    EXPECT_TRUE(own->ask("Which?"));
    own->answerAsk(*ask);
    EXPECT_EQ(lumo.model.asked.size(), 1);
    EXPECT_EQ(own->hint(), "Waiting for LumoAI");
    EXPECT_FALSE(own->statusIsError());
    own.reset();
    EXPECT_TRUE(answer.hasArrived()) << "it was cancelled";
    EXPECT_EQ(messages(), QStringList("message|Which?"));

    chat.setContext(u"ops"_s, may);
    QSignalSpy wrote(&chat, &WorkTerminalChat::wrote);
    lumo.model.willFail("no model");
    chat.ask("Now?");
    EXPECT_EQ(wrote.size(), 2) << "the question, and how it ended";
    EXPECT_TRUE(chat.statusIsError());
    chat.dismissError();
    EXPECT_FALSE(chat.statusIsError());
    lumo.model.willFail("no model");
    chat.ask("And now?");
    chat.setContext(u"ops"_s, may);
    EXPECT_EQ(chat.status(), "no model") << "the same context keeps it";
    chat.setContext(u"ops"_s, context(u"June"_s));
    EXPECT_EQ(chat.status(), "");

    auto asks = std::make_unique<OpsAsks>(services, nullptr);
    asks->answerWithLumo();
    asks->saveAnswer();
    EXPECT_EQ(asks->error() + asks->facts(), "") << "no question is open";
    asks->beginAnswer(ask->id);
    const auto other = lumo.model.willAnswerLater();
    asks->answerWithLumo();
    asks->answerWithLumo();
    EXPECT_EQ(lumo.model.asked.size(), 4);
    asks.reset();
    EXPECT_TRUE(other.hasArrived());
    EXPECT_EQ(fetchOpsAsk(*m_db, ask->id)->status, "open");
}

TEST_F(TerminalChat, anAskIsToldAndItsPacketIsItsProject)
{
    const DateWords words(m_clock.nowMs());
    OpsAskRow row {};
    row.question = "Stop?";
    row.projectSlug = "shop";
    row.urgency = "normal";
    row.status = "open";
    OpsAskSeed seed = askSeed(row, words);
    EXPECT_EQ(seed.urgency + '|' + seed.facts + '|' + seed.answer + '|' + seed.aloud, "|shop||Question, Stop?, shop, ");
    EXPECT_TRUE(seed.open && !seed.urgent);
    row.urgency = "low";
    row.status = "answered";
    row.answer = "No";
    seed = askSeed(row, words);
    EXPECT_EQ(seed.urgency + '|' + seed.answer, "low|Answer: No");
    EXPECT_FALSE(seed.open);
    EXPECT_TRUE(opsAskPrompt(*m_db, row)
            .endsWith("\n\nProject:\n- none\n\nTabs:\n- none\n\nRecent updates:\n- none"
                      "\n\nOther asks:\n- none"));

    m_db->run("INSERT INTO project(id, slug, name, goal, status) VALUES('p','shop','Shop','Sell plates','active'), "
              "('q','kiln','Kiln','','active');");
    m_db->run("INSERT INTO tab(id, current_project_id, name, heartbeat_at, current_task, created_at) "
              "VALUES('t','p','worker',?,'Pack','2'), ('u','p','tester','','','1'), ('v','q','other','','','3');",
        { isoTime(m_clock.nowMs()) });
    m_db->exec(
        "INSERT INTO \"update\"(id, project_id, tab_id, ts, kind, body) VALUES('x','p','t','5','status','Packed'),"
        "('y','q','v','6','status','Fired');");
    const auto ask = createOpsAsk(*m_db, { .projectSlug = "shop", .question = "Ship?", .urgency = "high" });
    createOpsAsk(*m_db, { .projectSlug = "shop", .question = "Sell?", .urgency = "low" });
    createOpsAsk(*m_db, { .projectSlug = "kiln", .question = "Fire?", .urgency = "low" });
    const auto paid = createOpsAsk(*m_db, { .projectSlug = "shop", .question = "Pay?", .urgency = "normal" });
    answerOpsAsk(*m_db, paid->id, "No", "Ben");
    EXPECT_EQ(opsAskPrompt(*m_db, *ask),
        "Answer this ops ask:\nShip?\n\nProject:\n- slug: shop\n- name: Shop\n- goal: Sell plates\n- status: active\n\n"
        "Tabs:\n- worker live: Pack\n- tester down: \n\nRecent updates:\n- [5] status: Packed\n\n"
        "Other asks:\n- low open: Sell?\n- normal answered: Pay? - answer: No");
    OpsAsks asks(services, nullptr);
    asks.beginAnswer(ask->id);
    EXPECT_TRUE(asks.facts().startsWith("shop · "));
    asks.setProject(u"kiln"_s);
    asks.reload();
    EXPECT_EQ(asks.rows().size(), 0);
    asks.setProject(u"q"_s);
    asks.reload();
    ASSERT_EQ(asks.rows().size(), 1);
    EXPECT_EQ(asks.rows().first().question + asks.emptyTitle() + ": " + asks.emptyText(),
        "Fire?No open questions: Questions by people and agents appear here until they are answered.");
    const QSignalSpy wrote(&asks, &OpsAsks::wrote);
    asks.setAnswerText(u"Yes"_s);
    asks.saveAnswer();
    EXPECT_EQ(wrote.size(), 1);
    EXPECT_EQ(asks.answering() + asks.answerText() + asks.error(), "");
    EXPECT_EQ(fetchOpsAsk(*m_db, ask->id)->answeredBy, "Oskel");
}

}
