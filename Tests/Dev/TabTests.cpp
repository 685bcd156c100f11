#include "DevTest.h"

#include "Foundation/Ids.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Work/DevRecords.h"
#include "Support/PlayedConnection.h"
#include "Support/Rows.h"

#include <QSignalSpy>

namespace corvane {

using Tabs = DevTest;

TEST_F(Tabs, anAssistantSaysWhatItsLaunchDoesAndWithWhichTerminal)
{
    project(u"Shop"_s);
    TerminalWorkspaceView view(desk());
    view.setShown(true);
    DevAssistant& assistant = *view.assistant();
    QStringList targets;
    for (const Choice& choice : assistant.targets())
        targets.append(choice.id + ' ' + choice.label);
    EXPECT_EQ(targets.join('|'), "codex Codex|claude Claude|terminal Terminal");
    EXPECT_FALSE(assistant.promptHint().isEmpty());
    QStringList launches;
    const QSignalSpy changed(&assistant, &DevAssistant::changed);
    for (const QString& target : { u"codex"_s, u"claude"_s, u"claude"_s, u"none"_s, u"terminal"_s }) {
        assistant.setTarget(target);
        launches.append(assistant.target() + ": " + assistant.launchLabel() + ". " + assistant.targetText());
    }
    EXPECT_EQ(changed.size(), 2);
    const QString claude = u"claude: Copy the packet, start Claude. A new terminal lists the running claude processes, "
                           "then starts claude. Keep them under two."_s;
    EXPECT_EQ(launches,
        (QStringList { u"codex: Copy the packet, start Codex. A new terminal starts codex. Paste the packet there when "
                       "it is ready."_s,
            claude, claude, claude,
            u"terminal: Copy the packet. The packet is copied, and the selected terminal says so."_s }));
    EXPECT_EQ(assistant.transcriptText(), "No terminal of this project is open");

    QString copied;
    QObject::connect(&assistant, &DevAssistant::copyRequested, [&](const QString& text) { copied = text; });
    assistant.copyPacket();
    EXPECT_EQ(copied, assistant.packet());
    EXPECT_TRUE(copied.contains("Project: Shop\n"_L1));
    EXPECT_EQ(assistant.notice(), "The packet is on the clipboard.");
    assistant.dismissNotice();
    EXPECT_EQ(assistant.notice(), "");
    assistant.launchAssistant(); // into the selected terminal, but there is none
    EXPECT_EQ(terminals.current()->title() + '|' + terminals.current()->initialCommand(),
        "shop-ai-context-1|echo 'Corvane context copied to clipboard.'");
    assistant.setTarget(u"codex"_s);
    assistant.launchAssistant();
    EXPECT_EQ(terminals.current()->title() + '|' + terminals.current()->initialCommand(),
        "shop-ai-codex-2|echo 'Corvane context copied to clipboard.'; codex");
    EXPECT_EQ(assistant.transcriptText(), "With what shop-ai-codex-2 shows, secrets masked");
    view.setTab(u"assistant"_s);
    const auto before = changed.size();
    assistant.setAssistantPrompt(u"Go"_s);
    assistant.setAssistantPrompt(u"Go"_s);
    EXPECT_EQ(changed.size(), before + 1);
    EXPECT_TRUE(assistant.packet().endsWith("User request:\nGo"_L1));
}

TEST_F(Tabs, thePacketLeavesOutWhatIsAnsweredRejectedOrDone)
{
    const QString id = project(u"Shop"_s);
    TerminalWorkspaceView view(desk());
    view.setShown(true);
    view.tasks()->createQuickTask();
    view.tasks()->item()->markDone();
    createOpsAsk(db, { .project = id, .question = u"Open?"_s, .urgency = u"low"_s });
    createOpsAsk(db, { .project = id, .question = u"Over?"_s, .urgency = u"low"_s });
    m_db->exec("UPDATE ask SET status='answered' WHERE question='Over?';");
    for (const QString& body : { u"Good"_s, u"Bad"_s }) {
        view.memory()->setMemoryDraft(body);
        view.memory()->proposeMemory();
    }
    m_db->exec("UPDATE work_memory SET status='rejected' WHERE body='Bad';");
    auto* const page = new PlayedConnection;
    view.browser()->browser()->adopt(page);
    page->say(u"Page.frameNavigated"_s, { { u"frame"_s, QJsonObject { { u"url"_s, u"http://x/?token=abc"_s } } } });
    view.setTab(u"assistant"_s);
    const QString packet = view.assistant()->packet();
    EXPECT_TRUE(packet.contains("Browser URL: http://x/?token=[redacted]\n"_L1));
    EXPECT_TRUE(packet.contains("Open work_item rows:\n- none\n\nPending asks:\n- low: Open?\n\nShared work_memory:\n"
                                "- fact: Good\n\nRecent"_L1))
        << packet.toStdString();
    page->fail({});
    view.assistant()->reload();
    EXPECT_TRUE(view.assistant()->packet().contains("Browser URL: \n"_L1)) << "no browser runs";
}

TEST_F(Tabs, whatHappensInTheBrowserReachesTheWorkspaceThatIsShown)
{
    const QString id = project(u"Shop"_s);
    TerminalWorkspaceView view(desk());
    TerminalWorkspaceView hidden(desk(WorkConsoleContext::lumo()));
    hidden.refresh();
    EXPECT_EQ(browser.project().id, "") << "it is not shown";
    view.setShown(true);
    EXPECT_EQ(browser.project().id + '|' + browser.project().slug + '|' + browser.project().name, id + "|shop|Shop");
    const auto item = insertWorkItem(db, { devModule, {}, u"bug"_s, u"It fails"_s, u"low"_s, {}, u"x"_s, {} });
    m_db->exec("UPDATE work_item SET context_id='ctx:dev:shop';");
    EXPECT_EQ(view.tasks()->openRows().size(), 0);
    Q_EMIT browser.wrote();
    EXPECT_EQ(view.tasks()->openRows().size(), 1);
    EXPECT_NE(cell("SELECT id FROM work_context;"), "") << "the rows of the project have one";
    Q_EMIT browser.itemRequested(item->id);
    EXPECT_EQ(view.tab() + '|' + view.tasks()->item()->title(), "tasks|It fails");
    Q_EMIT browser.history()->playRequested({ { .kind = BrowserStep::Kind::Type, .isWithheld = true } });
    EXPECT_EQ(view.tab(), "browser");
    EXPECT_EQ(hidden.tab() + '|' + hidden.tasks()->item()->title(), "terminal|");

    const QSignalSpy changed(&view, &TerminalWorkspaceView::changed);
    auto* const page = new PlayedConnection;
    browser.browser()->adopt(page);
    page->logError(u"it broke"_s);
    m_clock.advance(Milliseconds(50));
    EXPECT_GT(changed.size(), 0);
    QStringList counts;
    for (const TabItem& tab : view.tabs())
        counts.append(tab.id + QString::number(tab.count));
    EXPECT_EQ(counts.join(' '), "terminal0 assistant0 browser1 srs0 tasks0 team0 memory0 server0 health0");
    for (const TabItem& tab : view.tabs()) {
        const auto before = changed.size();
        view.setTab(tab.id);
        view.setTab(tab.id);
        EXPECT_EQ(view.tab(), tab.id);
        EXPECT_EQ(changed.size(), before + 1) << tab.id.toStdString();
    }
    m_db->run("INSERT INTO dev_browser_session(id, project_id, url, status) VALUES('s',?,'http://x','live');", { id });
    view.setTab(u"browser"_s);
    EXPECT_EQ(column(*browser.history()->rows(), "title"), QStringList("http://x"));

    m_db->exec("DELETE FROM project;");
    view.refresh();
    EXPECT_EQ(browser.project().id, "") << "no project is left";
}

TEST_F(Tabs, theTerminalsOfAWorkspaceAreCountedAndOpenedInItsProject)
{
    const QString id = project(u"Shop"_s);
    TerminalWorkspaceView view(desk());
    view.setShown(true);
    view.setTab(u"assistant"_s);
    const QSignalSpy changed(&view, &TerminalWorkspaceView::changed);
    const QSignalSpy tasks(view.tasks(), &DevTasks::changed);
    view.openTerminal(u"Logs of it"_s, u"ls"_s);
    EXPECT_EQ(view.tab(), "terminal");
    EXPECT_EQ(terminals.current()->title() + '|' + terminals.current()->initialCommand(), "shop-logs-of-it-1|ls");
    EXPECT_EQ(terminals.current()->projectId(), id);
    EXPECT_EQ(view.tabs().first().count, 1);
    EXPECT_GT(changed.size(), 0);
    EXPECT_GT(tasks.size(), 0);
    const auto before = changed.size();
    terminals.rename(terminals.current()->id(), u"another name"_s);
    EXPECT_EQ(changed.size(), before) << "a title changes nothing here";
    const LumoTerminalSession* const first = terminals.current();
    terminals.createLocalSession(u"x"_s);
    EXPECT_EQ(changed.size(), before + 1);
    terminals.select(first->id());
    EXPECT_EQ(changed.size(), before + 2);
    view.setTab(u"assistant"_s);
    EXPECT_TRUE(view.assistant()->packet().contains("Selected terminal: shop-logs-of-it-1\n"_L1));
    terminals.step(1);
    EXPECT_TRUE(view.assistant()->packet().contains("Selected terminal: local-x-1\n"_L1));
}

TEST_F(Tabs, theServersAgentIsShownInATerminalAndNotStarted)
{
    TerminalWorkspaceView view(desk());
    view.setShown(true);
    view.setTab(u"server"_s);
    DevServerAgent& agent = *view.server();
    EXPECT_EQ(agent.taskHint(), "Work one bounded DEV task for local, report evidence, then stop or ask.");
    project(u"Shop"_s);
    view.refresh();
    EXPECT_EQ(agent.taskHint(), "Work one bounded DEV task for Shop, report evidence, then stop or ask.");
    const QSignalSpy changed(&agent, &DevServerAgent::changed);
    agent.setServerAgentName(u" "_s);
    agent.setServerAgentRole(u""_s);
    agent.setServerAgentRole(u""_s);
    agent.setServerAgentTask(u"Fix it"_s);
    agent.setDryRun(true);
    EXPECT_EQ(changed.size(), 3);
    const QString command = u"scripts/corvane-server-agent.sh 'shop' 'worker-01' 'implementer' 'Fix it'"_s;
    EXPECT_EQ(agent.serverAgentCommand(), "cd ~/nimb/apps/nimb-local && CORVANE_AGENT_DRY_RUN=1 " + command);
    agent.setDryRun(false);
    EXPECT_EQ(changed.size(), 4);
    EXPECT_EQ(agent.serverAgentCommand(), "cd ~/nimb/apps/nimb-local && " + command);
    EXPECT_EQ(agent.rules().size(), 6);
    view.setTab(u"tasks"_s);
    agent.showInTerminal();
    EXPECT_EQ(view.tab(), "terminal");
    LumoTerminalSession& shown = *terminals.current();
    EXPECT_EQ(shown.label(), "Server agent");
    shown.view({ 120, 20 });
    EXPECT_TRUE(await([&] {
        const QString text = shown.transcript().snapshot(2000);
        return text.contains(agent.relayCommand()) && text.contains(agent.tunnelCommand())
            && text.contains(agent.serverAgentCommand());
    })) << shown.transcript().snapshot(2000).toStdString();
}

TEST_F(Tabs, requirementsKeepWhatIsEditedAndSayWhoElseChangedThem)
{
    TerminalWorkspaceView view(desk());
    view.setShown(true);
    view.setTab(u"srs"_s);
    DevSRS& srs = *view.srs();
    EXPECT_FALSE(srs.canSeed());
    srs.seed();
    EXPECT_EQ(srs.error(), "Could not save SRS.");
    project(u"Shop"_s);
    view.refresh();
    EXPECT_TRUE(srs.canSeed() && !srs.present());
    EXPECT_EQ(srs.facts(), "");
    srs.seed();
    EXPECT_EQ(srs.error(), "");
    EXPECT_TRUE(!srs.canSeed() && srs.present());
    EXPECT_TRUE(srs.facts().startsWith("Changed "_L1)) << srs.facts().toStdString();

    const QSignalSpy changed(&srs, &DevSRS::changed);
    srs.edit(u"users"_s, u"Potters"_s);
    srs.edit(u"users"_s, u"Potters"_s);
    srs.edit(u"nothing"_s, u"x"_s);
    EXPECT_EQ(changed.size(), 1);
    view.refresh();
    EXPECT_TRUE(srs.dirty() && !srs.overtaken());
    m_db->exec("UPDATE dev_srs SET flows='Theirs';");
    view.refresh();
    EXPECT_TRUE(srs.overtaken());
    view.refresh();
    EXPECT_TRUE(srs.overtaken()) << "until it is saved or dropped";
    srs.revert();
    EXPECT_FALSE(srs.dirty() || srs.overtaken());
    EXPECT_EQ(srs.sections().at(1).text + srs.sections().at(4).text, "Theirs");
    const auto before = changed.size();
    srs.save();
    EXPECT_EQ(changed.size(), before) << "there is nothing to save";

    srs.edit(u"flows"_s, u"Mine"_s);
    m_db->exec("UPDATE dev_srs SET flows='Again';");
    srs.save();
    EXPECT_TRUE(srs.overtaken() && srs.error().isEmpty());
    srs.save();
    EXPECT_FALSE(srs.overtaken() || srs.dirty());
    EXPECT_EQ(cell("SELECT flows FROM dev_srs;"), "Mine");
    srs.edit(u"users"_s, u"Potters"_s);
    project(u"Kiln"_s);
    view.refresh();
    view.rail()->select(u"pj:kiln"_s);
    EXPECT_FALSE(srs.dirty() || srs.present()) << "it is another project's";
    m_db->exec("DELETE FROM dev_srs;");
    srs.edit(u"users"_s, u"Smiths"_s);
    srs.save();
    EXPECT_EQ(table("SELECT project_id, users FROM dev_srs;"), QStringList("pj:kiln|Smiths"));
    EXPECT_FALSE(srs.dirty());
}

TEST_F(Tabs, aTaskFromATerminalSaysWhatItCouldNotKeep)
{
    const QString shop = project(u"Shop"_s);
    TerminalWorkspaceView view(desk());
    view.setShown(true);
    DevTasks& tasks = *view.tasks();
    EXPECT_FALSE(tasks.createTerminalWorkItem(u"task"_s, u"low"_s, u"Here"_s)) << "there is no terminal";
    terminals.createLocalSession(u"x"_s, { "/bin/cat", {}, {}, {}, {} });
    EXPECT_FALSE(tasks.createTerminalWorkItem(u"task"_s, u"low"_s, u"Here"_s)) << "it shows nothing";
    for (const auto act : { &DevTasks::taskFromTerminal, &DevTasks::bugFromTerminal }) {
        tasks.dismissNotice();
        (tasks.*act)();
        EXPECT_EQ(tasks.notice(), "The terminal shows nothing yet.");
    }
    EXPECT_TRUE(tasks.failed());
    tasks.dismissNotice();
    EXPECT_TRUE(tasks.notice().isEmpty() && !tasks.failed());
    view.memory()->saveTerminalTranscriptMemory();
    EXPECT_EQ(view.memory()->notice(), "The terminal shows nothing yet.");
    EXPECT_TRUE(view.memory()->failed());
    view.memory()->dismissNotice();
    EXPECT_FALSE(view.memory()->failed());

    shell(view, "echo ready; cat");
    const QSignalSpy wrote(&tasks, &DevTasks::wrote);
    EXPECT_TRUE(tasks.createTerminalWorkItem(u"task"_s, u"low"_s, u"Here"_s));
    EXPECT_EQ(tasks.notice(),
        "“Follow up terminal output from local-test-2” is on the board, with what the terminal "
        "showed.");
    EXPECT_FALSE(tasks.failed());
    EXPECT_EQ(wrote.size(), 1);
    m_db->exec("DROP TABLE work_evidence;");
    EXPECT_TRUE(tasks.createTerminalWorkItem(u"task"_s, u"low"_s, u"Here"_s));
    EXPECT_EQ(tasks.notice(), "The item is on the board. Could not save the note.");
    EXPECT_TRUE(tasks.failed());
    tasks.createQuickTask();
    EXPECT_NE(tasks.item()->itemId(), "");
    project(u"Kiln"_s);
    view.refresh();
    EXPECT_NE(tasks.item()->itemId(), "") << "the same project";
    view.rail()->select(u"pj:kiln"_s);
    EXPECT_EQ(tasks.item()->itemId(), "");
    view.rail()->select(shop);
    m_db->exec("DROP TABLE work_item;");
    EXPECT_FALSE(tasks.createTerminalWorkItem(u"task"_s, u"low"_s, u"Here"_s));
    EXPECT_EQ(tasks.notice(), "Could not save the item.");

    tasks.openReport(u"/elsewhere/x.png"_s);
    EXPECT_EQ(tasks.notice(), "The evidence is not there any more: /elsewhere/x.png");
    EXPECT_TRUE(tasks.failed());
    tasks.dismissNotice();
    tasks.playSteps(u"/elsewhere/y.png"_s);
    EXPECT_EQ(tasks.notice(), "The evidence is not there any more: /elsewhere/y.png");
    const QString folder = QFileInfo(
        written(QDir(m_home.paths().home).relativeFilePath(browser.browser()->evidenceRoot() + "/shop/m/evidence.json"),
            "{}"))
                               .absolutePath();
    tasks.openReport(folder);
    EXPECT_TRUE(tasks.notice().isEmpty() && !tasks.failed());
    EXPECT_EQ(desktop.openedFiles, QStringList(folder + "/report.html"));
    EXPECT_EQ(terminalIssueTitle(u"x\nPermission DENIED\nTraceback here\nlast\n"_s), "Terminal issue: Traceback here");
    EXPECT_EQ(terminalIssueTitle(u"error "_s + QString(200, u'x')).size(), 116);
}

TEST_F(Tabs, healthCountsWhatRunsHereAndSkipsTheFolderOfAnotherMachine)
{
    TerminalWorkspaceView view(desk());
    view.setShown(true);
    DevHealth& health = *view.health();
    terminals.createLocalSession(u"x"_s, { "/bin/cat", {}, {}, {}, {} }).view({ 60, 10 });
    for (int n = 0; n < 3; ++n)
        shell(view, ": this is claude; echo ready; read x");
    ASSERT_TRUE(await([&] { return terminals.localSessions().front()->runningCommand() == u"cat"_s; }));
    const auto shown = [&] {
        health.reload();
        EXPECT_TRUE(health.busy());
        health.reload();
        EXPECT_TRUE(await([&] { return !health.busy(); }));
        QStringList ids;
        for (const DevHealthLine& line : health.rows())
            ids.append(line.id);
        return ids.join(' ');
    };
    EXPECT_EQ(shown(), "claude codex chromium node terminals");
    const auto line = [&](const QString& id) {
        for (const DevHealthLine& line : health.rows()) {
            if (line.id == id)
                return QStringList { line.title, line.value, line.detail, line.tone }.join('|');
        }
        return QString();
    };
    EXPECT_EQ(line(u"terminals"_s), "Terminals|4|a program runs in 1|");
    EXPECT_TRUE(line(u"claude"_s).startsWith("Local claude processes|"_L1));
    EXPECT_TRUE(line(u"claude"_s).endsWith("|Max 2 local processes.|warn"_L1)) << line(u"claude"_s).toStdString();
    EXPECT_TRUE(line(u"node"_s).endsWith("||"_L1));
    project(u"Shop"_s);
    view.refresh();
    EXPECT_EQ(shown(), "claude codex chromium node terminals folder tabs asks agents");
    EXPECT_EQ(line(u"folder"_s), "Project folder|not there|None is set.|warn");
    m_db->exec("UPDATE project SET exec_host='box', repo_path='~';");
    view.refresh();
    EXPECT_EQ(shown(), "claude codex chromium node terminals tabs asks agents");
    m_db->exec("UPDATE project SET exec_host=' STUDIO+1 ';");
    view.refresh();
    shown();
    EXPECT_EQ(line(u"folder"_s), "Project folder|there|~|good") << "this machine's name in other letters";
}

TEST_F(Tabs, theInspectorTheTeamAndTheDraftTellOnlyOfChanges)
{
    project(u"Shop"_s);
    TerminalWorkspaceView view(desk());
    view.setShown(true);
    DevInspector& inspector = *view.inspector();
    const QSignalSpy inspected(&inspector, &DevInspector::changed);
    for (const QString& tab : { u"team"_s, u"activity"_s, u"activity"_s, u"nowhere"_s })
        inspector.setTab(tab);
    EXPECT_EQ(inspector.tab(), "activity");
    EXPECT_EQ(inspected.size(), 1);
    for (const bool collapsed : { false, true, true })
        inspector.setCollapsed(collapsed);
    EXPECT_TRUE(inspector.collapsed());
    EXPECT_EQ(inspected.size(), 2);

    DevMemory& memory = *view.memory();
    EXPECT_EQ(memory.templates().size(), memory.kinds().size());
    EXPECT_FALSE(memory.emptyText().isEmpty());
    memory.setMemoryDraft(u" \n"_s);
    memory.proposeMemory();
    EXPECT_EQ(memory.notice(), "") << "there is nothing to propose";
    const QSignalSpy wrote(&memory, &DevMemory::wrote);
    const QSignalSpy told(&db.watch(), &StoreWatch::changed);
    memory.setMemoryDraft(u" Use tabs \n"_s);
    memory.proposeMemory();
    EXPECT_EQ(cell("SELECT body FROM work_memory;"), "Use tabs");
    EXPECT_EQ(memory.notice(), "It waits for your approval, under Memory.");
    EXPECT_FALSE(memory.failed());
    EXPECT_EQ(wrote.size(), 1);
    EXPECT_GT(told.size(), 0);
    const QSignalSpy drafted(&memory, &DevMemory::changed);
    memory.setMemoryDraft({});
    EXPECT_EQ(drafted.size(), 0);

    QStringList tools;
    for (const Choice& tool : view.team()->tools()) {
        tools.append(tool.label);
        view.team()->registerAgent(tool.id);
    }
    EXPECT_EQ(tools.join('|'), "Codex|Claude|Browser QA");
    EXPECT_EQ(cell("SELECT group_concat(name || ' ' || role, ', ') FROM (SELECT * FROM work_agent ORDER BY name);"),
        "Browser QA qa, Claude worker, Codex worker");
    LumoTerminalSession& session = shell(view, "echo ready; cat");
    view.team()->registerAgent(u"codex"_s);
    EXPECT_EQ(cell("SELECT session_id FROM work_agent WHERE name='Codex';"), session.id());
    EXPECT_EQ(view.team()->error(), "");
    QStringList actions;
    for (const Choice& action : view.launcher()->actions())
        actions.append(action.label);
    EXPECT_EQ(actions.join('|'), "Codex|Claude|Dev server|SSH|Logs");
}

}
