#include "PlayedProgram.h"

#include "Foundation/Literals.h"
#include "Mirror.h"

#include "Platform/AddressBook.h"
#include "Platform/AudioPlayer.h"
#include "Platform/CalendarSource.h"
#include "Platform/Linux/Services.h"
#include "Platform/MachineFacts.h"
#include "Platform/MediaDecoder.h"
#include "Platform/Microphone.h"
#include "Platform/ProcessLauncher.h"
#include "Platform/SpeechRecogniser.h"
#include "Platform/SystemLanguageModel.h"
#include "Platform/ToolRunner.h"
#include "Platform/Tray.h"
#include "Support/FakeDesktop.h"
#include "Support/FakeKeyring.h"
#include "Support/FakeNotificationService.h"
#include "Support/FakePortHolders.h"

#include <QDir>
#include <QFile>

namespace corvane::bench {

namespace {

Machine machine(const AppPaths& paths, Scheduler& scheduler, std::unique_ptr<ProcessLauncher> launcher)
{
    Machine machine = thisMachine(paths, scheduler, 0077);
    if (launcher) {
        machine.modelRecogniser = makeModelRecogniser(*launcher);
        machine.basicRecogniser = makeBasicRecogniser(*launcher);
        machine.launcher = std::move(launcher);
    }
    machine.ports = std::make_unique<FakePortHolders>();
    machine.keyring = std::make_unique<FakeKeyring>();
    machine.notifications = std::make_unique<FakeNotificationService>();
    machine.desktop = std::make_unique<FakeDesktop>();
    return machine;
}

AppPaths pathsIn(const QString& folder, const QString& database)
{
    const QString share = folder + u"/share"_s;
    QDir().mkpath(share);
    if (!database.isEmpty())
        QFile::copy(database, share + u"/nimblocal.db"_s);
    return { folder, share, folder + u"/defaults.ini"_s, resourceFolder() };
}

}

void withoutDisplay()
{
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

PlayedProgram::PlayedProgram(const QString& database, std::unique_ptr<ProcessLauncher> launcher)
    : paths(pathsIn(folder.path(), database))
    , app(paths, scheduler, machine(paths, scheduler, std::move(launcher)))
{
    window.window()->resize(1320, 820); // the screen in memory is small
}

}
