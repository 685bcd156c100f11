#pragma once

#include "Platform/AddressBook.h"
#include "Platform/CalendarSource.h"
#include "Platform/GlobalShortcuts.h"
#include "Platform/Linux/Services.h"
#include "Platform/SpeechRecogniser.h"
#include "Platform/Tray.h"
#include "Shell/Machine.h"
#include "Support/FakeAudioPlayer.h"
#include "Support/FakeCallAudio.h"
#include "Support/FakeDesktop.h"
#include "Support/FakeKeyring.h"
#include "Support/FakeLanguageModel.h"
#include "Support/FakeLauncher.h"
#include "Support/FakeMicrophone.h"
#include "Support/FakeNotificationService.h"
#include "Support/FakePortHolders.h"
#include "Support/FakeTextInsertion.h"
#include "Support/RealDecoder.h"

namespace corvane {

/// A machine of fakes around the launcher. The address book and the calendars are real, decoding uses a real child
/// process, and recognition starts its child processes through the launcher.
inline Machine fakeMachine(const AppPaths& paths, std::unique_ptr<ProcessLauncher> launcher)
{
    static SystemScheduler scheduler; // for timeouts of the real decoder
    Machine machine;
    machine.launcher = std::move(launcher);
    machine.ports = std::make_unique<FakePortHolders>();
    machine.keyring = std::make_unique<FakeKeyring>();
    machine.notifications = std::make_unique<FakeNotificationService>();
    machine.desktop = std::make_unique<FakeDesktop>();
    machine.microphone = std::make_unique<FakeMicrophone>();
    machine.addressBook = makeAddressBook(paths);
    machine.calendars = makeCalendarSource(paths);
    machine.tools = std::make_unique<NoTools>();
    machine.languageModel = std::make_unique<FakeLanguageModel>();
    machine.player = std::make_unique<FakeAudioPlayer>();
    machine.decoder = makeRealDecoder(scheduler);
    machine.reader = std::make_unique<FakeAudioPlayer>();
    machine.modelRecogniser = makeModelRecogniser(*machine.launcher);
    machine.basicRecogniser = makeBasicRecogniser(*machine.launcher);
    machine.callAudio = std::make_unique<FakeCallAudio>();
    machine.insertion = std::make_unique<FakeTextInsertion>();
    machine.sleep = std::make_unique<FakeSleepInhibitor>();
    for (auto& player : machine.callPlayers)
        player = std::make_unique<FakeAudioPlayer>();
    machine.facts = std::make_unique<FakeMachineFacts>();
    return machine;
}

/// A service of the machine, cast to its fake type.
template <typename Fake, typename Service> Fake& played(const std::unique_ptr<Service>& service)
{
    return dynamic_cast<Fake&>(*service);
}

}
