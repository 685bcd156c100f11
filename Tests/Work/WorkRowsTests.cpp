#include "Foundation/Literals.h"
#include "Presentation/DateWords.h"
#include "Support/Print.h"
#include "Work/WorkAgents.h"
#include "Work/WorkHistory.h"
#include "Work/WorkRows.h"

#include <QDateTime>
#include <gtest/gtest.h>

namespace corvane {

namespace {

const qint64 now = QDateTime(QDate(2026, 3, 4), QTime(15, 0)).toMSecsSinceEpoch();
const DateWords words(now);

QString iso(int minutesAgo)
{
    return QDateTime::fromMSecsSinceEpoch(now - minutesAgo * 60'000LL, Qt::UTC).toString(Qt::ISODate);
}

QString joined(const QStringList& parts)
{
    return parts.join('|');
}

}

TEST(WorkRows, aContextIsToldWithWhatWaitsAndWhoWorks)
{
    WorkContextRow row {};
    row.slug = "kiln";
    row.openItems = 3;
    WorkContextSeed seed = contextSeed(WorkConsoleConfig::ops(), row, 0);
    EXPECT_EQ(joined({ seed.title, seed.meta, seed.group, seed.aloud }), "kiln|3 open|Admin|kiln, 3 open");
    EXPECT_FALSE(seed.waits || seed.live);
    row.title = "Kiln";
    row.subtitle = "Two of them";
    row.liveSessions = 1;
    seed = contextSeed(WorkConsoleConfig::ops(), row, 1);
    EXPECT_EQ(seed.aloud, "Kiln, 3 open, 1 decision waits, an agent is working, Two of them");
    EXPECT_TRUE(seed.waits && seed.live);
}

TEST(WorkRows, anItemSaysOnlyWhatIsUnusual)
{
    WorkItemRecord item { .id = "i",
        .module = "ops",
        .kind = "bug",
        .title = "",
        .status = "in_progress",
        .priority = "normal",
        .owner = "",
        .source = "",
        .summary = "" };
    WorkItemSeed seed = itemSeed(item, false, words);
    EXPECT_EQ(joined({ seed.title, seed.kind, seed.status, seed.priority, seed.updatedAt, seed.aloud }),
        "Untitled|Bug|in progress|||Untitled, Bug");
    item.title = "Mend";
    item.priority = "high";
    item.owner = "Ana";
    item.summary = "two\nlines";
    item.updatedAt = iso(60);
    seed = itemSeed(item, true, words);
    EXPECT_TRUE(seed.waits);
    EXPECT_EQ(joined({ seed.id, seed.priority, seed.summary, seed.updatedAt, seed.aloud }),
        "i|High|two lines|14:00|Mend, Bug, High priority, Ana, waits for a decision, 14:00");
    const WorkEvidenceSeed evidence = evidenceSeed({ .id = "e",
                                                       .module = "ops",
                                                       .kind = "note",
                                                       .title = "Bill",
                                                       .source = "mail",
                                                       .uri = "file:///b",
                                                       .summary = "340",
                                                       .createdAt = iso(60) },
        words);
    EXPECT_EQ(joined({ evidence.id, evidence.title, evidence.summary, evidence.facts }),
        "e|Bill|340|note · mail · file:///b · 14:00");
    EXPECT_EQ(shownText(QString(4001, 'x')), QString(4000, 'x') + u'…');
    EXPECT_EQ(shownText(QString(4000, 'x')), QString(4000, 'x'));
}

TEST(WorkRows, anEventIsToldByItsKindAndADecisionTwice)
{
    const QList<WorkEvent> events {
        { "decision", "a", "Pay", "approved", "Oskel", "340", iso(50), iso(30), "", "" },
        { "decision", "b", "Fire", "proposed", "Ana", "", iso(45), iso(1), "", "" },
        { "decision", "c", "Sell", "rejected", "", "", iso(44), iso(1), "", "" },
        { "message", "m", "", "", "LumoAI", "Hot", iso(40), "", "assistant", "" },
        { "message", "n", "", "", "Ana", "", iso(35), "", "agent", "" },
        { "evidence", "e", "Bill", "", "mail", "", iso(20), "", "browser-capture", "/shots/1" },
        { "evidence", "f", "Note", "", "", "", "soon", "", "note", "file:///n" },
    };
    QStringList told;
    for (const OpsTimelineEvent& each : timelineEvents(events, words))
        told.append(joined({ each.id, each.icon, each.title, each.detail, each.time, each.day, each.capture }));
    EXPECT_EQ(told,
        (QStringList { "decision:a|approvals|Pay - approved|340|14:10|Today|",
            "decision:b|approvals|Fire - proposed||14:15|Today|", "decision:c|approvals|Sell - rejected||14:16|Today|",
            "message:m|hub-lumo|LumoAI|Hot|14:20|Today|", "message:n|note|Ana||14:25|Today|",
            "decided:a|dialog-ok|Approved by Oskel: Pay||14:30|Today|",
            "evidence:e|document|Bill · mail||14:40|Today|/shots/1", "evidence:f|document|Note|||No date|" }));
    QStringList aloud;
    for (const OpsTimelineEvent& each : timelineEvents(events, words))
        aloud.append(each.aloud);
    EXPECT_EQ(aloud.at(0) + '|' + aloud.at(5) + '|' + aloud.at(7),
        "14:10, decision, Pay - approved, 340|14:30, Approved by Oskel: Pay|evidence, Note");
}

TEST(WorkRows, aDigestHoldsTwentyFiveWithTheNewestFirst)
{
    QList<WorkEvent> events;
    for (int i = 0; i < 24; ++i)
        events.append({ "message", QString::number(i), "", "", "Ana", "", iso(50 - i), "", "", "" });
    events.append({ "evidence", "e", "Bill", "", "", "", iso(20), "", "", "" });
    events.append({ "decision", "d", "Pay", "approved", "Oskel", "", iso(19), iso(18), "", "" });
    const QList<OpsTimelineEvent> digest = opsTimeline(events, words);
    ASSERT_EQ(digest.size(), 25);
    EXPECT_EQ(joined({ digest.at(0).id, digest.at(1).id, digest.at(2).id, digest.last().id }),
        "decision:d|evidence:e|message:23|message:1");
}

TEST(WorkRows, anAgentIsToldByItsHeartbeatAndItsOwnSession)
{
    const auto session = [](const QString& module, const QString& context, const QString& owner, const QString& about) {
        return WorkSessionRecord { .id = "s",
            .contextId = context,
            .module = module,
            .purpose = about,
            .owner = owner,
            .tool = "codex",
            .status = "live",
            .heartbeatAt = "" };
    };
    WorkAgentRecord agent { .id = "a",
        .contextId = "kiln",
        .module = "ops",
        .name = "Ana",
        .tool = "codex",
        .role = "ops",
        .status = "live",
        .currentTask = "Heat",
        .heartbeatAt = iso(2) };
    const QList<WorkSessionRecord> sessions { session("gtm", "kiln", "Ana", "1"), session("ops", "rent", "Ana", "2"),
        session("ops", "kiln", "Ben", "3"), session("ops", "kiln", "Ana", "Fire the bowls") };
    WorkAgentSeed seed = agentSeed(agent, sessions, "Hot", words, now);
    EXPECT_EQ(joined({ seed.id, seed.session, seed.tool, seed.state, seed.tone, seed.lastWords, seed.place }),
        "a|Session: Fire the bowls|codex · ops|Working|good|Hot|ops");
    EXPECT_EQ(seed.aloud, "Ana, Working, last seen 2 minutes ago, Heat");
    agent.currentTask = "Fire the bowls";
    agent.status = "running";
    agent.heartbeatAt = iso(21);
    seed = agentSeed(agent, sessions, {}, words, now);
    EXPECT_EQ(joined({ seed.session, seed.state, seed.tone, seed.heartbeat }), "|Silent|bad|last seen 21 minutes ago");
    agent.status = "ready";
    seed = agentSeed(agent, {}, {}, words, now);
    EXPECT_EQ(joined({ seed.session, seed.state, seed.tone }), "|Ready|") << "it does not say that it works";
    agent.status = "paused";
    EXPECT_EQ(agentSeed(agent, {}, {}, words, now).state, "paused");
}

TEST(WorkRows, theAgentToLaunchSuitsItsModule)
{
    WorkContextRow kiln {};
    kiln.title = "Kiln";
    WorkContextRow bills {};
    bills.subtitle = "Invoices of May";
    const auto plan = [](const WorkConsoleConfig& config, const WorkContextRow& context, const QString& name = {}) {
        const AgentLaunchPlan plan = agentLaunchPlan(config, context, name);
        return plan.name + ", " + plan.role;
    };
    EXPECT_EQ(plan(WorkConsoleConfig::gtm(), kiln), "Researcher, research");
    EXPECT_EQ(plan(WorkConsoleConfig::cx(), kiln), "QA Agent, qa");
    EXPECT_EQ(plan(WorkConsoleConfig::ops(), kiln), "Ops Agent, worker");
    EXPECT_EQ(plan(WorkConsoleConfig::ops(), bills), "Ops Agent, ops");
    EXPECT_EQ(plan(WorkConsoleConfig::lumo(), bills), "Worker, worker");
    EXPECT_EQ(plan(WorkConsoleConfig::cx(), kiln, " Ada "), "Ada, qa");
}

}
