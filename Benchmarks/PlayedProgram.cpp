#include "PlayedProgram.h"

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
    Machine machine;
    machine.launcher = launcher ? std::move(launcher) : makeProcessLauncher(scheduler);
    machine.ports = std::make_unique<FakePortHolders>();
    machine.keyring = std::make_unique<FakeKeyring>();
    machine.notifications = std::make_unique<FakeNotificationService>();
    machine.desktop = std::make_unique<FakeDesktop>();
    machine.microphone = makeMicrophone(scheduler);
    machine.addressBook = makeAddressBook(paths);
    machine.calendars = makeCalendarSource(paths);
    machine.tools = makeToolRunner();
    machine.languageModel = makeLanguageModel(scheduler);
    machine.facts = makeMachineFacts(paths);
    machine.decoder = makeMediaDecoder(scheduler);
    machine.player = makeAudioPlayer(scheduler, *machine.decoder);
    machine.reader = makeAudioPlayer(scheduler, *machine.decoder);
    machine.modelRecogniser = makeModelRecogniser(*machine.launcher);
    machine.basicRecogniser = makeBasicRecogniser(*machine.launcher);
    return machine;
}

AppPaths pathsIn(const QString& folder, const QString& database)
{
    const QString share = folder + QStringLiteral("/share");
    QDir().mkpath(share);
    if (!database.isEmpty())
        QFile::copy(database, share + QStringLiteral("/nimblocal.db"));
    return { folder, share, folder + QStringLiteral("/defaults.ini"), resourceFolder() };
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
