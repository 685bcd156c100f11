#include "Shell/ToolCommand.h"

#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Platform/AppPaths.h"
#include "Platform/HttpExchange.h"

#include <QFile>
#include <QJsonArray>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkRequest>
#include <QTextStream>
#include <QUrl>
#include <expected>

namespace corvane {

namespace {

constexpr HttpLimits limits { std::chrono::minutes(5), 4 * 1024 * 1024 }; // scanning a page takes a while

struct Problem {
    ToolOutcome outcome;
    QString words;
};
using Answer = std::expected<QString, Problem>;

std::unexpected<Problem> problem(ToolOutcome outcome, const QString& words)
{
    return std::unexpected(Problem { outcome, words });
}

QByteArray tokenOf(const AppPaths& paths)
{
    QFile file(paths.applicationSupport + u"/mcp-token"_s);
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray();
}

QJsonObject requestFor(const QString& name, const QJsonObject& arguments)
{
    QJsonObject request { { u"jsonrpc"_s, u"2.0"_s }, { u"id"_s, 1 },
        { u"method"_s, name.isEmpty() ? u"tools/list"_s : u"tools/call"_s } };
    if (!name.isEmpty())
        request.insert(u"params"_s, QJsonObject { { u"name"_s, name }, { u"arguments"_s, arguments } });
    return request;
}

QString listOf(const QJsonArray& tools)
{
    QStringList lines;
    for (const QJsonValue& tool : tools)
        lines.append(tool[u"name"].toString() + u": "_s + tool[u"description"].toString());
    return lines.join(u'\n');
}

Answer readAnswer(const HttpReply& reply, int port)
{
    const auto body = jsonObject(reply.body);
    if (!body)
        return problem(ToolOutcome::NoServer,
            u"The program on port %1 is not the tool server (HTTP %2)."_s.arg(port).arg(reply.status));
    if (reply.status == 401)
        return problem(ToolOutcome::NoServer,
            u"The tool server on port %1 doesn't accept the token: it may belong to another profile."_s.arg(port));
    const QJsonValue result = body->value("result"_L1);
    if (!result.isObject())
        return problem(ToolOutcome::Refused, (*body)[u"error"][u"message"].toString());
    if (result[u"tools"].isArray())
        return listOf(result[u"tools"].toArray());
    const QString text = result[u"content"][0][u"text"].toString();
    return result[u"isError"].toBool() ? Answer(problem(ToolOutcome::Refused, text)) : text;
}

Answer ask(const AppPaths& paths, Scheduler& scheduler, const ToolCall& call)
{
    const auto arguments = jsonObject(call.arguments.trimmed().isEmpty() ? "{}" : call.arguments);
    if (!arguments)
        return problem(ToolOutcome::WrongUse, u"The arguments are not a JSON object."_s);
    QNetworkRequest request(QUrl(u"http://127.0.0.1:%1/mcp"_s.arg(call.port)));
    makePlain(request);
    request.setHeader(QNetworkRequest::ContentTypeHeader, u"application/json"_s);
    request.setRawHeader("Accept", "application/json, text/event-stream");
    request.setRawHeader("Authorization", "Bearer " + tokenOf(paths));
    QNetworkAccessManager network;
    network.setProxy(QNetworkProxy::NoProxy);
    const auto reply = QCoro::waitFor(
        awaitReply(network.post(request, compactJson(requestFor(call.name, *arguments))), &scheduler, limits));
    if (!reply)
        return problem(ToolOutcome::NoServer,
            u"The tool server doesn't answer on port %1 (%2). Is Corvane running?"_s.arg(call.port).arg(
                reply.error().message));
    return readAnswer(*reply, call.port);
}

}

ToolOutcome callTool(
    const AppPaths& paths, Scheduler& scheduler, const ToolCall& call, QTextStream& out, QTextStream& errors)
{
    const Answer answer = ask(paths, scheduler, call);
    if (answer) {
        out << *answer << Qt::endl;
        return ToolOutcome::Answered;
    }
    errors << answer.error().words << Qt::endl;
    return answer.error().outcome;
}

}
