#pragma once

#include "Engines/EngineManager.h"
#include "Engines/EngineSpec.h"
#include "Foundation/BackgroundQueue.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/UserDefaults.h"
#include "Notifications/Notifier.h"
#include "Platform/AppPaths.h"
#include "Platform/Keychain.h"
#include "Platform/ProcessLauncher.h"
#include "Store/Core/LocalDB.h"
#include "Support/FakeDesktop.h"
#include "Support/FakeNotificationService.h"
#include "Support/FakePortHolders.h"
#include "Support/FakeSecretStore.h"
#include "Support/Places.h"

#include <QDir>
#include <QTemporaryDir>

namespace corvane {

/// A manager over a database of its own, with one engine that prints what it is told. For programs without a test
/// framework: the fuzz targets and the benchmarks.
class PlayedEngine final : private ProcessLauncher, private ChildProcess {
public:
    /// `database` is a path, or ":memory:". With a launcher the engines are real children instead.
    PlayedEngine(Scheduler& scheduler, const QString& database, ProcessLauncher* launcher = nullptr)
        : m_notifier(m_banners, m_centre, m_defaults, scheduler, [] { })
        , m_engines({ m_paths, scheduler, launcher ? *launcher : *this, m_ports, m_background, m_keychain, m_notifier,
                        m_desktop },
              std::make_unique<LocalDB>(
                  database, LocalDB::SchemaFolders { m_paths.resources, {} }, scheduler, m_defaults, m_centre))
    {
        QDir().mkpath(engineDir(m_paths));
        m_account.id = QUuid::createUuid();
        m_account.slug = QStringLiteral("main");
        if (!launcher)
            m_engines.start(m_account);
    }

    void print(const QString& chunk) { m_handlers.output({ chunk, nullptr }); }
    EngineManager& engines() { return m_engines; }
    const Account& account() const { return m_account; }

private:
    Result<std::shared_ptr<ChildProcess>> start(const ProcessSpec&, Handlers handlers) override
    {
        m_handlers = std::move(handlers);
        return std::shared_ptr<ChildProcess>(static_cast<ChildProcess*>(this), [](ChildProcess*) { });
    }
    int endMarked(const QString&, Ending) override { return 0; }
    qint64 pid() const override { return 1; }
    bool isRunning() const override { return true; }
    Result<void> write(const QByteArray&) override { return {}; }
    bool hasRead(const QByteArray&) override { return true; }
    bool withdraw(const QByteArray&) override { return false; }
    void terminate() override { }

    QTemporaryDir m_folder;
    AppPaths m_paths { m_folder.path(), m_folder.path(), m_folder.filePath(QStringLiteral("defaults.ini")),
        QStringLiteral(CORVANE_SOURCE) };
    Handlers m_handlers;
    Account m_account;
    UserDefaults m_defaults { m_paths.defaultsFile };
    NotificationCentre m_centre;
    FakePortHolders m_ports;
    BackgroundQueue m_background;
    FakeSecretStore m_secrets;
    Keychain m_keychain { m_secrets };
    FakeNotificationService m_banners;
    FakeDesktop m_desktop;
    Notifier m_notifier;
    EngineManager m_engines;
};

}
