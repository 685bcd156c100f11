#pragma once

#include "Voice/SpeechTranscript.h"

#include <QObject>
#include <qcoro/qcorotask.h>

namespace corvane {

class ModelInstaller;
class SpeechModelStore;
class TranscriptionService;

/// A language that can be dictated.
struct DictationLocaleChoice {
    QString id; ///< of the locale, such as "de_DE"; "system" for the system's own
    QString displayName;
    bool isSystemDefault = false;
    bool isInstalled = false;

    bool operator==(const DictationLocaleChoice&) const = default;
};

/// What the latest job, or the installation of a model, does.
struct SpeechModelLoadState {
    enum class Kind { Idle, Downloading, Loading, Transcribing, Loaded, Failed };

    Kind kind = Kind::Idle;
    QString text = {}; ///< the model's name, or what failed
    double progress = 0; ///< from 0 to 1

    bool operator==(const SpeechModelLoadState&) const = default;
};

/// The front of speech recognition: asks whether the machine may work now, has the work done, and shows its state.
class SpeechModelManager : public QObject {
    Q_OBJECT
public:
    /// All of them outlive the manager.
    SpeechModelManager(TranscriptionService& service, SpeechModelStore& store, const LocalAIAvailability& gate,
        QObject* parent = nullptr);

    /// Text from a file of sound. Several may run at once. Where it was made with a model that was not asked for, as
    /// the first route failed or has no model, the result says so.
    QCoro::Task<TranscriptionOutcome> transcribe(TranscriptionRequest request);

    const SpeechModelLoadState& loadState() const { return m_loadState; }
    const LocalAIAvailabilitySnapshot& availability() const { return m_availability; } ///< as of the latest job
    SpeechModelSpec preferredModel() const; ///< the basic recogniser where no model is installed
    SpeechModelStore& store() { return m_store; }

    /// "System ({language})" first, then by name.
    const QList<DictationLocaleChoice>& dictationLocales() const { return m_dictationLocales; }
    void refreshDictationLocales();

    void showInstallation(const ModelInstaller& installer); ///< as the state

Q_SIGNALS:
    void loadStateChanged();
    void dictationLocalesChanged();

private:
    std::optional<LocalAIStopCondition> stopConditionForSpeechWork();
    void enter(const SpeechModelLoadState& state);

    TranscriptionService& m_service;
    SpeechModelStore& m_store;
    const LocalAIAvailability& m_gate;
    SpeechModelLoadState m_loadState;
    LocalAIAvailabilitySnapshot m_availability;
    QList<DictationLocaleChoice> m_dictationLocales;
};

}
