#pragma once

#include "Engines/DraftDelivery.h"
#include "Engines/EngineManager.h"
#include "Foundation/BackgroundQueue.h"
#include "Foundation/Literals.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/UserDefaults.h"
#include "Notifications/Notifier.h"
#include "Platform/Keychain.h"
#include "Store/Core/LocalDB.h"
#include "Support/FakeAudioPlayer.h"
#include "Support/FakeDesktop.h"
#include "Support/FakeKeyring.h"
#include "Support/FakeLauncher.h"
#include "Support/FakeMicrophone.h"
#include "Support/FakeNotificationService.h"
#include "Support/FakePortHolders.h"
#include "Support/TemporaryHome.h"
#include "Support/VirtualScheduler.h"

namespace corvane {

/// What an engine manager needs, around the real database: a virtual clock and a fake machine. The scheduler and the
/// launcher can be replaced.
struct EngineSurroundings {
    EngineManager::Surroundings on(Scheduler& scheduler, ProcessLauncher& launcher)
    {
        return { home.paths(), scheduler, launcher, ports, background, keychain, notifier, desktop };
    }

    std::unique_ptr<LocalDB> openDatabase(Scheduler& scheduler)
    {
        return std::make_unique<LocalDB>(home.paths().database(),
            LocalDB::SchemaFolders { home.paths().resources, home.paths().home }, scheduler, defaults, centre);
    }

    TemporaryHome home;
    VirtualScheduler clock;
    UserDefaults defaults { home.paths().defaultsFile };
    NotificationCentre centre;
    FakePortHolders ports;
    BackgroundQueue background;
    FakeKeyring keyring;
    Keychain keychain { keyring, home.paths().secretsFile(), clock };
    FakeNotificationService banners;
    Notifier notifier { banners, centre, defaults, clock, [] {
                       } };
    FakeDesktop desktop;
    FakeMicrophone microphone;
    FakeAudioPlayer player;
};

/// An engine manager whose engines are played by the test.
struct EngineWorld : EngineSurroundings {
    /// Handles all pending events, which advances the clock by a millisecond.
    void settle() { clock.advance(Milliseconds(1)); }

    /// The value of a query as text; "-" for NULL or no row.
    QString cell(const QString& sql, const QList<SqlValue>& parameters = {})
    {
        return engines.db().scalar(sql, parameters).value_or(u"-"_s);
    }

    FakeLauncher launcher { clock };
    EngineManager engines { on(clock, launcher), openDatabase(clock) };
    DraftDelivery delivery { engines.db(), engines, clock };
};

}
