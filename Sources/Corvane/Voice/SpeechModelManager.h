#pragma once

#include "Voice/SpeechTranscript.h"

#include <QObject>
#include <qcoro/qcorotask.h>

namespace corvane {

class ModelInstaller;
class SpeechModelStore;
class TranscriptionService;

/// A dictation language.
struct DictationLocaleChoice {
    QString id; ///< of the locale, such as "de_DE"; "system" for the system's own
    QString displayName;
    bool isSystemDefault = false;
    bool isInstalled = false;

    bool operator==(const DictationLocaleChoice&) const = default;
};

/// The state of the latest job, or of a model installation.
struct SpeechModelLoadState {
    enum class Kind { Idle, Downloading, Loading, Transcribing, Loaded, Failed };

    Kind kind = Kind::Idle;
    QString text = {}; ///< the model's name, or the failure
    double progress = 0; ///< from 0 to 1

    bool operator==(const SpeechModelLoadState&) const = default;
};

/// The front end of speech recognition: checks whether the machine may work now, runs the job, and shows its state.
class SpeechModelManager : public QObject {
    Q_OBJECT
public:
    /// All of them outlive the manager.
    SpeechModelManager(TranscriptionService& service, SpeechModelStore& store, const LocalAIAvailability& gate,
        QObject* parent = nullptr);

    /// Transcribes a sound file. Several may run at once. If another model than the requested one was used, because the
    /// first failed or is missing, the result says so.
    QCoro::Task<TranscriptionOutcome> transcribe(TranscriptionRequest request);

    const SpeechModelLoadState& loadState() const { return m_loadState; }
    const LocalAIAvailabilitySnapshot& availability() const { return m_availability; } ///< when the latest job started
    SpeechModelSpec preferredModel() const; ///< the basic recogniser if no model is installed
    SpeechModelStore& store() { return m_store; }

    /// "System ({language})" first, then by name.
    const QList<DictationLocaleChoice>& dictationLocales() const { return m_dictationLocales; }
    void refreshDictationLocales();

    void showInstallation(const ModelInstaller& installer); ///< shown as the state

private:
    std::optional<LocalAIStopCondition> stopConditionForSpeechWork(BatteryWork onBattery);

    TranscriptionService& m_service;
    SpeechModelStore& m_store;
    const LocalAIAvailability& m_gate;
    SpeechModelLoadState m_loadState;
    LocalAIAvailabilitySnapshot m_availability;
    QList<DictationLocaleChoice> m_dictationLocales;
};

}
