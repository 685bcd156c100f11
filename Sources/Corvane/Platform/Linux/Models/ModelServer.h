#pragma once

#include "Foundation/Result.h"
#include "Platform/HttpExchange.h"

#include <QJsonObject>
#include <QStringList>
#include <QUrl>
#include <optional>

namespace corvane {

/// A model server on this machine, in the two contracts that such servers speak.
struct ModelServer {
    enum class Contract { Ollama, OpenAI };

    QUrl base;
    Contract contract = Contract::Ollama;

    bool operator==(const ModelServer&) const = default;
};

struct ServedModel {
    QString name;
    bool runsElsewhere = false; ///< the server passes the texts on to another machine

    bool operator==(const ServedModel&) const = default;
};

/// What a model is asked.
struct ModelQuestion {
    QString model;
    QString instructions;
    QString prompt;
    std::optional<QJsonObject> schema; ///< its properties are asked for in the order in which it requires them
};

/// The absolute http URL of a server on the loopback interface, without user, query and trailing slash; nothing
/// for any other text.
std::optional<QUrl> loopbackUrl(const QString& text);

QUrl urlOf(const QUrl& base, const QString& path); ///< {base}{path}

QString versionPath(); ///< answered by Ollama only
bool isOllamaVersion(const HttpReply& reply);

QString modelsPath(ModelServer::Contract contract);

/// The models that the server lists; a failure says in words why there is no list.
Result<QList<ServedModel>> modelsIn(const HttpReply& reply, const ModelServer& server);

QString chatPath(ModelServer::Contract contract);
QByteArray chatBody(const ModelQuestion& question, ModelServer::Contract contract);

/// The text of an answer; a failure carries words for the user.
Result<QString> answerIn(const HttpReply& reply, const ModelServer& server);

/// "llama3.2:3b (Ollama)", "qwen.gguf (llama.cpp)"
QString displayNameOf(const QString& model, ModelServer::Contract contract);

}
