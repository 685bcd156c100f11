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

TEST_F(Workspace, whatNeedsAProjectOrATerminalSaysSo)
{
    TerminalWorkspaceView view(desk());
    view.setShown(true);
    DevTasks& tasks = *view.tasks();
    for (const auto action :
        { &DevTasks::createQuickTask, &DevTasks::proposeDevDecision, &DevTasks::taskFromTerminal }) {
        tasks.dismissNotice();
        (tasks.*action)();
        EXPECT_EQ(tasks.notice(), "No project selected");
        EXPECT_TRUE(tasks.failed());
    }
    view.memory()->stageMemoryDraft(u"fact"_s);
    EXPECT_EQ(view.memory()->memoryDraft(), "DEV fact:\n- Fact:\n- Evidence:\n- Applies to:");
    view.memory()->saveTerminalTranscriptMemory();
    EXPECT_EQ(view.memory()->notice(), "No terminal of this project is open.");
    EXPECT_TRUE(view.memory()->failed());
    project(u"Shop"_s);
    view.refresh();
    EXPECT_EQ(tasks.notice(), "") << "it was about another project";
    tasks.bugFromTerminal();
    EXPECT_EQ(tasks.notice(), "No terminal of this project is open.");
    view.memory()->stageMemoryDraft(u"lesson"_s);
    EXPECT_TRUE(view.memory()->memoryDraft().startsWith("Shop lesson:"));
    EXPECT_EQ(view.memory()->memoryDraftKind(), "lesson");
    const QSignalSpy drafted(view.memory(), &DevMemory::changed);
    view.memory()->setMemoryDraftKind(u"lesson"_s);
    EXPECT_EQ(drafted.size(), 0);
    view.memory()->setMemoryDraftKind(u"command"_s);
    EXPECT_EQ(drafted.size(), 1);
    tasks.createQuickTask();
    EXPECT_EQ(tasks.item()->title() + '|' + tasks.item()->owner(), "Define next development task|Oskel") << "opened";
    EXPECT_EQ(tasks.openRows().size(), 1);
    tasks.proposeDevDecision();
    EXPECT_EQ(tasks.notice(), "A decision waits in Approvals.");
    EXPECT_FALSE(tasks.failed());
    view.showItem(tasks.openRows().first().id);
    EXPECT_EQ(view.tab() + '|' + tasks.item()->title(), "tasks|Define next development task");
    tasks.item()->markDone();
    EXPECT_EQ(tasks.openRows().size(), 0);
    EXPECT_EQ(tasks.board()->lane(3)->rows().size(), 1);
    view.team()->registerAgent(u"claude"_s);
    EXPECT_EQ(table("SELECT name, role, session_id FROM work_agent;"), QStringList("Claude|worker|"));
    EXPECT_EQ(view.team()->agents()->rows().size(), 1);

    view.create()->begin(u"ask"_s, {}, u"Which port?"_s);
    lumo.model.willAnswer("8080.");
    view.create()->submit();
    EXPECT_EQ(table("SELECT question, answer, answered_by FROM ask;"), QStringList("Which port?|8080.|LumoAI"));
    m_db->exec("DROP TABLE work_item; DROP TABLE work_agent; DROP TABLE work_decision;");
    tasks.createQuickBug();
    EXPECT_EQ(tasks.notice(), "Could not save the item.");
    tasks.proposeDevDecision();
    EXPECT_EQ(tasks.notice(), "Could not save the decision.");
    view.team()->registerAgent(u"codex"_s);
    EXPECT_EQ(view.team()->error(), "Could not save the agent.");
}

TEST_F(Workspace, theCommandThatStartsAProjectComesFromItsFiles)
{
    const auto command = [&](const QString& folder, const QString& file, const QByteArray& text) {
        return devServerCommand(QFileInfo(written(folder + u'/' + file, text)).absolutePath());
    };
    EXPECT_EQ(command(u"a"_s, u"package.json"_s, R"({"scripts":{"test":"x"}})"), "");
    EXPECT_EQ(command(u"a"_s, u"run"_s, "x"), "") << "it is no program";
    QFile::setPermissions(m_home.paths().home + "/a/run", QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    EXPECT_EQ(devServerCommand(m_home.paths().home + "/a"), "./run");
    EXPECT_EQ(command(u"a"_s, u"manage.py"_s, ""), "python3 manage.py runserver");
    EXPECT_EQ(command(u"a"_s, u"go.mod"_s, ""), "go run .");
    EXPECT_EQ(command(u"a"_s, u"Cargo.toml"_s, ""), "cargo run");
    EXPECT_EQ(command(u"a"_s, u"Makefile"_s, "all: dev\n\tdev:\nserve: all\n"), "make serve");
    EXPECT_EQ(command(u"a"_s, u"Makefile"_s, "run:\n"), "make run");
    EXPECT_EQ(command(u"a"_s, u"package.json"_s, R"({"scripts":{"start":"x"}})" + QByteArray(1 << 20, ' ')), "make run")
        << "a file of more than a megabyte is not read";
    EXPECT_EQ(command(u"a"_s, u"package.json"_s, R"({"scripts":{"start":"x"}})"), "npm run start");
    EXPECT_EQ(command(u"a"_s, u"pnpm-lock.yaml"_s, ""), "pnpm run start");

    project(u"Shop"_s, u"~/b"_s);
    const QString far = project(u"Far"_s, u"/srv/far"_s, u" box "_s);
    TerminalWorkspaceView view(desk());
    view.setShown(true);
    const auto runs = [&](const QString& kind) {
        view.setTab(u"memory"_s);
        view.launcher()->runQuickAction(kind);
        EXPECT_EQ(view.tab(), "terminal");
        return terminals.current()->initialCommand();
    };
    view.rail()->select(far);
    EXPECT_EQ(view.launcher()->notice(), "") << "a folder elsewhere is not looked for here";
    EXPECT_EQ(runs(u"ssh"_s), "ssh -- 'box'");
    view.rail()->select(u"pj:shop"_s);
    EXPECT_EQ(runs(u"ssh"_s), "echo 'SSH target not set for this project yet.'");
    EXPECT_EQ(runs(u"dev server"_s), "ls -la && echo 'Pick the command that starts this project.'");
    EXPECT_EQ(runs(u"codex"_s), "codex");
    EXPECT_TRUE(runs(u"logs"_s).startsWith("ls -la"));
    written(u"b/go.mod"_s, "");
    view.refresh();
    EXPECT_EQ(runs(u"dev server"_s), "go run .");
    view.launcher()->openFolder();
    EXPECT_EQ(desktop.openedFiles, QStringList(m_home.paths().home + "/b"));
    const int before = terminals.count();
    view.openProject(far);
    EXPECT_EQ(terminals.current()->initialCommand() + QString::number(terminals.count() - before), "ssh -- 'box'0");
}

TEST_F(Workspace, healthWarnsOfWhatIsMissingSilentOrUnanswered)
{
    const QString id = project(u"Shop"_s, u"~/gone"_s);
    m_db->run("INSERT INTO tab(id, current_project_id, name, heartbeat_at, created_at) VALUES('t',?,'a',?,'1'), "
              "('u',?,'b','','1');",
        { id, isoTime(m_clock.nowMs()), id });
    createOpsAsk(db, { .projectSlug = u"shop"_s, .question = u"Why?"_s, .urgency = u"low"_s });
    TerminalWorkspaceView view(desk());
    view.setShown(true);
    view.team()->registerAgent(u"codex"_s);
    m_db->exec("UPDATE work_agent SET status='running', heartbeat_at='';");
    const auto shown = [&] {
        QStringList lines;
        view.health()->reload();
        EXPECT_TRUE(await([&] { return !view.health()->busy(); }));
        for (const DevHealthLine& line : view.health()->rows()) {
            if (line.id == "folder" || line.id == "tabs" || line.id == "asks" || line.id == "agents")
                lines.append(QStringList { line.id, line.value, line.detail, line.tone }.join('|'));
        }
        return lines;
    };
    EXPECT_EQ(shown(),
        (QStringList {
            "folder|not there|~/gone|warn", "tabs|1 live|1 down|warn", "asks|1||warn", "agents|1|1 silent|warn" }));
    EXPECT_EQ(view.health()->rows().first().detail, "Max 2 local processes.");
    written(u"gone/x"_s, "");
    m_db->exec("DELETE FROM tab WHERE id='u'; UPDATE ask SET status='answered'; UPDATE work_agent SET status='ready';");
    view.refresh();
    EXPECT_EQ(
        shown(), (QStringList { "folder|there|~/gone|good", "tabs|1 live||good", "asks|0||good", "agents|1||good" }));
}

}
