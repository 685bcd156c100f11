#include "Settings/VoiceSettings.h"

#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"
#include "Voice/KnownModels.h"
#include "Voice/ModelFile.h"
#include "Voice/SpeechLanguages.h"
#include "Voice/VoiceServices.h"

#include <QLocale>

namespace corvane {

namespace {

const QString system = u"system"_s;
const QString firstChoice = u"ggml-base.bin"_s;
constexpr qsizetype shownChecksum = 16;

QString sizeText(qint64 bytes)
{
    return QLocale::c().formattedDataSize(bytes, 0, QLocale::DataSizeSIFormat);
}

QString languagesText(bool englishAlone)
{
    return englishAlone ? u"English"_s : u"%1 languages"_s.arg(modelLanguages().size());
}

QString joined(const QStringList& parts)
{
    return parts.join(u" · "_s);
}

}

VoiceSettings::VoiceSettings(VoiceServices& voice, UserDefaults& defaults, QObject* parent)
    : QObject(parent)
    , m_voice(voice)
    , m_defaults(defaults)
{
    for (const KnownModel& model : knownModels()) {
        if (model.fileName == firstChoice)
            m_address = publishedAt(model).toString();
    }
    connect(&voice.store, &SpeechModelStore::changed, this, [this] {
        Q_EMIT modelsChanged();
        Q_EMIT localeChanged();
    });
    connect(&voice.installer, &ModelInstaller::changed, this, &VoiceSettings::installChanged);
}

bool VoiceSettings::ready() const
{
    return hears(dictationLocale(m_defaults));
}

QString VoiceSettings::stateText() const
{
    if (!m_voice.store.installed().isEmpty())
        return u"Speech becomes text on this computer. No sound leaves it."_s;
    return ready() ? u"English is understood roughly. A speech model understands it well, and other "
                     "languages too."_s
                   : u"A speech model is needed before voice notes and dictation become text."_s;
}

QList<SpeechModelLine> VoiceSettings::models() const
{
    const QString preferred = m_voice.store.preferredModel().id();
    QList<SpeechModelLine> lines;
    for (const SpeechInstalledModel& model : m_voice.store.installed()) {
        const QString languages = languagesText(speaksEnglishAlone(model.localPath));
        lines.append({ .id = model.spec.id(),
            .name = model.spec.displayName,
            .detail = joined({ sizeText(model.sizeBytes), languages, model.spec.variant }),
            .checksum = u"SHA-256 %1…"_s.arg(model.spec.revision.left(shownChecksum)),
            .preferred = model.spec.id() == preferred,
            .removable = true });
    }
    const SpeechModelSpec basic = basicRecogniserSpec();
    lines.append({ .id = basic.id(),
        .name = basic.displayName,
        .detail = u"Always there, for short and clear sentences. Without punctuation."_s,
        .checksum = {},
        .preferred = basic.id() == preferred,
        .removable = false });
    return lines;
}

QList<PublishedModelLine> VoiceSettings::published() const
{
    QList<PublishedModelLine> lines;
    for (const KnownModel& model : knownModels()) {
        lines.append(
            { joined({ model.name, sizeText(model.sizeMiB << 20), languagesText(model.englishAlone), model.note }),
                publishedAt(model).toString() });
    }
    return lines;
}

void VoiceSettings::setAddress(const QString& address)
{
    if (m_address == address)
        return;
    m_address = address;
    Q_EMIT addressChanged();
}

bool VoiceSettings::busy() const
{
    return m_voice.installer.isBusy();
}

double VoiceSettings::progress() const
{
    const qint64 total = m_voice.installer.totalBytes();
    return total > 0 ? double(m_voice.installer.doneBytes()) / double(total) : -1;
}

QString VoiceSettings::installText() const
{
    const ModelInstaller& installer = m_voice.installer;
    const QString done = sizeText(installer.doneBytes());
    const QString amount
        = installer.totalBytes() > 0 ? u"%1 of %2"_s.arg(done, sizeText(installer.totalBytes())) : done;
    switch (installer.step()) {
    case ModelInstaller::Step::Idle:
        return {};
    case ModelInstaller::Step::Downloading:
        return u"Downloading %1: %2"_s.arg(installer.name(), amount);
    case ModelInstaller::Step::Copying:
        return u"Copying %1: %2"_s.arg(installer.name(), amount);
    case ModelInstaller::Step::Checking:
        return u"Checking %1: %2"_s.arg(installer.name(), amount);
    case ModelInstaller::Step::Failed:
        break;
    }
    return installer.errorText();
}

bool VoiceSettings::installFailed() const
{
    return m_voice.installer.step() == ModelInstaller::Step::Failed;
}

QList<Choice> VoiceSettings::locales() const
{
    QList<Choice> choices;
    for (const DictationLocaleChoice& choice : m_voice.speech.dictationLocales())
        choices.append({ choice.id,
            choice.isInstalled ? choice.displayName : u"%1 (needs a speech model)"_s.arg(choice.displayName) });
    return choices;
}

QString VoiceSettings::locale() const
{
    const QString chosen = dictationLocale(m_defaults);
    return chosen.isEmpty() ? system : chosen;
}

void VoiceSettings::setLocale(const QString& id)
{
    if (id == locale())
        return;
    if (id == system)
        m_defaults.remove(dictationLocaleKey);
    else
        m_defaults.setText(dictationLocaleKey, id);
    Q_EMIT localeChanged();
    Q_EMIT modelsChanged();
}

QString VoiceSettings::localeText() const
{
    return localeDisplayName(dictationLocale(m_defaults));
}

QString VoiceSettings::localeHint() const
{
    const QString chosen = dictationLocale(m_defaults);
    return hears(chosen)
        ? QString()
        : u"The chosen recogniser does not understand %1."_s.arg(localeDisplayName(modelLanguage(chosen)));
}

bool VoiceSettings::hears(const QString& localeId) const
{
    return m_voice.transcription.speaks(modelLanguage(localeId));
}

void VoiceSettings::download()
{
    m_voice.installer.download(QUrl(m_address.trimmed()));
}

void VoiceSettings::addFiles(const QList<QUrl>& files)
{
    if (!files.isEmpty())
        m_voice.installer.add(files.first().toLocalFile());
}

void VoiceSettings::cancel()
{
    m_voice.installer.cancel();
}

void VoiceSettings::dismissError()
{
    m_voice.installer.dismissError();
}

void VoiceSettings::prefer(const QString& modelId)
{
    if (modelId == basicRecogniserSpec().id())
        return m_voice.store.prefer(basicRecogniserSpec());
    for (const SpeechInstalledModel& model : m_voice.store.installed()) {
        if (model.spec.id() == modelId)
            return m_voice.store.prefer(model.spec);
    }
}

void VoiceSettings::remove(const QString& modelId)
{
    for (const SpeechInstalledModel& model : m_voice.store.installed()) {
        if (model.spec.id() == modelId)
            return m_voice.store.remove(model.spec);
    }
}

}
