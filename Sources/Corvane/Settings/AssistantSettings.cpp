#include "Settings/AssistantSettings.h"

#include "AI/AIServices.h"
#include "AI/ModelChoice.h"
#include "Foundation/Literals.h"
#include "Foundation/Text.h"
#include "Foundation/UserDefaults.h"
#include "Store/Core/LocalDB.h"

#include <QLocale>

namespace corvane {

namespace {

constexpr auto refreshPeriod = std::chrono::seconds(5);
constexpr int memoryLimit = 200;
constexpr int shownCharacters = 400;

AssistantBackend backend(const QString& name, const QString& state, bool isGood, const QString& detail)
{
    return { name, state, isGood ? u"good"_s : u"idle"_s, detail };
}

QString powerText(LocalAIPowerSource source)
{
    switch (source) {
    case LocalAIPowerSource::AcPower:
        return u"Mains"_s;
    case LocalAIPowerSource::Battery:
        return u"Battery"_s;
    case LocalAIPowerSource::Unknown:
        break;
    }
    return u"Not known"_s;
}

QString heatText(ThermalState state)
{
    switch (state) {
    case ThermalState::Fair:
        return u"Warm"_s;
    case ThermalState::Serious:
        return u"Hot"_s;
    case ThermalState::Critical:
        return u"Too hot"_s;
    case ThermalState::Nominal:
        break;
    }
    return u"Normal"_s;
}

QString sizeText(qint64 bytes)
{
    return bytes < 0 ? u"Not known"_s : QLocale::c().formattedDataSize(bytes, 1);
}

QString scopeText(const ScopedMemoryEntry& entry)
{
    if (entry.scope == "business"_L1)
        return u"Business"_s;
    if (entry.scope == "owner"_L1)
        return u"Owner"_s;
    return entry.contactName.isEmpty() ? entry.scope : entry.contactName;
}

}

AssistantSettings::AssistantSettings(
    AIServices& services, UserDefaults& defaults, LocalDB& db, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_services(services)
    , m_defaults(defaults)
    , m_db(db)
    , m_scheduler(scheduler)
{
    connect(&m_services.systemModel, &SystemLanguageModel::availabilityChanged, this, &AssistantSettings::changed);
    connect(
        &m_services.systemModel, &SystemLanguageModel::availabilityChanged, this, &AssistantSettings::choiceChanged);
}

AssistantSettings::~AssistantSettings()
{
    m_cancel.cancel();
}

bool AssistantSettings::available() const
{
    return m_services.ai.availableName().has_value();
}

QString AssistantSettings::answersText() const
{
    const auto name = m_services.ai.availableName();
    return name ? *name + u" answers now."_s : u"No LumoAI backend available."_s;
}

QList<AssistantBackend> AssistantSettings::backends() const
{
    const auto reason = m_services.onDevice.unavailableReason();
    const AssistantBackend onDevice = backend(u"Model on this machine"_s, reason ? u"Not available"_s : u"Answers"_s,
        !reason, reason.value_or(m_services.onDevice.displayName()));
    const auto codex = m_services.codex.codexPath();
    const QString codexState = !codex ? u"Not found"_s : reason ? u"Answers"_s : u"Stands by"_s;
    return { onDevice,
        backend(u"Codex CLI"_s, codexState, codex && reason, codex.value_or(describe(CLIChatError::Unavailable))) };
}

QStringList AssistantSettings::models() const
{
    return m_services.systemModel.models();
}

QString AssistantSettings::model() const
{
    return modelChoice(m_defaults).model;
}

QString AssistantSettings::modelText() const
{
    return model().isEmpty() ? firstModelLabel() : model();
}

void AssistantSettings::setModel(const QString& model)
{
    SystemLanguageModel::Choice choice = modelChoice(m_defaults);
    choice.model = model;
    setModelChoice(m_defaults, choice);
    m_services.systemModel.choose(modelChoice(m_defaults));
    Q_EMIT choiceChanged();
}

QString AssistantSettings::elsewhereText() const
{
    const SystemLanguageModel& model = m_services.systemModel;
    return model.runsElsewhere()
        ? u"This model runs elsewhere: the messages and notes that %1 reads leave this machine."_s.arg(
              model.modelName())
        : QString();
}

bool AssistantSettings::elsewhereAllowed() const
{
    return modelChoice(m_defaults).allowedElsewhere == m_services.systemModel.modelName();
}

void AssistantSettings::allowElsewhere(bool allow)
{
    SystemLanguageModel::Choice choice = modelChoice(m_defaults);
    choice.allowedElsewhere = allow ? m_services.systemModel.modelName() : QString();
    setModelChoice(m_defaults, choice);
    m_services.systemModel.choose(choice);
    Q_EMIT changed();
}

QString AssistantSettings::serverUrl() const
{
    return modelChoice(m_defaults).serverUrl;
}

void AssistantSettings::setServerUrl(const QString& url)
{
    // Another server has other models.
    setModelChoice(m_defaults, { url, url.trimmed() == serverUrl() ? model() : QString() });
    m_services.systemModel.choose(modelChoice(m_defaults));
    Q_EMIT choiceChanged();
}

QList<MachineFact> AssistantSettings::gateFacts() const
{
    const QString version
        = u"%1.%2.%3"_s.arg(m_gate.osVersion.major).arg(m_gate.osVersion.minor).arg(m_gate.osVersion.patch);
    return { { u"Power"_s, powerText(m_gate.powerSource) },
        { u"Power saving"_s, m_gate.lowPowerMode ? u"On"_s : u"Off"_s }, { u"Heat"_s, heatText(m_gate.thermalState) },
        { u"Memory"_s, sizeText(static_cast<qint64>(m_gate.physicalMemoryBytes)) },
        { u"Free disk space"_s, sizeText(m_gate.freeDiskBytes) }, { u"System"_s, version } };
}

void AssistantSettings::setVisible(bool visible)
{
    if (visible == (m_refresh != nullptr))
        return;
    m_refresh = visible ? m_scheduler.every(refreshPeriod, [this] { look(); }) : nullptr;
    m_forgotten.reset();
    if (!visible)
        return;
    readMemory();
    look();
}

void AssistantSettings::look()
{
    m_gate = m_services.gate.snapshot(false, false);
    m_services.systemModel.refresh();
    Q_EMIT changed();
}

void AssistantSettings::tryIt()
{
    if (m_trying)
        return;
    m_cancel = {};
    m_triedAtMs = m_scheduler.nowMs();
    m_trying = true;
    m_progress = m_scheduler.every(std::chrono::seconds(1), [this] { showProgress(); });
    showProgress();
    ask(this, m_cancel);
}

QCoro::Task<> AssistantSettings::ask(QPointer<AssistantSettings> self, CancelHandle cancel)
{
    const Result<QString> answer = co_await self->m_services.ai.respond(
        u"You are the assistant of an inbox. Answer in one short sentence, without markup."_s,
        u"Say hello, and say in a few words what you can do."_s, cancel);
    if (!self || cancel.isCancelled())
        co_return;
    const QString words = firstCharacters(singleLine(answer ? *answer : answer.error().message), shownCharacters);
    self->setTry(false, answer ? u"good"_s : u"bad"_s, words);
}

void AssistantSettings::cancelTry()
{
    if (!m_trying)
        return;
    m_cancel.cancel();
    setTry(false, u"idle"_s, u"Cancelled."_s);
}

void AssistantSettings::showProgress()
{
    const QString name = m_services.ai.availableName().value_or(u"LumoAI"_s);
    const qint64 seconds = (m_scheduler.nowMs() - m_triedAtMs) / 1000;
    setTry(true, u"busy"_s, u"Asking %1… %2 s"_s.arg(name).arg(seconds));
}

void AssistantSettings::setTry(bool trying, const QString& kind, const QString& text)
{
    m_trying = trying;
    m_tryKind = kind;
    m_tryText = text;
    if (!trying)
        m_progress.reset();
    Q_EMIT tryChanged();
}

QString AssistantSettings::memoryEmptyText() const
{
    return u"Nothing yet — agents save durable facts here as you work."_s;
}

QString AssistantSettings::forgottenText() const
{
    return m_forgotten ? u"Forgotten: "_s + firstCharacters(singleLine(m_forgotten->body), 80) : QString();
}

void AssistantSettings::forget(const QString& memoryId)
{
    m_forgotten = forgetMemoryEntry(m_db, memoryId);
    readMemory();
}

void AssistantSettings::keepForgotten()
{
    if (m_forgotten && keepMemoryEntry(m_db, *m_forgotten))
        m_forgotten.reset();
    readMemory();
}

void AssistantSettings::readMemory()
{
    m_memory.clear();
    QString last;
    for (const ScopedMemoryEntry& entry : fetchAllMemoryEntries(m_db, memoryLimit)) {
        const QString scope = scopeText(entry);
        m_memory.append({ entry.id, scope, singleLine(entry.body), scope == last ? QString() : scope });
        last = scope;
    }
    Q_EMIT memoryChanged();
}

}
