#include "Platform/Linux/Models/LoopbackLanguageModel.h"

#include "Foundation/Json.h"
#include "Foundation/JsonSchema.h"
#include "Foundation/Literals.h"
#include "Platform/Linux/Services.h"

#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <algorithm>

namespace corvane {

namespace {

constexpr Milliseconds lookPeriod = std::chrono::seconds(30);
constexpr Milliseconds longestLookPeriod = std::chrono::minutes(2);
constexpr HttpLimits lookLimits { std::chrono::seconds(2), 1024 * 1024 };
// A large model on a small machine is slow with long prompts; the user can cancel.
constexpr HttpLimits answerLimits { std::chrono::minutes(10), 4 * 1024 * 1024 };

QNetworkRequest request(const QUrl& url)
{
    QNetworkRequest result(url);
    makePlain(result);
    result.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    result.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    result.setRawHeader("Accept-Encoding", "identity");
    return result;
}

}

LoopbackLanguageModel::LoopbackLanguageModel(Scheduler& scheduler, const QStringList& usualServers)
    : m_scheduler(scheduler)
    , m_usualServers(usualServers)
    , m_known { {}, {}, u"The model server has not answered yet."_s }
{
    m_looks.setProxy(QNetworkProxy::NoProxy);
    m_answers.setProxy(QNetworkProxy::NoProxy);
    lookAgainAfter(lookPeriod);
}

LoopbackLanguageModel::~LoopbackLanguageModel()
{
    m_end.cancel();
}

/// Less and less often without a server, so as not to bother another program on that port forever.
void LoopbackLanguageModel::lookAgainAfter(Milliseconds pause)
{
    m_lookAgain = m_scheduler.after(pause, [this, pause] {
        refresh();
        lookAgainAfter(m_known.server ? lookPeriod : std::min(pause * 2, longestLookPeriod));
    });
}

void LoopbackLanguageModel::choose(const Choice& choice)
{
    m_choice = choice;
    Q_EMIT availabilityChanged();
    refresh();
}

ServedModel LoopbackLanguageModel::model() const
{
    const auto found = std::ranges::find_if(m_known.models, [this](const ServedModel& model) {
        return m_choice.model.isEmpty() ? !model.runsElsewhere : model.name == m_choice.model;
    });
    if (found != m_known.models.cend())
        return *found;
    return m_choice.model.isEmpty() ? m_known.models.value(0) : ServedModel { m_choice.model };
}

bool LoopbackLanguageModel::runsElsewhere() const
{
    return m_known.server && model().runsElsewhere;
}

QStringList LoopbackLanguageModel::models() const
{
    QStringList names;
    for (const ServedModel& model : m_known.models)
        names.append(model.name);
    return names;
}

std::optional<QString> LoopbackLanguageModel::unavailableReason() const
{
    if (!m_known.server)
        return m_known.reason;
    const ServedModel answering = model();
    if (!m_known.models.contains(answering))
        return u"The model server at %1 has no model “%2”."_s.arg(m_known.server->base.toString(), answering.name);
    if (answering.runsElsewhere && answering.name != m_choice.allowedElsewhere)
        return u"“%1” runs elsewhere: what it reads leaves this machine. It answers once you allow that in "
               "the settings."_s.arg(answering.name);
    return std::nullopt;
}

QString LoopbackLanguageModel::displayName() const
{
    return m_known.server ? displayNameOf(model().name, m_known.server->contract) : QString();
}

QCoro::Task<> LoopbackLanguageModel::refresh()
{
    const CancelHandle end = m_end;
    const Choice choice = m_choice;
    const bool isChosen = !choice.serverUrl.trimmed().isEmpty();
    const Known known = co_await look(isChosen ? QStringList(choice.serverUrl) : m_usualServers);
    if (end.isCancelled() || choice != m_choice || known == m_known)
        co_return;
    m_known = known;
    Q_EMIT availabilityChanged();
}

/// The first server that can answer, else the reason from the first one that exists.
QCoro::Task<LoopbackLanguageModel::Known> LoopbackLanguageModel::look(QStringList servers)
{
    const CancelHandle end = m_end;
    std::optional<Known> best;
    for (const QString& server : servers) {
        const auto base = loopbackUrl(server);
        if (!base)
            co_return Known { {}, {},
                u"“%1” is no model server on this machine. Write http://127.0.0.1 and its port."_s.arg(server) };
        const std::optional<Known> found = co_await lookAt(*base);
        if (end.isCancelled())
            co_return Known();
        if (found && found->server)
            co_return *found;
        if (!best)
            best = found;
    }
    co_return best.value_or(Known { {}, {}, u"No model server answers at %1."_s.arg(servers.join(u" or "_s)) });
}

/// Nothing without an answer.
QCoro::Task<std::optional<LoopbackLanguageModel::Known>> LoopbackLanguageModel::lookAt(QUrl base)
{
    const CancelHandle end = m_end;
    const auto version = co_await get(urlOf(base, versionPath()));
    if (end.isCancelled() || !version)
        co_return std::nullopt;
    const ModelServer server { base,
        isOllamaVersion(*version) ? ModelServer::Contract::Ollama : ModelServer::Contract::OpenAI };
    const auto reply = co_await get(urlOf(base, modelsPath(server.contract)));
    if (end.isCancelled() || !reply)
        co_return std::nullopt;
    const auto models = modelsIn(*reply, server);
    co_return models ? Known { server, *models, {} } : Known { {}, {}, models.error().message };
}

QCoro::Task<Result<HttpReply>> LoopbackLanguageModel::get(QUrl url)
{
    return awaitReply(m_looks.get(request(url)), &m_scheduler, lookLimits, m_end);
}

QCoro::Task<Result<QString>> LoopbackLanguageModel::ask(ModelQuestion question, CancelHandle cancel)
{
    const CancelHandle end = m_end;
    if (const auto reason = unavailableReason())
        co_return failure(*reason);
    const ModelServer server = *m_known.server;
    question.model = model().name;
    QNetworkRequest sent = request(urlOf(server.base, chatPath(server.contract)));
    sent.setHeader(QNetworkRequest::ContentTypeHeader, u"application/json"_s);
    // The request ends with the first of the two handles.
    const CancelHandle either;
    const auto byCaller = cancel.onCancel([either] { either.cancel(); });
    const auto byEnd = end.onCancel([either] { either.cancel(); });
    if (cancel.isCancelled())
        co_return cancelled();
    const Result<HttpReply> reply = co_await awaitReply(
        m_answers.post(sent, chatBody(question, server.contract)), &m_scheduler, answerLimits, either);
    if (either.isCancelled())
        co_return cancelled();
    if (reply)
        co_return answerIn(*reply, server);
    refresh();
    co_return failure(
        u"The model server at %1 gave no answer: %2"_s.arg(server.base.toString(), reply.error().message));
}

QCoro::Task<Result<QString>> LoopbackLanguageModel::respond(QString instructions, QString prompt, CancelHandle cancel)
{
    return ask({ {}, instructions, prompt, std::nullopt }, cancel);
}

QCoro::Task<Result<QJsonObject>> LoopbackLanguageModel::respondGenerating(
    QString instructions, QString prompt, QJsonObject schema, CancelHandle cancel)
{
    const Result<QString> answer = co_await ask({ {}, instructions, prompt, schema }, cancel);
    if (!answer)
        co_return std::unexpected(answer.error());
    const auto object = jsonObject(answer->toUtf8());
    if (!object)
        co_return failure(u"The model's answer is not a JSON object."_s);
    if (const auto violation = schemaViolation(*object, schema))
        co_return failure(u"The model's answer does not match the request: %1."_s.arg(*violation));
    co_return *object;
}

std::unique_ptr<SystemLanguageModel> makeLanguageModel(Scheduler& scheduler)
{
    return std::make_unique<LoopbackLanguageModel>(
        scheduler, QStringList { u"http://127.0.0.1:11434"_s, u"http://127.0.0.1:8080"_s });
}

}
