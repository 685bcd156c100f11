#include "Voice/SpeechModelManager.h"

#include "Foundation/Literals.h"
#include "Voice/ModelInstaller.h"
#include "Voice/SpeechLanguages.h"
#include "Voice/SpeechModelStore.h"
#include "Voice/TranscriptionService.h"

#include <QPointer>
#include <algorithm>

namespace corvane {

using Kind = SpeechModelLoadState::Kind;

SpeechModelManager::SpeechModelManager(
    TranscriptionService& service, SpeechModelStore& store, const LocalAIAvailability& gate, QObject* parent)
    : QObject(parent)
    , m_service(service)
    , m_store(store)
    , m_gate(gate)
{
    connect(&store, &SpeechModelStore::changed, this, &SpeechModelManager::refreshDictationLocales);
    refreshDictationLocales();
}

SpeechModelSpec SpeechModelManager::preferredModel() const
{
    return m_store.preferredModel();
}

QCoro::Task<TranscriptionOutcome> SpeechModelManager::transcribe(TranscriptionRequest request)
{
    if (const auto condition = stopConditionForSpeechWork(request.onBattery)) {
        co_return std::unexpected(
            SpeechTranscriberError { .kind = SpeechTranscriberError::Kind::Stopped, .condition = condition });
    }
    if (!request.model)
        request.model = preferredModel();
    const QString name = request.model->displayName;
    m_loadState = { .kind = Kind::Transcribing, .text = name };
    const QPointer<SpeechModelManager> self(this);
    request.onProgress = [self, name, told = request.onProgress](double progress) {
        if (self)
            self->m_loadState = { .kind = Kind::Transcribing, .text = name, .progress = progress };
        if (told)
            told(progress);
    };
    TranscriptionOutcome outcome = co_await m_service.transcribe(std::move(request));
    if (!self)
        co_return outcome;
    if (outcome)
        m_store.markUsed(outcome->model);
    m_loadState = outcome ? SpeechModelLoadState { .kind = Kind::Loaded, .text = outcome->model.displayName }
                          : SpeechModelLoadState { .kind = Kind::Failed, .text = describe(outcome.error()) };
    co_return outcome;
}

void SpeechModelManager::refreshDictationLocales()
{
    QList<DictationLocaleChoice> choices;
    for (const QString& language : modelLanguages())
        choices.append({ .id = language,
            .displayName = localeDisplayName(language),
            .isSystemDefault = false,
            .isInstalled = m_service.speaks(language) });
    std::ranges::sort(choices, {}, &DictationLocaleChoice::displayName);
    choices.prepend({ .id = u"system"_s,
        .displayName = localeDisplayName(QString()),
        .isSystemDefault = true,
        .isInstalled = m_service.speaks(modelLanguage(QString())) });
    m_dictationLocales = choices;
}

void SpeechModelManager::showInstallation(const ModelInstaller& installer)
{
    using Step = ModelInstaller::Step;
    const qint64 total = installer.totalBytes();
    const double progress = total > 0 ? double(installer.doneBytes()) / double(total) : 0;
    switch (installer.step()) {
    case Step::Idle:
        if (m_loadState.kind == Kind::Downloading || m_loadState.kind == Kind::Loading)
            m_loadState = {};
        break;
    case Step::Downloading:
        m_loadState = { .kind = Kind::Downloading, .text = installer.name(), .progress = progress };
        break;
    case Step::Copying:
    case Step::Checking:
        m_loadState = { .kind = Kind::Loading, .text = installer.name(), .progress = progress };
        break;
    case Step::Failed:
        m_loadState = { .kind = Kind::Failed, .text = installer.errorText() };
        break;
    }
}

std::optional<LocalAIStopCondition> SpeechModelManager::stopConditionForSpeechWork(BatteryWork onBattery)
{
    m_availability = m_gate.snapshot(true, true, onBattery);
    return m_availability.stopCondition;
}

}
