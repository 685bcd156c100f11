#pragma once

#include "Dev/TerminalWorkspaceView.h"
#include "Platform/Linux/Services.h"
#include "Platform/PortHolders.h"
#include "Platform/ProcessLauncher.h"
#include "Support/Await.h"
#include "Terminals/TerminalsView.h"
#include "Work/WorkTest.h"

#include <QDir>
#include <QFile>

namespace corvane {

/// The Dev hub with a real database and real shells.
class DevTest : public WorkTest {
protected:
    DevDesk desk(const WorkConsoleContext& console = WorkConsoleContext::dev())
    {
        return { .work = services,
            .terminals = terminals,
            .browser = browser,
            .desktop = desktop,
            .home = m_home.paths().home,
            .console = console };
    }

    /// Inserts an active project and returns its id.
    QString project(const QString& name, const QString& repo = {}, const QString& host = {})
    {
        OpsProjectRow row;
        row.slug = name.toLower();
        row.name = name;
        row.goal = name + u" works"_s;
        row.status = u"active"_s;
        row.repoPath = repo;
        row.execHost = host;
        return upsertOpsProject(db, row)->id;
    }

    LumoTerminalSession& shell(TerminalWorkspaceView& view, const std::string& script)
    {
        LumoTerminalSession& session
            = terminals.createLocalSession(u"test"_s, { "/bin/sh", { "-c", script }, {}, {}, {} });
        session.view({ 120, 20 });
        EXPECT_TRUE(await([&] { return session.transcript().snapshot(500).contains(u"ready"_s); }));
        view.refresh();
        return session;
    }

    QString written(const QString& path, const QByteArray& text)
    {
        const QString whole = m_home.paths().home + u'/' + path;
        QDir().mkpath(QFileInfo(whole).absolutePath());
        QFile file(whole);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        return whole;
    }
    static QByteArray content(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    const std::unique_ptr<ProcessLauncher> launcher = makeProcessLauncher(m_clock);
    const std::unique_ptr<PortHolders> portHolders = makePortHolders();
    BrowserView browser { { db, m_defaults, desktop, { m_clock, *launcher, *portHolders, m_home.paths(), {} }, {} } };
    TerminalsView terminals { { m_clock, m_defaults, desktop, m_home.paths().home, {} } };
};

}
