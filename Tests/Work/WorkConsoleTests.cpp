#include "Foundation/Literals.h"
#include "Work/WorkCreateFlows.h"
#include "Work/WorkExport.h"
#include "Work/WorkLanes.h"
#include "WorkTest.h"

namespace corvane {

namespace {

QStringList tabs(const WorkConsoleConfig& config, const WorkContext& context)
{
    QStringList words;
    for (const WorkConsoleTab tab : visibleTabs(config, context))
        words.append(tabId(tab));
    return words;
}

QString titles(const QList<WorkAction>& actions)
{
    QStringList words;
    for (const WorkAction& action : actions)
        words.append(action.title);
    return words.join(',');
}

QString board(const WorkLanes& lanes, const QStringList& statuses)
{
    QStringList words;
    for (const QString& status : statuses)
        words.append(lanes.name(lanes.laneOf(status)));
    return words.join(',');
}

WorkContextRow called(const QString& title)
{
    WorkContextRow row {};
    row.title = title;
    return row;
}

class WorkConsole : public WorkTest { };

}

TEST_F(WorkConsole, theWordsOfAContextSayWhatItIs)
{
    const WorkConsoleConfig ops = WorkConsoleConfig::ops();
    struct Case {
        const char* title;
        const char* tab;
        const char* actions;
        const char* group;
        const char* lanes;
    };
    for (const Case& each : { Case { "Payroll run", "finance", "Invoice Check,Approval Ask,Runbook", "Finance",
                                  "Queued,Check,Done,Done,Other,Approval,Queued,Other" },
             Case { "Candidate pool", "hiring", "Candidate Screen,Approval Ask,Runbook", "Hiring",
                 "Sourcing,Screen,Closed,Closed,Review,Other,Other,Other" },
             Case { "Kiln", "processes", "Approval Ask,Runbook", "Admin",
                 "Open,Review,Done,Done,Review,Other,Other,Other" } }) {
        const WorkContext context = called(each.title);
        EXPECT_EQ(tabs(ops, context).first(), each.tab) << each.title;
        EXPECT_EQ(tabs(ops, context).filter(QRegularExpression("processes|finance|hiring")).size(), 1);
        EXPECT_EQ(tabId(contextDefaultTab(ops, context)), each.tab);
        EXPECT_EQ(titles(contextualQuickActions(ops, context)), each.actions);
        EXPECT_EQ(groupOf(ops, *context), each.group);
        EXPECT_EQ(board(lanesOf(ops, context),
                      { "open", "in_progress", "done", "REJECTED", "review", "Approval", "queued", "" }),
            each.lanes);
    }
    EXPECT_EQ(tabs(ops, {}).first(), "processes");
    EXPECT_EQ(titles(contextualQuickActions(ops, {})), "");
    EXPECT_EQ(titles(contextualTopActions(ops, {})), "Invoice Check,Approval Ask,Runbook");
    EXPECT_EQ(topActionSubtitle("Reply to research"), "lead + company evidence");
    EXPECT_EQ(topActionSubtitle("Tidy"), "local work record");
    const WorkLanes hiring = lanesOf(ops, called("Hiring"));
    EXPECT_TRUE(hiring.foldsFinished);
    EXPECT_EQ(hiring.statusOf(0) + ' ' + hiring.statusOf(1) + ' ' + hiring.statusOf(3) + ' ' + hiring.statusOf(4),
        "open screen hold done");
}

TEST_F(WorkConsole, aQuickActionOpensTheFlowOfItsWords)
{
    const auto of = [](const QString& title) {
        const WorkDraft draft = quickActionDraft(title, "why", "May");
        return QStringList { QString::number(int(draft.flow)), draft.kind, draft.title, draft.priority,
            draft.askUrgency, draft.askTarget, draft.summary }
            .join('|');
    };
    EXPECT_EQ(of("Approval Ask"), "3|task|Approval Ask|normal|high|Human/agent|why");
    EXPECT_EQ(of("Runbook"), "2|runbook|Runbook for May|normal|normal|LumoAI|why");
    EXPECT_EQ(of("Campaign Log"), "2|note|Campaign Log for May|normal|normal|LumoAI|why");
    EXPECT_EQ(of("Invoice Check"), "1|finance|Invoice Check for May|high|normal|LumoAI|why");
    EXPECT_EQ(of("Candidate Screen"), "1|screen|Candidate Screen for May|normal|normal|LumoAI|why");
    EXPECT_EQ(of("Reply"), "1|reply|Reply for May|high|normal|LumoAI|why");
    EXPECT_EQ(of("Invoice Ask"), "3|task|Invoice Ask|normal|high|Human/agent|why");
    EXPECT_EQ(of("Ask Ana"), "3|task|Ask Ana|normal|normal|Human/agent|why");
    EXPECT_EQ(of("Doc"), "2|note|Doc for May|normal|normal|LumoAI|why");
}

TEST_F(WorkConsole, whatIsCreatedIsSavedSaidAndHeldWhereItHasARisk)
{
    WorkPlace place { .module = u"ops"_s };
    WorkDraft draft = emptyDraft(WorkCreateFlow::Context);
    EXPECT_EQ(saveContext(*m_db, place, draft).error().message, "Title is required.");
    draft.title = " Q3 Plan ";
    draft.kind = "  ";
    const auto first = saveContext(*m_db, place, draft);
    EXPECT_EQ(first->kind, "workspace");
    draft.title = "q3 plan!";
    EXPECT_EQ(saveContext(*m_db, place, draft)->id, first->id);
    EXPECT_EQ(cell("SELECT COUNT(*) FROM work_context;"), "1");
    place.context = *first;

    draft = emptyDraft(WorkCreateFlow::Item);
    EXPECT_EQ(saveItem(*m_db, place, draft).error().message, "Title is required.");
    draft.title = "Tidy notes";
    ASSERT_TRUE(saveItem(*m_db, place, draft));
    EXPECT_EQ(cell("SELECT COUNT(*) FROM work_decision;"), "0");
    draft.title = "Reply to vendor ";
    draft.kind = " reply ";
    draft.summary = " soon ";
    const auto item = saveItem(*m_db, place, draft);
    EXPECT_EQ(table("SELECT title, status, risk, decided_by, module, context_id FROM work_decision;"),
        QStringList("Review Reply to vendor|proposed|money||ops|" + first->id));
    EXPECT_EQ(item->kind + '|' + item->summary + '|' + item->owner + '|' + item->source + '|' + item->contextId,
        "reply|soon|Oskel|corvane-ui|" + first->id);
    EXPECT_EQ(messages().last(), "status|Created item " + item->id + ": Reply to vendor.");

    draft = emptyDraft(WorkCreateFlow::Note);
    EXPECT_EQ(saveNote(*m_db, place, draft).error().message, "Title is required.");
    draft.title = "Seen";
    EXPECT_EQ(saveNote(*m_db, place, draft)->kind, "note");
    draft = emptyDraft(WorkCreateFlow::Ask);
    EXPECT_EQ(saveAsk(*m_db, place, draft).error().message, "Question is required.");
    draft.summary = "Which clay?";
    const auto ask = saveAsk(*m_db, place, draft);
    EXPECT_EQ(messages().last(), "ask|Created ops_ask " + ask->id + ": Which clay?");

    const auto decision = fetchPendingWorkDecisions(*m_db, 1).first();
    WorkDecisionRecord asSeen = decision;
    asSeen.proposal = "Something else";
    EXPECT_FALSE(setWorkDecisionStatus(*m_db, place, asSeen, "approved")) << "not what the person read";
    EXPECT_TRUE(setWorkDecisionStatus(*m_db, place, decision, "approved"));
    EXPECT_EQ(messages().last(),
        "status|Approved decision locally: Review Reply to vendor. No external action was executed.");
    EXPECT_FALSE(setWorkDecisionStatus(*m_db, place, decision, "rejected")) << "it was decided";
    EXPECT_TRUE(markWorkItemDone(*m_db, place, *item));
    EXPECT_FALSE(markWorkItemDone(*m_db, place, *fetchWorkItem(*m_db, item->id)));
    const QStringList said = messages();
    WorkMemoryRecord gone {};
    gone.id = "gone";
    EXPECT_FALSE(setWorkMemoryStatus(*m_db, place, gone, "approved"));
    EXPECT_EQ(messages(), said) << "what was not written is not told";

    const WorkPlace dev { .module = u"dev"_s, .slug = u"shop"_s };
    m_db->exec("INSERT INTO project(id, slug, name) VALUES('p','shop','Shop');");
    EXPECT_EQ(saveAsk(*m_db, dev, draft)->projectId, "p") << "without a context it is the project's";
    m_db->exec("CREATE TRIGGER full BEFORE INSERT ON ask BEGIN SELECT RAISE(ABORT,'full'); END;");
    EXPECT_EQ(saveAsk(*m_db, dev, draft).error().message, "Could not save ask row.");
    EXPECT_EQ(saveAsk(*m_db, place, draft).error().message, "Could not save ops ask.");

    m_db->exec("DROP TABLE work_item; DROP TABLE work_evidence; DROP TABLE ask; DROP TABLE work_context;");
    draft.title = "x";
    EXPECT_EQ(saveAsk(*m_db, dev, draft).error().message, "Could not save ask row.");
    EXPECT_EQ(saveItem(*m_db, place, draft).error().message, "Could not save the item.");
    EXPECT_EQ(saveNote(*m_db, place, draft).error().message, "Could not save the note.");
    EXPECT_EQ(saveAsk(*m_db, place, draft).error().message, "Could not save ask.");
    EXPECT_EQ(saveContext(*m_db, place, draft).error().message, "Could not save the context.");
}

TEST_F(WorkConsole, aContextIsExportedWholeAndAsALog)
{
    const WorkContextRow may = context(u"May invoices"_s);
    EXPECT_EQ(terminalLines(*m_db, u"ops"_s, may).mid(2).join('|'),
        "evidence  none attached yet|approval  risky external actions stay gated|"
        "$ work_agent_heartbeat --context current --status running");
    item(may.id, u"Pay\u202E the clay"_s);
    insertWorkDecision(*m_db, { "ops", may.id, "Review Pay", "Hold\nit", "Why", "money" });
    insertWorkMessage(*m_db, { "ops", may.id, "Ana", "assistant", "message", QString(1'000'000, 'x') });
    const QString text = contextAsMarkdown(*m_db, may);
    EXPECT_TRUE(text.startsWith("# May invoices\n"));
    EXPECT_TRUE(text.contains("- **Pay the clay** · open · task · normal · Ana"));
    EXPECT_TRUE(text.contains("  Hold\n  it\n"));
    EXPECT_TRUE(text.contains("## Evidence\n\nNone."));
    EXPECT_GT(text.size(), 1'000'000) << "whole";
    EXPECT_TRUE(terminalLines(*m_db, u"ops"_s, may).contains("work_item  Pay the clay · open · Ana"));
}

}
