#include "Settings/AssistantSettings.h"

#include "AI/AIServices.h"
#include "AI/ModelChoice.h"
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
    return { name, state, isGood ? QStringLiteral("good") : QStringLiteral("idle"), detail };
}

QString powerText(LocalAIPowerSource source)
{
    switch (source) {
    case LocalAIPowerSource::AcPower:
        return QStringLiteral("Mains");
    case LocalAIPowerSource::Battery:
        return QStringLiteral("Battery");
    case LocalAIPowerSource::Unknown:
        break;
    }
    return QStringLiteral("Not known");
}

QString heatText(ThermalState state)
{
    switch (state) {
    case ThermalState::Fair:
        return QStringLiteral("Warm");
    case ThermalState::Serious:
        return QStringLiteral("Hot");
    case ThermalState::Critical:
        return QStringLiteral("Too hot");
    case ThermalState::Nominal:
        break;
    }
    return QStringLiteral("Normal");
}

QString sizeText(qint64 bytes)
{
    return bytes < 0 ? QStringLiteral("Not known") : QLocale::c().formattedDataSize(bytes, 1);
}

QString scopeText(const ScopedMemoryEntry& entry)
{
    if (entry.scope == QLatin1StringView("business"))
        return QStringLiteral("Business");
    if (entry.scope == QLatin1StringView("owner"))
        return QStringLiteral("Owner");
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
    return name ? *name + QStringLiteral(" answers now.") : QStringLiteral("No LumoAI backend available.");
}

QList<AssistantBackend> AssistantSettings::backends() const
{
    const auto reason = m_services.onDevice.unavailableReason();
    const AssistantBackend onDevice = backend(QStringLiteral("Model on this machine"),
        reason ? QStringLiteral("Not available") : QStringLiteral("Answers"), !reason,
        reason.value_or(m_services.onDevice.displayName()));
    const auto codex = m_services.codex.codexPath();
    const QString codexState = !codex ? QStringLiteral("Not found")
        : reason                      ? QStringLiteral("Answers")
                                      : QStringLiteral("Stands by");
    return { onDevice,
        backend(QStringLiteral("Codex CLI"), codexState, codex && reason,
            codex.value_or(describe(CLIChatError::Unavailable))) };
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
        ? QStringLiteral("This model runs elsewhere: the messages and notes that %1 reads leave this machine.")
              .arg(model.modelName())
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
    const QString version = QStringLiteral("%1.%2.%3")
                                .arg(m_gate.osVersion.major)
                                .arg(m_gate.osVersion.minor)
                                .arg(m_gate.osVersion.patch);
    return { { QStringLiteral("Power"), powerText(m_gate.powerSource) },
        { QStringLiteral("Power saving"), m_gate.lowPowerMode ? QStringLiteral("On") : QStringLiteral("Off") },
        { QStringLiteral("Heat"), heatText(m_gate.thermalState) },
        { QStringLiteral("Memory"), sizeText(static_cast<qint64>(m_gate.physicalMemoryBytes)) },
        { QStringLiteral("Free disk space"), sizeText(m_gate.freeDiskBytes) }, { QStringLiteral("System"), version } };
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
        QStringLiteral("You are the assistant of an inbox. Answer in one short sentence, without markup."),
        QStringLiteral("Say hello, and say in a few words what you can do."), cancel);
    if (!self || cancel.isCancelled())
        co_return;
    const QString words = firstCharacters(singleLine(answer ? *answer : answer.error().message), shownCharacters);
    self->setTry(false, answer ? QStringLiteral("good") : QStringLiteral("bad"), words);
}

void AssistantSettings::cancelTry()
{
    if (!m_trying)
        return;
    m_cancel.cancel();
    setTry(false, QStringLiteral("idle"), QStringLiteral("Cancelled."));
}

void AssistantSettings::showProgress()
{
    const QString name = m_services.ai.availableName().value_or(QStringLiteral("LumoAI"));
    const qint64 seconds = (m_scheduler.nowMs() - m_triedAtMs) / 1000;
    setTry(true, QStringLiteral("busy"), QStringLiteral("Asking %1… %2 s").arg(name).arg(seconds));
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
    return QStringLiteral("Nothing yet — agents save durable facts here as you work.");
}

QString AssistantSettings::forgottenText() const
{
    return m_forgotten ? QStringLiteral("Forgotten: ") + firstCharacters(singleLine(m_forgotten->body), 80) : QString();
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
