#pragma once

#include "Foundation/Cancellation.h"
#include "Platform/HotKey.h"
#include "Platform/Microphone.h"
#include "Platform/TextInsertion.h"
#include "Voice/DictationPanel.h"

#include <qcoro/qcorotask.h>

namespace corvane {

struct VoiceServices;

struct DictationAnywhereState {
    enum class Kind { Idle, Recording, Transcribing, Inserted, Copied, Failed };

    Kind kind = Kind::Idle;
    qint64 startedAtMs = 0; ///< of Recording
    QString message = {}; ///< of Failed

    bool operator==(const DictationAnywhereState&) const = default;
};

/// Dictation into any program: a global shortcut starts and stops listening, the speech becomes text on this machine,
/// and the program that had the focus gets it. The sound is deleted.
class DictationAnywhere : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::DictationPanel* panel READ panel CONSTANT)
    Q_PROPERTY(QString offeredText READ offeredText NOTIFY offered) ///< text that could not be inserted; empty for none
    Q_PROPERTY(QString offerReason READ problem NOTIFY offered)
public:
    /// All references outlive the object. Shortcuts and insertion may be null.
    struct Surroundings {
        VoiceServices& voice;
        Microphone& microphone;
        TextInsertion* insertion;
        GlobalShortcuts* shortcuts;
        UserDefaults& defaults;
        Scheduler& scheduler;
    };

    explicit DictationAnywhere(const Surroundings& at, QObject* parent = nullptr);
    ~DictationAnywhere() override;

    const DictationAnywhereState& state() const { return m_state; }
    DictationPanel* panel() { return &m_panel; }
    HotKey& hotKey() { return m_hotKey; }
    InsertionWay insertionWay() const { return m_at.insertion ? m_at.insertion->way() : InsertionWay::None; }
    bool isBoundToFocus() const { return m_at.insertion && m_at.insertion->isBoundToFocus(); }
    const QString& problem() const { return m_problem; } ///< why the last dictation failed; empty otherwise

    bool isEnabled() const; ///< off by default
    void setEnabled(bool enabled);
    bool isPushToTalk() const; ///< listens while the key is held
    void setPushToTalk(bool on);

    void start(); ///< at the start of the program; a second call has no effect
    void toggleRecording();
    Q_INVOKABLE void cancel(); ///< discards what was recorded or transcribed

    const QString& offeredText() const { return m_offered; }
    Q_INVOKABLE void dismissOffer();

    std::optional<QString> selectedLocale() const; ///< nothing: the system's
    QString selectedLanguageShortName() const; ///< such as "German"; empty if it is detected from the sound

Q_SIGNALS:
    void stateChanged();
    void settingsChanged();
    void offered();

private:
    using Kind = DictationAnywhereState::Kind;

    void registerHotKey();
    void prewarmSpeechAssets(); ///< loads the model, so that the first dictation need not wait
    void onReleased();
    void startRecording();
    void beginRecording();
    void stopAndTranscribe();
    QCoro::Task<> transcribe(QString path, CancelHandle cancel);
    void insertTranscript(const QString& text);
    void fail(const QString& message);
    void stopWithoutProcessing(const QString& message);
    void dropRecording();
    MicrophoneRecording* takeRecording(); ///< stops listening; destroyed at the next turn of the event loop
    void offer(const QString& text, const QString& reason);
    void enter(const DictationAnywhereState& state);
    QString listeningText() const;

    const Surroundings m_at;
    HotKey m_hotKey;
    DictationPanel m_panel;
    DictationAnywhereState m_state;
    QString m_problem;
    QString m_offered;
    QString m_lastAudioPath;
    std::unique_ptr<MicrophoneRecording> m_recorder;
    std::unique_ptr<Timer> m_ticks;
    std::unique_ptr<Timer> m_question; ///< while the microphone permission is pending
    CancelHandle m_cancel;
    int m_attempt = 0; ///< answers to earlier attempts are ignored
    bool m_isAsking = false;
    bool m_isHeld = false; ///< push-to-talk key
};

}
