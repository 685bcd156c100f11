#pragma once

#include "Foundation/Result.h"
#include "Platform/HttpExchange.h"

#include <QJsonObject>
#include <QStringList>
#include <QUrl>
#include <optional>

namespace corvane {

/// A model server on this machine, with either of the two common APIs.
struct ModelServer {
    enum class Contract { Ollama, OpenAI };

    QUrl base;
    Contract contract = Contract::Ollama;

    bool operator==(const ModelServer&) const = default;
};

struct ServedModel {
    QString name;
    bool runsElsewhere = false; ///< the server forwards the texts to another machine

    bool operator==(const ServedModel&) const = default;
};

/// A request to a model.
struct ModelQuestion {
    QString model;
    QString instructions;
    QString prompt;
    std::optional<QJsonObject> schema; ///< its properties are requested in the order of its "required"
};

/// The absolute http URL of a server on the loopback interface, without user, query and trailing slash; nothing for any
/// other text.
std::optional<QUrl> loopbackUrl(const QString& text);

QUrl urlOf(const QUrl& base, const QString& path); ///< {base}{path}

QString versionPath(); ///< only Ollama answers it
bool isOllamaVersion(const HttpReply& reply);

QString modelsPath(ModelServer::Contract contract);

/// The models that the server lists; a failure says why there is no list.
Result<QList<ServedModel>> modelsIn(const HttpReply& reply, const ModelServer& server);

QString chatPath(ModelServer::Contract contract);
QByteArray chatBody(const ModelQuestion& question, ModelServer::Contract contract);

/// The text of an answer; the error is for the user.
Result<QString> answerIn(const HttpReply& reply, const ModelServer& server);

/// "llama3.2:3b (Ollama)", "qwen.gguf (llama.cpp)"
QString displayNameOf(const QString& model, ModelServer::Contract contract);

}
