#include "DevTest.h"

#include "Dev/AssistantPacket.h"
#include "Foundation/ShellQuoting.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QSignalSpy>

namespace corvane {

using Workspace = DevTest;

TEST_F(Workspace, thePacketIsTheSameToTheByteAndShowsNoSecret)
{
    TerminalWorkspaceView view(desk());
    view.setShown(true);
    const QString rules = u"Never read or move credentials. Never set API keys or enable paid/overflow billing. Never "
                          "deploy production or push product main without explicit approval."_s;
    EXPECT_EQ(assistantContextPacket(view.desk(), AssistantPacketParts {}, u" "_s),
        u"Corvane DEV assistant context.\n\nArea: DEV\nConsole: DEV Work Console\nProject: No project selected\n"
        "Slug: local\nWork context: none\nGoal: \nDirectory: none\nHost: this computer\nSelected terminal: none\n"
        "Browser URL: \n"_s
            + rules
            + u"\n\nOpen work_item rows:\n- none\n\nPending asks:\n- none\n\nShared work_memory:\n- none\n\n"
              "Recent terminal transcript:\n- no selected terminal transcript yet\n\nUser request:\nContinue with the "
              "most useful next action for this console context. Ask before risky actions."_s);

    const QString repo = QFileInfo(written(u"shop/readme"_s, "x")).absolutePath();
    const QString id = project(u"Shop"_s, repo, u"box"_s);
    view.refresh();
    view.tasks()->createQuickBug();
    insertWorkItem(
        db, { devModule, view.desk().context->id, u"task"_s, u"Use token=abcdefgh"_s, u"low"_s, u"Ana"_s, u"x"_s, {} });
    createOpsAsk(db, { .project = id, .question = u"Is password: hunter22 right?"_s, .urgency = u"high"_s });
    view.memory()->setMemoryDraft(u"Authorization: Bearer abc.def"_s);
    view.memory()->proposeMemory();
    shell(view, "echo sk-abcdefghijklmnopqrst; echo ready; cat");
    view.setTab(u"assistant"_s);
    view.assistant()->setAssistantPrompt(u"Go on"_s);
    EXPECT_EQ(view.assistant()->packet(),
        u"Corvane DEV assistant context.\n\nArea: DEV\nConsole: DEV Work Console\nProject: Shop\nSlug: shop\n"
        "Work context: ctx:dev:shop\nGoal: Shop works\nDirectory: "_s
            + repo + u"\nHost: box\nSelected terminal: local-test-1\nBrowser URL: \n"_s + rules
            + u"\n\nOpen work_item rows:\n- bug: Investigate reported bug [open, Oskel]\n"
              "- task: Use token=[redacted] [open, Ana]\n\nPending asks:\n- high: Is password=[redacted] right?\n\n"
              "Shared work_memory:\n- fact: Authorization: Bearer [redacted]\n\nRecent terminal transcript:\n"
              "[redacted-api-key]\r\nready\n\nUser request:\nGo on"_s);
}

TEST_F(Workspace, aLaunchCopiesThePacketAndTypesNoneOfIt)
{
    project(u"Shop"_s);
    TerminalWorkspaceView view(desk());
    view.setShown(true);
    QString copied;
    QObject::connect(view.assistant(), &DevAssistant::copyRequested, [&](const QString& text) { copied = text; });
    view.assistant()->setAssistantPrompt(QString(300'000, u'x')); // longer than a command-line argument may be
    view.assistant()->setTarget(u"claude"_s);
    view.setTab(u"assistant"_s);
    const QString packet = view.assistant()->packet();
    view.assistant()->launchAssistant();
    EXPECT_EQ(copied, packet);
    EXPECT_GT(copied.size(), 300'000);
    ASSERT_NE(terminals.current(), nullptr);
    EXPECT_EQ(terminals.current()->title(), "shop-ai-claude-1");
    EXPECT_EQ(terminals.current()->initialCommand(),
        "pgrep -fl claude || true; echo 'Corvane context copied to clipboard. Keep local Claude under 2 processes.'; "
        "claude");
    EXPECT_EQ(view.tab(), "terminal");
    LumoTerminalSession& selected = shell(view, "echo ready; cat");
    view.assistant()->setTarget(u"terminal"_s);
    view.assistant()->launchAssistant();
    EXPECT_TRUE(await([&] { return selected.transcript().snapshot(500).contains(u"copied to clipboard"_s); }));
    EXPECT_EQ(terminals.count(), 2);
    view.launcher()->runQuickAction(u"claude"_s);
    EXPECT_TRUE(terminals.current()->initialCommand().startsWith("pgrep -fl claude || true; echo"));
    view.launcher()->runQuickAction(u"no such"_s);
    EXPECT_EQ(terminals.count(), 3);
}

TEST_F(Workspace, aBugFromATerminalBringsItsEvidenceRedacted)
{
    TerminalWorkspaceView view(desk());
    view.setShown(true);
    view.tasks()->bugFromTerminal();
    EXPECT_EQ(view.tasks()->notice(), "No project selected");
    project(u"Shop"_s);
    const QString other = project(u"Kiln"_s);
    view.refresh();
    view.rail()->select(u"pj:shop"_s);
    shell(view, "echo PASSWORD=hunter22; echo 'make: *** [all] Error 2'; echo ready; cat");
    view.tasks()->bugFromTerminal();
    view.tasks()->taskFromTerminal();
    EXPECT_EQ(table("SELECT kind, title, status, priority, owner, source, context_id FROM work_item ORDER BY kind;"),
        QStringList({ "bug|Terminal issue: make: *** [all] Error 2|open|high|unassigned|terminal|ctx:dev:shop",
            "task|Follow up terminal output from local-test-1|open|normal|Oskel|terminal|ctx:dev:shop" }));
    EXPECT_EQ(table("SELECT e.kind, e.title, e.source, e.item_id=i.id FROM work_evidence e JOIN work_item i ON "
                    "i.kind='bug' AND e.item_id=i.id;"),
        QStringList("terminal-transcript|Terminal evidence from local-test-1|DEV Terminal|1"));
    EXPECT_EQ(cell("SELECT COUNT(*) FROM work_evidence WHERE summary LIKE '%PASSWORD=[redacted]%';"), "2");
    EXPECT_EQ(cell("SELECT COUNT(*) FROM work_item WHERE summary LIKE '%hunter22%';"), "0");
    EXPECT_EQ(view.tasks()->openRows().size(), 2);
    view.rail()->select(other);
    EXPECT_EQ(view.tasks()->openRows().size(), 0);
    // A terminal of one project is not offered in another.
    view.rail()->select(u"pj:shop"_s);
    view.launcher()->createLocalSession();
    EXPECT_TRUE(view.tasks()->hasTerminal());
    view.rail()->select(other);
    EXPECT_FALSE(view.tasks()->hasTerminal());
    EXPECT_EQ(terminalIssueTitle(u"ok\n\n"_s), "Terminal issue: ok");
}

TEST_F(Workspace, memoryIsStagedProposedAndApprovedAndAgentsRegisterOnce)
{
    project(u"Shop"_s);
    TerminalWorkspaceView view(desk());
    view.setShown(true);
    view.setTab(u"memory"_s);
    DevMemory& memory = *view.memory();
    memory.stageMemoryDraft(u"command"_s);
    EXPECT_EQ(memory.memoryDraft(), "Useful command for Shop\ncommand:\nwhen to use:\nexpected output:");
    memory.proposeMemory();
    EXPECT_EQ(memory.memoryDraft(), "");
    shell(view, "echo secret=abcdefgh ready; cat");
    memory.saveTerminalTranscriptMemory();
    EXPECT_EQ(table("SELECT kind, source, confidence, status, owner FROM work_memory ORDER BY kind;"),
        QStringList({ "command|DEV Memory|medium|proposed|Oskel", "fact|DEV Terminal|medium|proposed|Oskel" }));
    EXPECT_EQ(cell("SELECT body FROM work_memory WHERE kind='fact';"), "secret=[redacted] ready");
    ASSERT_EQ(memory.rows()->memoryRows().size(), 2);

    view.team()->registerAgent(u"browser"_s);
    view.team()->registerAgent(u"browser"_s);
    EXPECT_EQ(table("SELECT name, tool, role, status, current_task FROM work_agent;"),
        QStringList("Browser QA|browser|qa|ready|Ready for project work. Risky actions require approval."));
    view.tasks()->proposeDevDecision();
    EXPECT_EQ(
        table("SELECT title, status, module FROM work_decision;"), QStringList("Review project decision|proposed|dev"));
    m_db->exec("DROP TABLE work_memory;");
    memory.setMemoryDraft(u"kept"_s);
    memory.proposeMemory();
    EXPECT_EQ(memory.notice() + memory.memoryDraft(), "Could not save the entry.kept");
}

TEST_F(Workspace, aFolderThatVanishedIsToldAndTerminalsStartElsewhere)
{
    project(u"Shop"_s, m_home.paths().home + "/gone"_L1);
    TerminalWorkspaceView view(desk());
    view.setShown(true);
    EXPECT_TRUE(view.launcher()->notice().endsWith(
        "/gone is not there. New terminals start in "_L1 + m_home.paths().home + '.'));
    view.launcher()->attachOrCreateLocalSession();
    EXPECT_EQ(terminals.current()->currentDirectory(), m_home.paths().home);
    const QString title = terminals.current()->title();
    terminals.create();
    EXPECT_EQ(terminals.current()->title(), "shop-shell-2") << "of the chosen project, too";
    view.launcher()->attachOrCreateLocalSession();
    EXPECT_EQ(terminals.current()->title(), title);
    written(u"gone/package.json"_s, R"({"scripts":{"start":"x","dev":"y"}})");
    written(u"gone/yarn.lock"_s, "");
    view.refresh();
    EXPECT_EQ(view.launcher()->notice(), "");
    view.launcher()->runQuickAction(u"dev server"_s);
    EXPECT_EQ(terminals.current()->initialCommand(), "yarn run dev");
    EXPECT_EQ(terminals.current()->title(), "shop-dev-server-3");
    view.setTab(u"health"_s);
    EXPECT_TRUE(await([&] { return !view.health()->rows().isEmpty(); }));
}

TEST_F(Workspace, everyArgumentOfACommandReachesTheProgramAsItWas)
{
    const QString home = m_home.paths().home;
    written(u"nimb/apps/nimb-local/scripts/corvane-server-agent.sh"_s,
        "#!/bin/sh\nprintf '%s\\0' \"$CORVANE_AGENT_DRY_RUN\" \"$@\"\n");
    QFile::setPermissions(home + "/nimb/apps/nimb-local/scripts/corvane-server-agent.sh"_L1,
        QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    const auto run = [&](const QString& shell, const QString& command) {
        QProcess process;
        QProcessEnvironment environment;
        environment.insert(u"HOME"_s, home);
        environment.insert(u"PATH"_s, qEnvironmentVariable("PATH"));
        process.setProcessEnvironment(environment);
        process.start(shell, { u"-c"_s, command });
        EXPECT_TRUE(process.waitForFinished());
        return QString::fromUtf8(process.readAllStandardOutput()).split(QChar(u'\0'));
    };
    const QString alphabet = u"'\"`$\\!*?;&|<>(){}[]#~ \n\t-=%^ä€😀a"_s;
    QRandomGenerator random(7);
    const auto word = [&](bool typed) {
        QString word = random.bounded(6) == 0 ? u"-n"_s : QString();
        for (int i = random.bounded(12); i >= 0; --i) {
            const QChar letter = alphabet.at(random.bounded(int(alphabet.size())));
            if (!letter.isSurrogate() && (!typed || !letter.isSpace()))
                word += letter;
        }
        return word.isEmpty() ? u"x"_s : word;
    };
    DevDesk at = desk();
    at.project.id = u"p"_s;
    WorkShells shells(terminals, services.shells, devModule, nullptr);
    DevServerAgent agent(at, shells, nullptr);
    for (int round = 0; round < 40; ++round) {
        const QStringList words { word(false), word(false), word(false) };
        QString command = u"printf '%s\\0'"_s;
        for (const QString& each : words)
            command += u' ' + posixQuoted(each);
        for (const QString& shell : { u"/bin/sh"_s, u"/bin/bash"_s })
            ASSERT_EQ(run(shell, command).mid(0, 3), words) << command.toStdString();

        at.project.slug = word(true);
        agent.setServerAgentName(word(true));
        agent.setServerAgentRole(word(true));
        agent.setServerAgentTask(word(true) + u"\n\x1b[31m\x03"_s);
        agent.setDryRun(round % 2 == 0);
        const QString task = agent.serverAgentTask().section(u'\n', 0, 0);
        const QStringList expected { round % 2 == 0 ? u"1"_s : QString(), at.project.slug, agent.serverAgentName(),
            agent.serverAgentRole(), task + u" [31m"_s };
        ASSERT_EQ(run(u"/bin/sh"_s, agent.serverAgentCommand()).mid(0, 5), expected)
            << agent.serverAgentCommand().toStdString();
    }
}

}
