#pragma once

#include "Browser/BrowserView.h"
#include "Platform/Linux/Services.h"
#include "Platform/PortHolders.h"
#include "Platform/ProcessLauncher.h"
#include "Support/Await.h"
#include "Support/FakeDesktop.h"
#include "Support/LoopbackWeb.h"
#include "Support/PlayedConnection.h"
#include "Support/StoreTest.h"

#include <QDirIterator>
#include <QElapsedTimer>
#include <QTcpServer>

namespace corvane {

/// A browser view with its own database and a project, and helpers to start a real browser.
class BrowserTest : public StoreTest {
protected:
    BrowserTest()
    {
        open();
        m_db->run(u"INSERT INTO project(id, slug, name) VALUES('pj:shop','shop','Shop');"_s, {});
        QTcpServer free;
        free.listen(QHostAddress::LocalHost);
        options.port = free.serverPort();
        options.hasSandbox = false;
        options.startLimit = seconds(60);
    }

    BrowserSurroundings surroundings() { return { m_clock, *launcher, *holders, m_home.paths(), options }; }
    std::unique_ptr<BrowserView> makeView()
    {
        const auto terminal = [this](const QString& label, const QString& command) {
            shells.append(label + u": "_s + command);
        };
        auto view = std::make_unique<BrowserView>(
            BrowserView::Surroundings { *m_db, m_defaults, desktop, surroundings(), terminal });
        view->setProject({ u"pj:shop"_s, u"shop"_s, u"Shop"_s });
        return view;
    }

    /// Advances the clock in real time, so that a real browser is subject to the real timeouts.
    bool awaitLive(const std::function<bool()>& condition)
    {
        QElapsedTimer world;
        world.start();
        qint64 seen = 0;
        return await([&] {
            const qint64 now = world.elapsed();
            m_clock.advance(Milliseconds(now - seen));
            seen = now;
            return condition();
        });
    }

    /// The contents of all files that were written, except the browser's profile.
    QByteArray everythingWritten() const
    {
        QByteArray all;
        QDirIterator files(m_home.paths().applicationSupport, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            const bool isProfile = file.fileName().contains("InteractiveProfile"_L1);
            if (!isProfile && file.open(QIODevice::ReadOnly))
                all += file.readAll();
        }
        return all;
    }

    std::unique_ptr<ProcessLauncher> launcher = makeProcessLauncher(m_clock);
    std::unique_ptr<PortHolders> holders = makePortHolders();
    FakeDesktop desktop;
    BrowserOptions options;
    QStringList shells;
};

}
