#pragma once

#include "Foundation/Result.h"

#include <memory>
#include <optional>
#include <sys/types.h>

namespace corvane {

class AddressBook;
class AudioPlayer;
class Autostart;
class CallAudio;
class CalendarSource;
class Desktop;
class GlobalShortcuts;
class MachineFacts;
class MediaDecoder;
class Microphone;
class NotificationService;
class PortHolders;
class ProcessLauncher;
class Scheduler;
class SingleInstance;
class SleepInhibitor;
class SpeechRecogniser;
class SystemLanguageModel;
class TextInsertion;
class ToolRunner;
class Tray;
enum class StartFor;
struct AppPaths;

/// The services of this machine. Each starts immediately and independently of the others.
std::unique_ptr<ProcessLauncher> makeProcessLauncher(Scheduler& scheduler);
std::unique_ptr<ToolRunner> makeToolRunner();
std::unique_ptr<PortHolders> makePortHolders();
std::unique_ptr<NotificationService> makeNotificationService();
std::unique_ptr<Desktop> makeDesktop(mode_t umaskOfOpened); ///< for programs that open something for the user
std::unique_ptr<GlobalShortcuts> makeGlobalShortcuts();
std::unique_ptr<TextInsertion> makeTextInsertion(Scheduler& scheduler);
std::unique_ptr<Microphone> makeMicrophone(Scheduler& scheduler);
std::unique_ptr<CallAudio> makeCallAudio(Scheduler& scheduler);
std::unique_ptr<SleepInhibitor> makeSleepInhibitor();
std::unique_ptr<Tray> makeTray();
std::unique_ptr<SystemLanguageModel> makeLanguageModel(Scheduler& scheduler);
std::unique_ptr<MachineFacts> makeMachineFacts(const AppPaths& paths);
std::unique_ptr<AddressBook> makeAddressBook(const AppPaths& paths);
std::unique_ptr<CalendarSource> makeCalendarSource(const AppPaths& paths);
std::unique_ptr<AudioPlayer> makeAudioPlayer(Scheduler& scheduler, MediaDecoder& decoder);
std::unique_ptr<MediaDecoder> makeMediaDecoder(Scheduler& scheduler);
std::unique_ptr<SpeechRecogniser> makeModelRecogniser(ProcessLauncher& launcher); ///< uses a model of the user's
std::unique_ptr<SpeechRecogniser> makeBasicRecogniser(ProcessLauncher& launcher); ///< English, with a built-in model
std::unique_ptr<SingleInstance> makeSingleInstance(const AppPaths& paths, StartFor purpose);
std::unique_ptr<Autostart> makeAutostart(const AppPaths& paths);

/// Starts the program once more, with a window on the display of the user's desktop; false if there is none.
bool startWithWindow();

/// The answer of the running program for this data folder; nothing if none runs. Waits up to five minutes.
std::optional<Result<QString>> askRunningProgram(const AppPaths& paths, const QString& question);

}
