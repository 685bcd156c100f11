#include "DevTest.h"

#include "Dev/ProjectMirror.h"
#include "Store/Work/DevRecords.h"

#include <QSignalSpy>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane {

using Projects = DevTest;

TEST_F(Projects, theMirrorKeepsWhatStandsBelowTheLogWhateverElseChanges)
{
    TerminalWorkspaceView view(desk());
    view.setShown(true);
    DevProjectForm& form = *view.rail()->form();
    form.beginNewProject();
    EXPECT_FALSE(form.complete());
    form.field(u"name"_s).type(u"Shop Site"_s);
    EXPECT_EQ(form.field(u"slug"_s).text(), "shop-site");
    EXPECT_EQ(form.field(u"controlDir"_s).text(), "~/nimb/state/projects/shop-site");
    form.submit();
    EXPECT_EQ(form.message() + form.notice(), "");
    EXPECT_EQ(table("SELECT id, slug, status FROM project;"), QStringList("pj:shop-site|shop-site|active"));
    const QString path = m_home.paths().home + "/nimb/state/projects/shop-site/PROJECT.md";
    EXPECT_EQ(content(path),
        "# Shop Site (shop-site)\n\n- **Goal:** (set me)\n- **Status:** active\n- **Category:** \n- **Exec host:** \n"
        "- **Repo:** \n\n## Log\n");

    const QByteArray log = "## Log\r\n- 12:00 first\n\n## Log\nmore \xff\n";
    written(u"nimb/state/projects/shop-site/PROJECT.md"_s, "# Old\nnotes\n" + log);
    form.beginEditProject();
    form.field(u"name"_s).type(u"Shop\n## Log\nfake"_s);
    form.field(u"slug"_s).type(u"other"_s);
    form.submit();
    EXPECT_EQ(content(path).indexOf("\n## Log"), content(path).indexOf("\n" + log)) << "a field ends no line";
    EXPECT_TRUE(content(path).endsWith("\n\n" + log));
    EXPECT_EQ(cell("SELECT slug FROM project;"), "shop-site") << "the rows of its work name it";

    // Text without a log was written by a person: it is kept below.
    EXPECT_TRUE(mirrorText({}, "my notes").endsWith("\n\n## Log\nmy notes"));
    EXPECT_EQ(mirrorText({}, mirrorText({}, "my notes")), mirrorText({}, "my notes"));

    QFile::setPermissions(QFileInfo(path).absolutePath(), QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    const QByteArray before = content(path);
    form.beginEditProject();
    form.field(u"goal"_s).type(u"Sell"_s);
    form.submit();
    QFile::setPermissions(
        QFileInfo(path).absolutePath(), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    EXPECT_EQ(cell("SELECT goal FROM project;"), "Sell");
    if (::geteuid() != 0) // root may write everywhere
        EXPECT_EQ(content(path), before);
}

TEST_F(Projects, noSlugLeadsOutOfTheFolderOfProjects)
{
    EXPECT_EQ(projectFolder("../../etc"), "-.-..-etc");
    EXPECT_EQ(projectFolder("a/../b"), "a-..-b");
    EXPECT_EQ(projectFolder("."), "-");
    EXPECT_EQ(projectFolder(""), "project");
    TerminalWorkspaceView view(desk());
    DevProjectForm& form = *view.rail()->form();
    project(u"Shop"_s);
    for (const char* slug : { "../up", "a/b", "..", "a b", "shop" }) {
        form.beginNewProject();
        form.field(u"slug"_s).type(QString::fromLatin1(slug));
        form.field(u"name"_s).type(u"X"_s);
        form.submit();
        EXPECT_NE(form.message(), "") << slug;
        EXPECT_TRUE(form.isOpen());
    }
    form.field(u"slug"_s).type(u"x"_s);
    form.field(u"repoPath"_s).type(u"here"_s);
    form.submit();
    EXPECT_EQ(form.message(), "The path of a folder begins with “/” or “~”.");
    // A project written by another program.
    m_db->exec("INSERT INTO project(id, slug, name, updated_at) VALUES('p','../../evil','Evil','9');");
    view.refresh();
    view.rail()->select(u"p"_s);
    form.beginEditProject();
    form.submit();
    EXPECT_TRUE(QFile::exists(m_home.paths().home + "/nimb/state/projects/-.-..-evil/PROJECT.md"));
    EXPECT_EQ(cell("SELECT slug FROM project WHERE id='p';"), "../../evil");
}

TEST_F(Projects, theRailListsByScopeGroupAndSearchAndLumoByItsWords)
{
    project(u"Shop"_s);
    project(u"Server"_s, {}, u"build.example"_s);
    project(u"Agents"_s, {}, desktop.hostName());
    m_db->exec("UPDATE project SET category='web' WHERE slug IN ('shop','agents');");
    createOpsAsk(db, { .projectSlug = u"shop"_s, .question = u"Why?"_s, .urgency = u"high"_s });
    TerminalWorkspaceView view(desk());
    view.setShown(true);
    DevRail& rail = *view.rail();
    const auto names = [](DevRail& of) {
        QStringList names;
        for (const OpsProjectSeed& seed : of.projects()->rows())
            names.append(seed.group + '/' + seed.name);
        names.sort();
        return names.join(' ');
    };
    EXPECT_EQ(names(rail), "Other/Server web/Agents web/Shop");
    QString counts;
    for (const TabItem& scope : rail.scopes())
        counts += scope.label + QString::number(scope.count) + ' ';
    EXPECT_EQ(counts, "All3 Local2 Remote1 Asks1 ");
    rail.setScope(TerminalWorkspaceScope::Remote);
    EXPECT_EQ(names(rail), "Other/Server");
    rail.setScopeId(u"asks"_s);
    EXPECT_EQ(names(rail), "web/Shop");
    rail.setSearch(u"none"_s);
    EXPECT_EQ(rail.emptyText(), "Nothing found");
    TerminalWorkspaceView lumo(desk(WorkConsoleContext::lumo()));
    lumo.setShown(true);
    EXPECT_EQ(names(*lumo.rail()), "web/Agents");
    m_db->exec("DROP TABLE project;");
    lumo.refresh();
    EXPECT_EQ(lumo.rail()->emptyText(), "No ops projects are registered yet. You can still open a local terminal.");
    EXPECT_EQ(lumo.srs()->emptyText(), "No project selected");
}

TEST_F(Projects, requirementsAreSeededOnceEditedAndNotLostToSomebodyElse)
{
    project(u"Shop"_s);
    TerminalWorkspaceView view(desk());
    view.setShown(true);
    view.setTab(u"srs"_s);
    DevSRS& srs = *view.srs();
    EXPECT_EQ(srs.emptyText(), "No SRS exists for this project yet.");
    srs.seed();
    EXPECT_EQ(srs.sections().at(0).text, "Shop development workspace.");
    EXPECT_EQ(srs.sections().at(1).shown, "Not defined yet.");
    EXPECT_EQ(srs.sections().at(7).shown, "No open questions recorded.");
    srs.edit(u"users"_s, u"Potters"_s);
    srs.save();
    EXPECT_FALSE(srs.dirty());
    EXPECT_EQ(seedDevSRS(db, view.desk().project)->users, "Potters");
    EXPECT_EQ(cell("SELECT overview || users FROM dev_srs;"), "Shop development workspace.Potters");

    srs.edit(u"flows"_s, u"Mine"_s);
    m_db->exec("UPDATE dev_srs SET flows='Theirs';");
    srs.save();
    EXPECT_TRUE(srs.overtaken());
    EXPECT_EQ(cell("SELECT flows FROM dev_srs;"), "Theirs");
    EXPECT_EQ(srs.sections().at(4).text, "Mine");
    srs.save();
    EXPECT_EQ(cell("SELECT flows FROM dev_srs;"), "Mine");
    m_db->exec("DROP TABLE dev_srs;");
    srs.edit(u"flows"_s, u"Lost?"_s);
    srs.save();
    EXPECT_EQ(srs.error() + srs.sections().at(4).text, "Could not save SRS.Lost?");
}

TEST_F(Projects, theFactsOfAProjectSayWhereItRunsAndWhatIsNotSet)
{
    TerminalWorkspaceView view(desk());
    view.setShown(true);
    const auto facts = [&] {
        QStringList lines;
        for (const Choice& fact : view.facts())
            lines.append(fact.id + ": " + fact.label);
        return lines;
    };
    EXPECT_EQ(facts().size(), 1) << "the safety note";
    const QString shop = project(u"Shop"_s, u"/srv/shop"_s, u"Mac"_s);
    project(u"Kiln"_s, {}, u"box"_s);
    m_db->exec("UPDATE project SET goal='' WHERE slug='shop';");
    view.refresh();
    view.rail()->select(shop);
    EXPECT_EQ(facts().mid(0, 6),
        (QStringList { "Goal: Not set yet.", "Slug: shop", "Status: active · priority 3", "Folder: /srv/shop",
            "Runs on: this computer", "Work context: created with its first row" }));
    view.tasks()->createQuickTask();
    EXPECT_TRUE(facts().contains("Work context: ctx:dev:shop"));
    createOpsAsk(db, { .projectSlug = u"shop"_s, .question = u"Why?"_s, .urgency = u"high"_s });
    view.refresh();
    QString counts;
    for (const TabItem& tab : view.tabs())
        counts += tab.count > 0 ? tab.id + QString::number(tab.count) : QString();
    EXPECT_EQ(counts, "team1");
    view.rail()->step(-9);
    const QString first = view.desk().project.slug;
    view.rail()->step(1);
    view.rail()->step(1);
    EXPECT_NE(view.desk().project.slug, first) << "the last of two";
    view.rail()->select(u"pj:kiln"_s);
    EXPECT_TRUE(facts().contains("Runs on: box"));
    view.setTab(u"nowhere"_s);
    EXPECT_EQ(view.tab(), "terminal");
    view.inspector()->setTab(u"nowhere"_s);
    EXPECT_EQ(view.inspector()->tab(), DevInspector::tabs().first().id);

    DevProjectForm& form = *view.rail()->form();
    form.beginEditProject();
    EXPECT_EQ(form.title(), "Project");
    form.setPriority(0);
    EXPECT_EQ(form.priority(), 1);
    form.setPriority(10);
    form.setStatus(u"paused"_s);
    form.submit();
    EXPECT_EQ(table("SELECT status, priority, exec_host FROM project WHERE slug='kiln';"), QStringList("paused|9|box"));
    form.beginNewProject();
    form.field(u"name"_s).type(u"Lost"_s);
    m_db->exec("CREATE TRIGGER full BEFORE INSERT ON project BEGIN SELECT RAISE(ABORT,'full'); END;");
    form.submit();
    EXPECT_EQ(form.message(), "Could not save project.");
    form.close();
    EXPECT_EQ(form.message(), "");
}

TEST_F(Projects, theFileForAgentsKeepsItsPlaceAndItsRights)
{
    OpsProjectRow row;
    row.slug = row.name = u"shop"_s;
    const QString real = written(u"real/PROJECT.md"_s, "## Log\nold\n");
    QFile::setPermissions(real, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup);
    const auto rights = QFile(real).permissions();
    const QString folder = QFileInfo(written(u"state/x"_s, "")).absolutePath();
    EXPECT_TRUE(QFile::link(real, folder + "/PROJECT.md"));
    EXPECT_EQ(writeProjectMirror(row, folder).value_or(u"-"_s), real) << "the file that the link names";
    EXPECT_TRUE(QFileInfo(folder + "/PROJECT.md").isSymLink());
    EXPECT_TRUE(content(real).endsWith("\n\n## Log\nold\n"));
    EXPECT_EQ(QFile(real).permissions(), rights);
    QDir().mkpath(folder + "/sub/PROJECT.md");
    EXPECT_TRUE(writeProjectMirror(row, folder + "/sub").error().message.endsWith("could not be read."));
}

TEST_F(Projects, theMirrorFindsTheLogByItsLineAndRewritesNothingForNothing)
{
    OpsProjectRow row;
    row.slug = row.name = u"shop"_s;
    const QByteArray head = mirrorText(row, {});
    EXPECT_TRUE(head.contains("**Goal:** (set me)\n"));
    row.goal = u"Sell"_s;
    EXPECT_TRUE(mirrorText(row, {}).contains("**Goal:** Sell\n"));
    row.goal.clear();
    for (const auto& [before, log] : { std::pair("x\n## Log", "## Log"), std::pair(" ## Log \ny", " ## Log \ny"),
             std::pair("### Log\n## Log \n## Log", "## Log \n## Log"), std::pair("## Logs\n", "## Log\n## Logs\n") })
        EXPECT_EQ(mirrorText(row, before), head.chopped(7) + log) << before;

    const QString folder = m_home.paths().home + "/p";
    const QString path = folder + "/PROJECT.md";
    EXPECT_EQ(writeProjectMirror(row, folder).value_or(u"-"_s), path);
    EXPECT_EQ(content(path), head);
    const auto number = [&] {
        struct stat file {};
        EXPECT_EQ(::stat(path.toUtf8().constData(), &file), 0);
        return file.st_ino;
    };
    const ino_t written = number();
    EXPECT_EQ(writeProjectMirror(row, folder).value_or(u"-"_s), path);
    EXPECT_EQ(number(), written) << "it is the same file";
    EXPECT_TRUE(QFile::resize(path, (64 << 20) + 1));
    EXPECT_TRUE(writeProjectMirror(row, folder).error().message.endsWith("could not be read."));
    EXPECT_EQ(QFileInfo(path).size(), (64 << 20) + 1);
    EXPECT_TRUE(writeProjectMirror(row, path).error().message.endsWith("could not be written.")) << "no folder";
    EXPECT_EQ(projectFolder("a_b.c d"), "a_b.c-d");
}

TEST_F(Projects, theFormSaysWhatIsWrongAndWhatItCouldNotWrite)
{
    TerminalWorkspaceView view(desk());
    view.setShown(true);
    DevProjectForm& form = *view.rail()->form();
    form.beginEditProject();
    EXPECT_FALSE(form.isOpen()) << "no project is chosen";
    form.beginNewProject();
    EXPECT_EQ(form.title() + '|' + form.buttonLabel() + '|' + form.status(), "New project|Save|active");
    const QSignalSpy changed(&form, &DevProjectForm::changed);
    form.submit();
    EXPECT_TRUE(form.isOpen());
    EXPECT_EQ(form.message() + cell("SELECT COUNT(*) FROM project;"), "0");
    form.setStatus(u"paused"_s);
    form.setPriority(4);
    EXPECT_EQ(changed.size(), 2);
    form.field(u"name"_s).type(u"A"_s);
    EXPECT_EQ(form.field(u"slug"_s).text(), "a");
    form.field(u"name"_s).type(u" "_s);
    EXPECT_EQ(form.field(u"slug"_s).text() + form.field(u"controlDir"_s).text(), "");
    for (const auto& [slug, fits] : { std::pair(".a", false), std::pair("a b", false), std::pair("A.b_c-1", true) }) {
        form.beginNewProject();
        form.field(u"name"_s).type(u"X"_s);
        form.field(u"slug"_s).type(QString::fromLatin1(slug));
        form.submit();
        EXPECT_EQ(form.message().isEmpty(), fits) << slug;
        EXPECT_EQ(form.isOpen(), !fits) << slug;
    }
    EXPECT_EQ(view.desk().project.slug, "A.b_c-1") << "what was saved is chosen";
    form.beginNewProject();
    form.field(u"name"_s).type(u"Again"_s);
    form.field(u"slug"_s).type(u"A.b_c-1"_s);
    form.submit();
    EXPECT_EQ(form.message(), "“A.b_c-1” is a project already. Give this one another slug.");
    form.close();
    const auto closed = changed.size();
    form.close();
    EXPECT_EQ(changed.size(), closed);

    written(u"blocked"_s, "a file");
    form.beginEditProject();
    EXPECT_EQ(
        form.status() + QString::number(form.priority()), "active" + QString::number(view.desk().project.priority));
    form.field(u"controlDir"_s).type(u"~/blocked"_s);
    form.submit();
    EXPECT_FALSE(form.isOpen());
    EXPECT_EQ(form.notice(),
        "The project is saved. Its file for agents is not: " + m_home.paths().home
            + "/blocked/PROJECT.md could not be written.");
    EXPECT_EQ(cell("SELECT control_dir FROM project;"), "~/blocked");
    form.dismissNotice();
    EXPECT_EQ(form.notice(), "");

    m_db->exec("UPDATE project SET control_dir='', slug='shop';");
    view.refresh();
    form.beginEditProject();
    EXPECT_EQ(form.field(u"controlDir"_s).text(), "~/nimb/state/projects/shop");
    EXPECT_TRUE(form.field(u"slug"_s).readOnly());
    form.field(u"controlDir"_s).type({});
    form.submit();
    EXPECT_EQ(cell("SELECT control_dir || slug FROM project;"), "~/nimb/state/projects/shopshop");
}

TEST_F(Projects, theRailStepsWithinItsListAndSearchesEveryWordOfAProject)
{
    TerminalWorkspaceView view(desk());
    view.setShown(true);
    DevRail& rail = *view.rail();
    rail.step(1);
    EXPECT_EQ(rail.emptyText(), "No ops projects are registered yet. You can still open a local terminal.");
    for (const QString& name : { u"Axe"_s, u"Bell"_s, u"Cup"_s })
        project(name, {}, name == u"Cup"_s ? u"LOCALHOST "_s : u"box"_s);
    m_db->exec("UPDATE project SET category='Tools' WHERE slug IN ('axe','cup');");
    view.refresh();
    EXPECT_EQ(rail.emptyText(), "");
    EXPECT_EQ(rail.scopeId(), "all");
    const QSignalSpy changed(&rail, &DevRail::changed);
    rail.setScopeId(u"all"_s);
    rail.setScopeId(u"none"_s);
    rail.setSearch({});
    EXPECT_EQ(changed.size(), 0);
    rail.select(u"pj:axe"_s);
    QStringList walk;
    for (const int by : { 1, 1, 1, -1, -5 }) {
        rail.step(by);
        walk.append(view.desk().project.slug);
    }
    EXPECT_EQ(walk.join(' '), "cup bell bell cup axe") << "by groups";
    for (const auto& [search, found] : { std::pair("TOOLS", 2), std::pair(" bell ", 1), std::pair("cup works", 1),
             std::pair("box", 2), std::pair("nowhere", 0) }) {
        rail.setSearch(QString::fromLatin1(search));
        EXPECT_EQ(rail.projects()->rows().size(), found) << search;
    }
    rail.setSearch({});
    rail.setScopeId(u"local"_s);
    EXPECT_EQ(rail.scopeId(), "local");
    EXPECT_EQ(rail.projects()->rows().size(), 1);
    rail.setScopeId(u"asks"_s);
    EXPECT_EQ(rail.emptyText(), "Nothing found");

    // Where a shell of a project starts.
    m_db->exec("UPDATE project SET repo_path='/no/such', control_dir='~/ctl';");
    rail.setScopeId(u"all"_s);
    const QString folder = QFileInfo(written(u"ctl/x"_s, "")).absolutePath();
    EXPECT_EQ(view.desk().directory(), folder);
    EXPECT_EQ(view.desk().expanded(u"~"_s), m_home.paths().home);
    EXPECT_EQ(view.desk().expanded(u"~x"_s), "~x");
}

}
