#pragma once

#include "Engines/EngineManager.h"
#include "Engines/EngineSpec.h"
#include "Foundation/BackgroundQueue.h"
#include "Foundation/Literals.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/UserDefaults.h"
#include "Notifications/Notifier.h"
#include "Platform/AppPaths.h"
#include "Platform/Keychain.h"
#include "Store/Core/LocalDB.h"
#include "Support/FakeDesktop.h"
#include "Support/FakeKeyring.h"
#include "Support/FakeNotificationService.h"
#include "Support/FakePortHolders.h"
#include "Support/Places.h"
#include "Support/PlayedLauncher.h"

#include <QDir>
#include <QTemporaryDir>

namespace corvane {

/// An engine manager with its own database and one engine that prints what it is told to. For programs without a test
/// framework: the fuzz targets and the benchmarks.
class PlayedEngine final {
public:
    /// `database` is a path or ":memory:". With a launcher, the caller starts the engines, as real child processes.
    PlayedEngine(Scheduler& scheduler, const QString& database, ProcessLauncher* launcher = nullptr)
        : m_keychain(m_keyring, m_paths.secretsFile(), scheduler)
        , m_notifier(m_banners, m_centre, m_defaults, scheduler, [] { })
        , m_engines({ m_paths, scheduler, launcher ? *launcher : m_played, m_ports, m_background, m_keychain,
                        m_notifier, m_desktop },
              std::make_unique<LocalDB>(
                  database, LocalDB::SchemaFolders { m_paths.resources, {} }, scheduler, m_defaults, m_centre))
    {
        QDir().mkpath(engineDir(m_paths));
        m_account.id = QUuid::createUuid();
        m_account.slug = u"main"_s;
        if (!launcher)
            m_engines.start(m_account);
    }

    void print(const QByteArray& lines) { m_played.print(lines); } ///< complete lines only
    EngineManager& engines() { return m_engines; }
    const Account& account() const { return m_account; }

private:
    QTemporaryDir m_folder;
    AppPaths m_paths { m_folder.path(), m_folder.path(), m_folder.filePath(u"defaults.ini"_s),
        QStringLiteral(CORVANE_SOURCE) };
    PlayedLauncher m_played;
    Account m_account;
    UserDefaults m_defaults { m_paths.defaultsFile };
    NotificationCentre m_centre;
    FakePortHolders m_ports;
    BackgroundQueue m_background;
    FakeKeyring m_keyring;
    Keychain m_keychain;
    FakeNotificationService m_banners;
    FakeDesktop m_desktop;
    Notifier m_notifier;
    EngineManager m_engines;
};

}
