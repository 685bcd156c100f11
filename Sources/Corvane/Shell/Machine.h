#pragma once

#include <array>
#include <memory>
#include <optional>
#include <sys/types.h>

namespace corvane {

struct AppPaths;
class Scheduler;
class AddressBook;
class AudioPlayer;
class Autostart;
class CalendarSource;
class CallAudio;
class Desktop;
class GlobalShortcuts;
class Keyring;
class MachineFacts;
class MediaDecoder;
class Microphone;
class NotificationService;
class PortHolders;
class ProcessLauncher;
class SleepInhibitor;
class SpeechRecogniser;
class SystemLanguageModel;
class TextInsertion;
class ToolRunner;
class Tray;

/// The services of the machine that the program uses.
struct Machine {
    Machine();
    ~Machine();
    Machine(Machine&&) noexcept;

    std::unique_ptr<ProcessLauncher> launcher;
    std::unique_ptr<PortHolders> ports;
    std::unique_ptr<Keyring> keyring;
    std::unique_ptr<NotificationService> notifications;
    std::unique_ptr<Desktop> desktop;
    std::unique_ptr<Microphone> microphone;
    std::unique_ptr<AddressBook> addressBook;
    std::unique_ptr<CalendarSource> calendars;
    std::unique_ptr<ToolRunner> tools;
    std::unique_ptr<SystemLanguageModel> languageModel;
    std::unique_ptr<MachineFacts> facts;
    std::unique_ptr<MediaDecoder> decoder; ///< the player uses it
    std::unique_ptr<AudioPlayer> player;
    std::unique_ptr<AudioPlayer> reader; ///< for reading texts aloud
    std::unique_ptr<SpeechRecogniser> modelRecogniser; ///< with a model of the user's
    std::unique_ptr<SpeechRecogniser> basicRecogniser;
    std::unique_ptr<GlobalShortcuts> shortcuts; ///< none in a headless run
    std::unique_ptr<TextInsertion> insertion; ///< none in a headless run
    std::unique_ptr<CallAudio> callAudio;
    std::unique_ptr<SleepInhibitor> sleep;
    /// Both tracks of a call play at once, each with its own decoder.
    std::array<std::unique_ptr<MediaDecoder>, 2> callDecoders;
    std::array<std::unique_ptr<AudioPlayer>, 2> callPlayers;
    std::unique_ptr<Tray> tray; ///< none in a headless run
    std::unique_ptr<Autostart> autostart; ///< none in a headless run
    QString systemRoot {}; ///< prepended to the paths of memory and process information; empty: this machine
    std::optional<mode_t> userUmask; ///< for programs that the user starts; none: this process's
};

/// The services of the current machine, without those that only a window needs: the tray and the shortcuts. `scheduler`
/// outlives it; `userUmask` is for programs that the user starts.
Machine thisMachine(const AppPaths& paths, Scheduler& scheduler, mode_t userUmask);

}
