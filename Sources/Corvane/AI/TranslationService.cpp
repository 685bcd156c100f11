#include "AI/TranslationService.h"

#include "Foundation/Arrival.h"
#include "Foundation/Literals.h"
#include "Foundation/MachineWords.h"
#include "Platform/MachineFacts.h"

#include <QLocale>
#include <QRegularExpression>

namespace corvane {

namespace {

struct NamedLanguage {
    const char* name; ///< as the menu shows it
    const char* otherName;
    const char* code;
};

constexpr NamedLanguage namedLanguages[] {
    { "English", nullptr, "en" },
    { "Bangla", "bengali", "bn" },
    { "German", "deutsch", "de" },
    { "Indonesian", "bahasa indonesia", "id" },
    { "Arabic", nullptr, "ar" },
    { "Chinese", "mandarin", "zh" },
    { "Dutch", "nederlands", "nl" },
    { "French", "français", "fr" },
    { "Hindi", nullptr, "hi" },
    { "Italian", "italiano", "it" },
    { "Japanese", nullptr, "ja" },
    { "Korean", nullptr, "ko" },
    { "Polish", "polski", "pl" },
    { "Portuguese", "português", "pt" },
    { "Russian", nullptr, "ru" },
    { "Spanish", "español", "es" },
    { "Thai", nullptr, "th" },
    { "Turkish", "türkçe", "tr" },
    { "Ukrainian", nullptr, "uk" },
    { "Vietnamese", nullptr, "vi" },
};

}

struct TranslationService::Waiting {
    Arrival<Outcome> outcome;
    StatusHandler onStatus;
};

Error TranslationServiceError::unavailable(const QString& words)
{
    return { words };
}

Error TranslationServiceError::unsupportedTarget(const QString& language)
{
    return { atStart(machineWords::localTranslation) + u" does not support %1."_s.arg(language) };
}

Error TranslationServiceError::missingHost()
{
    return { atStart(machineWords::localTranslation) + u" is not set up."_s };
}

TranslationService::TranslationService(const MachineFacts& machine, QObject* parent)
    : QObject(parent)
    , m_machine(machine)
{
}

TranslationService::~TranslationService()
{
    setHost(false);
}

QStringList TranslationService::languages()
{
    QStringList names;
    for (const NamedLanguage& each : namedLanguages)
        names.append(QString::fromUtf8(each.name));
    return names;
}

std::optional<QString> TranslationService::language(const QString& name)
{
    const QString wanted = name.trimmed().toLower();
    for (const NamedLanguage& each : namedLanguages) {
        if (wanted == QString::fromUtf8(each.name).toLower()
            || (each.otherName && wanted == QString::fromUtf8(each.otherName)))
            return QString::fromUtf8(each.code);
    }
    const QString code = wanted.section(QRegularExpression(u"[-_]"_s), 0, 0);
    if (QLocale::codeToLanguage(code) == QLocale::AnyLanguage)
        return std::nullopt;
    return wanted;
}

QCoro::Task<Result<TranslationServiceOutput>> TranslationService::translate(
    QString text, QString targetLanguage, StatusHandler onStatus, CancelHandle cancel)
{
    if (m_machine.version() < m_machine.minimumVersion())
        co_return std::unexpected(TranslationServiceError::unavailable(
            atStart(machineWords::localTranslation) + u" needs a newer system."_s));
    const auto target = language(targetLanguage);
    if (!target)
        co_return std::unexpected(TranslationServiceError::unsupportedTarget(targetLanguage));
    if (!m_hasHost)
        co_return std::unexpected(TranslationServiceError::missingHost());
    if (cancel.isCancelled())
        co_return cancelled();

    const TranslationRequest request { QUuid::createUuid(), text, targetLanguage, *target };
    const Arrival<Outcome> outcome;
    m_waiting.insert(request.id, std::make_shared<Waiting>(outcome, onStatus));
    const auto watch = cancel.onCancel([this, request] { end(request.id, cancelled()); });
    m_activeRequest = request;
    updateStatus(request, u"Preparing translation for %1..."_s.arg(targetLanguage));
    co_return co_await outcome;
}

void TranslationService::setHost(bool isThere)
{
    m_hasHost = isThere;
    if (isThere)
        return;
    for (const QUuid& id : m_waiting.keys())
        end(id, std::unexpected(TranslationServiceError::missingHost()));
}

void TranslationService::updateStatus(const TranslationRequest& request, const QString& words)
{
    const auto waiting = m_waiting.value(request.id);
    if (waiting && waiting->onStatus)
        waiting->onStatus(words);
}

void TranslationService::finish(const TranslationRequest& request, const TranslationServiceOutput& output)
{
    end(request.id, output);
}

void TranslationService::fail(const TranslationRequest& request, const Error& error)
{
    end(request.id, std::unexpected(error));
}

void TranslationService::end(const QUuid& id, const Outcome& outcome)
{
    const auto waiting = m_waiting.take(id);
    if (!waiting)
        return;
    if (m_activeRequest && m_activeRequest->id == id)
        m_activeRequest.reset();
    waiting->outcome.arrive(outcome);
}

}
