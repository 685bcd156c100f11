#include "Platform/Linux/Models/ModelServer.h"

#include "Foundation/Json.h"
#include "Foundation/Text.h"

#include <QHostAddress>
#include <QJsonArray>

namespace corvane {

namespace {

using Contract = ModelServer::Contract;

/// As much as a model is given to read and write at once. A server gives little unless it is asked for more, and
/// loads the model anew at each change, so there are few steps.
int contextSize(const ModelQuestion& question)
{
    constexpr int charactersPerToken = 3;
    constexpr int answerTokens = 2048;
    const qsizetype needed
        = (question.instructions.size() + question.prompt.size()) / charactersPerToken + answerTokens;
    int size = 8192;
    while (size < needed && size < 131072)
        size *= 2;
    return size;
}

/// `json` with the properties of the schema in the order in which it requires them: a model writes them in the order
/// in which they are listed, and an object keeps none.
QByteArray inOrder(const QByteArray& json, const QJsonObject& schema)
{
    QJsonObject left = schema[QLatin1StringView("properties")].toObject();
    const QByteArray sorted = compactJson(left);
    const auto inside = [](const QJsonObject& object) {
        return compactJson(object).sliced(1).chopped(1);
    };
    QByteArrayList parts;
    for (const QJsonValue& required : schema[QLatin1StringView("required")].toArray()) {
        const QString name = required.toString();
        if (left.contains(name))
            parts.append(inside({ { name, left.take(name) } }));
    }
    if (!left.isEmpty())
        parts.append(inside(left));
    return QByteArray(json).replace(sorted, '{' + parts.join(',') + '}');
}

QJsonArray messages(const ModelQuestion& question)
{
    const auto message = [](const QString& role, const QString& content) {
        return QJsonObject { { QStringLiteral("role"), role }, { QStringLiteral("content"), content } };
    };
    QString instructions = question.instructions;
    if (question.schema)
        instructions
            += QStringLiteral("\n\nAnswer with one JSON object that fits this JSON schema, and nothing else:\n")
            + QString::fromUtf8(inOrder(compactJson(*question.schema), *question.schema));
    return { message(QStringLiteral("system"), instructions), message(QStringLiteral("user"), question.prompt) };
}

QString words(const ModelServer& server, const QString& what)
{
    return QStringLiteral("The model server at %1 %2").arg(server.base.toString(), what);
}

/// What the server says of its refusal: a text, or an object with a message.
QString refusal(const HttpReply& reply)
{
    const QJsonValue error = jsonObject(reply.body).value_or(QJsonObject())[QLatin1StringView("error")];
    const QString text = error.isObject() ? error[QLatin1StringView("message")].toString() : error.toString();
    const QString status = QStringLiteral("(HTTP %1)").arg(reply.status);
    return text.isEmpty() ? status : firstCharacters(singleLine(text), 200) + u' ' + status;
}

Result<QJsonObject> objectIn(const HttpReply& reply, const ModelServer& server)
{
    if (!reply.isSuccess())
        return failure(words(server, QStringLiteral("refused: ") + refusal(reply)));
    const auto object = jsonObject(reply.body);
    return object ? Result<QJsonObject>(*object)
                  : failure(words(server, QStringLiteral("gave an answer that does not read.")));
}

/// Ollama names the host that it passes texts on to, and tags such models.
bool runsElsewhere(const QJsonObject& model, const QString& name)
{
    const QString tag = name.section(u':', 1);
    return !model[QLatin1StringView("remote_host")].toString().isEmpty()
        || !model[QLatin1StringView("remote_model")].toString().isEmpty() || tag == QLatin1StringView("cloud")
        || tag.endsWith(QLatin1StringView("-cloud"));
}

}

std::optional<QUrl> loopbackUrl(const QString& text)
{
    QUrl url(text.trimmed(), QUrl::StrictMode);
    if (url.host() == QLatin1StringView("localhost"))
        url.setHost(QStringLiteral("127.0.0.1"));
    const bool isPlain = url.isValid() && url.scheme() == QLatin1StringView("http") && url.userInfo().isEmpty()
        && !url.hasQuery() && !url.hasFragment();
    if (!isPlain || !QHostAddress(url.host()).isLoopback())
        return std::nullopt;
    return url.adjusted(QUrl::StripTrailingSlash | QUrl::NormalizePathSegments);
}

QUrl urlOf(const QUrl& base, const QString& path)
{
    QUrl url = base;
    url.setPath((base.path() == QLatin1StringView("/") ? QString() : base.path()) + path);
    return url;
}

QString versionPath()
{
    return QStringLiteral("/api/version");
}

bool isOllamaVersion(const HttpReply& reply)
{
    return reply.isSuccess() && jsonObject(reply.body).value_or(QJsonObject())[QLatin1StringView("version")].isString();
}

QString modelsPath(Contract contract)
{
    return contract == Contract::Ollama ? QStringLiteral("/api/tags") : QStringLiteral("/v1/models");
}

Result<QList<ServedModel>> modelsIn(const HttpReply& reply, const ModelServer& server)
{
    const bool isOllama = server.contract == Contract::Ollama;
    const auto object = objectIn(reply, server);
    if (!object)
        return std::unexpected(object.error());
    const QJsonValue list = object->value(isOllama ? QLatin1StringView("models") : QLatin1StringView("data"));
    if (!list.isArray())
        return failure(words(server, QStringLiteral("is no model server that is known here.")));
    QList<ServedModel> models;
    for (const QJsonValue& model : list.toArray()) {
        const QString name = model[isOllama ? QLatin1StringView("name") : QLatin1StringView("id")].toString();
        if (!name.isEmpty())
            models.append({ name, runsElsewhere(model.toObject(), name) });
    }
    if (models.isEmpty())
        return failure(words(server, QStringLiteral("has no model yet.")));
    return models;
}

QString chatPath(Contract contract)
{
    return contract == Contract::Ollama ? QStringLiteral("/api/chat") : QStringLiteral("/v1/chat/completions");
}

QByteArray chatBody(const ModelQuestion& question, Contract contract)
{
    QJsonObject body { { QStringLiteral("model"), question.model }, { QStringLiteral("stream"), false },
        { QStringLiteral("messages"), messages(question) } };
    if (contract == Contract::Ollama) {
        body[QStringLiteral("options")] = QJsonObject { { QStringLiteral("num_ctx"), contextSize(question) } };
        if (question.schema)
            body[QStringLiteral("format")] = *question.schema;
    } else if (question.schema) {
        // The flat form, with the schema beside the type, is passed over without a word.
        const QJsonObject named { { QStringLiteral("name"), QStringLiteral("answer") },
            { QStringLiteral("strict"), true }, { QStringLiteral("schema"), *question.schema } };
        body[QStringLiteral("response_format")]
            = QJsonObject { { QStringLiteral("type"), QStringLiteral("json_schema") },
                  { QStringLiteral("json_schema"), named } };
    }
    const QByteArray json = compactJson(body);
    return question.schema ? inOrder(json, *question.schema) : json;
}

Result<QString> answerIn(const HttpReply& reply, const ModelServer& server)
{
    const auto object = objectIn(reply, server);
    if (!object)
        return std::unexpected(object.error());
    const bool isOllama = server.contract == Contract::Ollama;
    const QJsonValue choice = isOllama ? QJsonValue(*object) : object->value(QLatin1StringView("choices"))[0];
    const QJsonValue content = choice[QLatin1StringView("message")][QLatin1StringView("content")];
    if (!content.isString())
        return failure(words(server, QStringLiteral("gave an answer without a text.")));
    const QString reason
        = choice[isOllama ? QLatin1StringView("done_reason") : QLatin1StringView("finish_reason")].toString();
    if (reason == QLatin1StringView("length"))
        return failure(words(server, QStringLiteral("ran out of room before the answer was complete.")));
    return content.toString();
}

QString displayNameOf(const QString& model, Contract contract)
{
    return contract == Contract::Ollama ? model + QStringLiteral(" (Ollama)")
                                        : model.section(u'/', -1) + QStringLiteral(" (llama.cpp)");
}

}
