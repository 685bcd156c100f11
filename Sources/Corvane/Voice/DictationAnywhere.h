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

/// Speaking instead of typing in any program: one key of the desktop begins to listen and ends it, what was said
/// becomes text on this machine, and the program that was in front gets it. The sound is deleted.
class DictationAnywhere : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::DictationPanel* panel READ panel CONSTANT)
    Q_PROPERTY(QString offeredText READ offeredText NOTIFY offered) ///< that nothing took; empty for none
    Q_PROPERTY(QString offerReason READ problem NOTIFY offered)
public:
    /// All of them outlive the object. There may be no shortcuts and no insertion.
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
    const QString& problem() const { return m_problem; } ///< why the last one failed; empty where it did not

    bool isEnabled() const; ///< a missing setting counts as off
    void setEnabled(bool enabled);
    bool isPushToTalk() const; ///< it listens while the key is held
    void setPushToTalk(bool on);

    void start(); ///< at the start of the program; a second call does nothing more
    void toggleRecording();
    Q_INVOKABLE void cancel(); ///< what is heard or transcribed is dropped

    const QString& offeredText() const { return m_offered; }
    Q_INVOKABLE void dismissOffer();

    std::optional<QString> selectedLocale() const; ///< nothing: the system's
    QString selectedLanguageShortName() const; ///< such as "German"; empty where it is found out from the sound

Q_SIGNALS:
    void stateChanged();
    void settingsChanged();
    void offered();

private:
    using Kind = DictationAnywhereState::Kind;

    void registerHotKey();
    void prewarmSpeechAssets(); ///< the first dictation does not wait for its model
    void onReleased();
    void startRecording();
    void beginRecording();
    void stopAndTranscribe();
    QCoro::Task<> transcribe(QString path, CancelHandle cancel);
    void insertTranscript(const QString& text);
    void fail(const QString& message);
    void stopWithoutProcessing(const QString& message);
    void dropRecording();
    MicrophoneRecording* takeRecording(); ///< it listens no more, and goes at the next turn of the loop
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
    std::unique_ptr<Timer> m_question; ///< while the microphone is asked for
    CancelHandle m_cancel;
    int m_attempt = 0; ///< an answer to an attempt that was given up is not heard
    bool m_isAsking = false;
    bool m_isHeld = false; ///< the key, to talk
};

}
