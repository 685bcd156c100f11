#include "Platform/Linux/Models/ModelServer.h"

#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Foundation/Text.h"

#include <QHostAddress>
#include <QJsonArray>

namespace corvane {

namespace {

using Contract = ModelServer::Contract;

/// The context sizes to request. A server's default is small, and it
/// reloads the model at each change, so there are few steps.
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

/// `json` with the schema's properties in the order of "required": a model writes them in the listed order, and a
/// QJsonObject has none.
QByteArray inOrder(const QByteArray& json, const QJsonObject& schema)
{
    QJsonObject left = schema["properties"_L1].toObject();
    const QByteArray sorted = compactJson(left);
    const auto inside = [](const QJsonObject& object) {
        return compactJson(object).sliced(1).chopped(1);
    };
    QByteArrayList parts;
    for (const QJsonValue& required : schema["required"_L1].toArray()) {
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
        return QJsonObject { { u"role"_s, role }, { u"content"_s, content } };
    };
    QString instructions = question.instructions;
    if (question.schema)
        instructions += u"\n\nAnswer with one JSON object that fits this JSON schema, and nothing else:\n"_s
            + QString::fromUtf8(inOrder(compactJson(*question.schema), *question.schema));
    return { message(u"system"_s, instructions), message(u"user"_s, question.prompt) };
}

QString words(const ModelServer& server, const QString& what)
{
    return u"The model server at %1 %2"_s.arg(server.base.toString(), what);
}

/// The server's error: a text, or an object with a message.
QString refusal(const HttpReply& reply)
{
    const QJsonValue error = jsonObject(reply.body).value_or(QJsonObject())["error"_L1];
    const QString text = error.isObject() ? error["message"_L1].toString() : error.toString();
    const QString status = u"(HTTP %1)"_s.arg(reply.status);
    return text.isEmpty() ? status : firstCharacters(singleLine(text), 200) + u' ' + status;
}

Result<QJsonObject> objectIn(const HttpReply& reply, const ModelServer& server)
{
    if (!reply.isSuccess())
        return failure(words(server, u"refused: "_s + refusal(reply)));
    const auto object = jsonObject(reply.body);
    return object ? Result<QJsonObject>(*object) : failure(words(server, u"gave an unreadable answer."_s));
}

/// For models on another host, Ollama reports that host and a tag.
bool runsElsewhere(const QJsonObject& model, const QString& name)
{
    const QString tag = name.section(u':', 1);
    return !model["remote_host"_L1].toString().isEmpty() || !model["remote_model"_L1].toString().isEmpty()
        || tag == "cloud"_L1 || tag.endsWith("-cloud"_L1);
}

}

std::optional<QUrl> loopbackUrl(const QString& text)
{
    QUrl url(text.trimmed(), QUrl::StrictMode);
    if (url.host() == "localhost"_L1)
        url.setHost(u"127.0.0.1"_s);
    const bool isPlain = url.isValid() && url.scheme() == "http"_L1 && url.userInfo().isEmpty() && !url.hasQuery()
        && !url.hasFragment();
    if (!isPlain || !QHostAddress(url.host()).isLoopback())
        return std::nullopt;
    return url.adjusted(QUrl::StripTrailingSlash | QUrl::NormalizePathSegments);
}

QUrl urlOf(const QUrl& base, const QString& path)
{
    QUrl url = base;
    url.setPath((base.path() == "/"_L1 ? QString() : base.path()) + path);
    return url;
}

QString versionPath()
{
    return u"/api/version"_s;
}

bool isOllamaVersion(const HttpReply& reply)
{
    return reply.isSuccess() && jsonObject(reply.body).value_or(QJsonObject())["version"_L1].isString();
}

QString modelsPath(Contract contract)
{
    return contract == Contract::Ollama ? u"/api/tags"_s : u"/v1/models"_s;
}

Result<QList<ServedModel>> modelsIn(const HttpReply& reply, const ModelServer& server)
{
    const bool isOllama = server.contract == Contract::Ollama;
    const auto object = objectIn(reply, server);
    if (!object)
        return std::unexpected(object.error());
    const QJsonValue list = object->value(isOllama ? "models"_L1 : "data"_L1);
    if (!list.isArray())
        return failure(words(server, u"is not a supported model server."_s));
    QList<ServedModel> models;
    for (const QJsonValue& model : list.toArray()) {
        const QString name = model[isOllama ? "name"_L1 : "id"_L1].toString();
        if (!name.isEmpty())
            models.append({ name, runsElsewhere(model.toObject(), name) });
    }
    if (models.isEmpty())
        return failure(words(server, u"has no model yet."_s));
    return models;
}

QString chatPath(Contract contract)
{
    return contract == Contract::Ollama ? u"/api/chat"_s : u"/v1/chat/completions"_s;
}

QByteArray chatBody(const ModelQuestion& question, Contract contract)
{
    QJsonObject body { { u"model"_s, question.model }, { u"stream"_s, false }, { u"messages"_s, messages(question) } };
    if (contract == Contract::Ollama) {
        body[u"options"_s] = QJsonObject { { u"num_ctx"_s, contextSize(question) } };
        if (question.schema)
            body[u"format"_s] = *question.schema;
    } else if (question.schema) {
        // The flat form, with the schema beside the type, would be ignored silently.
        const QJsonObject named { { u"name"_s, u"answer"_s }, { u"strict"_s, true },
            { u"schema"_s, *question.schema } };
        body[u"response_format"_s] = QJsonObject { { u"type"_s, u"json_schema"_s }, { u"json_schema"_s, named } };
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
    const QJsonValue choice = isOllama ? QJsonValue(*object) : object->value("choices"_L1)[0];
    const QJsonValue content = choice["message"_L1]["content"_L1];
    if (!content.isString())
        return failure(words(server, u"gave an answer without a text."_s));
    const QString reason = choice[isOllama ? "done_reason"_L1 : "finish_reason"_L1].toString();
    if (reason == "length"_L1)
        return failure(words(server, u"ran out of room before the answer was complete."_s));
    return content.toString();
}

QString displayNameOf(const QString& model, Contract contract)
{
    return contract == Contract::Ollama ? model + u" (Ollama)"_s : model.section(u'/', -1) + u" (llama.cpp)"_s;
}

}
