#include "Shell/Machine.h"

#include "Platform/AddressBook.h"
#include "Platform/AudioPlayer.h"
#include "Platform/Autostart.h"
#include "Platform/CalendarSource.h"
#include "Platform/CallAudio.h"
#include "Platform/Desktop.h"
#include "Platform/GlobalShortcuts.h"
#include "Platform/Keyring.h"
#include "Platform/Linux/Services.h"
#include "Platform/MachineFacts.h"
#include "Platform/MediaDecoder.h"
#include "Platform/Microphone.h"
#include "Platform/NotificationService.h"
#include "Platform/PortHolders.h"
#include "Platform/ProcessLauncher.h"
#include "Platform/SleepInhibitor.h"
#include "Platform/SpeechRecogniser.h"
#include "Platform/SystemLanguageModel.h"
#include "Platform/TextInsertion.h"
#include "Platform/ToolRunner.h"
#include "Platform/Tray.h"

namespace corvane {

Machine::Machine() = default;
Machine::~Machine() = default;
Machine::Machine(Machine&&) noexcept = default;

Machine thisMachine(const AppPaths& paths, Scheduler& scheduler, mode_t userUmask)
{
    Machine machine;
    machine.launcher = makeProcessLauncher(scheduler);
    machine.ports = makePortHolders();
    machine.keyring = makeKeyring();
    machine.notifications = makeNotificationService();
    machine.desktop = makeDesktop(userUmask);
    machine.userUmask = userUmask;
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
    machine.callAudio = makeCallAudio(scheduler);
    machine.sleep = makeSleepInhibitor();
    for (size_t track = 0; track < machine.callPlayers.size(); ++track) {
        machine.callDecoders[track] = makeMediaDecoder(scheduler);
        machine.callPlayers[track] = makeAudioPlayer(scheduler, *machine.callDecoders[track]);
    }
    return machine;
}

}
