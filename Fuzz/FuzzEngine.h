#pragma once

#include "Engines/EngineManager.h"
#include "Foundation/BackgroundQueue.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/UserDefaults.h"
#include "Notifications/Notifier.h"
#include "Platform/AppPaths.h"
#include "Platform/Keychain.h"
#include "Platform/ProcessLauncher.h"
#include "Store/LocalDB.h"
#include "Support/FakeDesktop.h"
#include "Support/FakeNotificationService.h"
#include "Support/FakePortHolders.h"
#include "Support/FakeSecretStore.h"
#include "Support/VirtualScheduler.h"

#include <QTemporaryDir>

namespace corvane {

/// A manager over a database in memory, with one engine that prints what it is told.
class FuzzEngine final : private ProcessLauncher, private ChildProcess {
public:
    FuzzEngine()
    {
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) { });
        m_account.id = QUuid::createUuid();
        m_account.slug = QStringLiteral("fuzz");
        m_engines.start(m_account);
    }

    /// One chunk, and every event in it is handled.
    void print(const QString& text)
    {
        m_handlers.output({ text, nullptr });
        m_clock.advance(Milliseconds(1));
    }

    QString lastLog() const { return m_engines.runtime(m_account.id).lastLog; }

private:
    Result<std::shared_ptr<ChildProcess>> start(const ProcessSpec&, Handlers handlers) override
    {
        m_handlers = std::move(handlers);
        return std::shared_ptr<ChildProcess>(static_cast<ChildProcess*>(this), [](ChildProcess*) { });
    }
    qint64 pid() const override { return 1; }
    bool isRunning() const override { return true; }
    Result<void> write(const QByteArray&) override { return {}; }
    void terminate() override { }

    QTemporaryDir m_folder;
    AppPaths m_paths { m_folder.path(), m_folder.path(), m_folder.filePath(QStringLiteral("defaults.ini")),
        QStringLiteral(CORVANE_SOURCE) };
    VirtualScheduler m_clock;
    Handlers m_handlers;
    Account m_account;
    UserDefaults m_defaults { m_paths.defaultsFile };
    NotificationCentre m_centre;
    FakePortHolders m_ports;
    BackgroundQueue m_background;
    FakeSecretStore m_secrets;
    Keychain m_keychain { m_secrets };
    FakeNotificationService m_banners;
    Notifier m_notifier { m_banners, m_centre, m_defaults, m_clock, [] {
                         } };
    FakeDesktop m_desktop;
    EngineManager m_engines { { m_paths, m_clock, *this, m_ports, m_background, m_keychain, m_notifier, m_desktop },
        std::make_unique<LocalDB>(QStringLiteral(":memory:"), LocalDB::SchemaFolders { m_paths.resources, {} }, m_clock,
            m_defaults, m_centre) };
};

}
