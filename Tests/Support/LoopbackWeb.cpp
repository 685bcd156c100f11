#include "Support/LoopbackWeb.h"

#include "Foundation/Literals.h"

#include <QJsonDocument>
#include <QTcpSocket>
#include <QTimer>
#include <QUrlQuery>
#include <gtest/gtest.h>

namespace corvane {

namespace {

/// Parses a request. Returns nullopt while it is incomplete.
std::optional<LoopbackWeb::Request> parse(const QByteArray& bytes)
{
    const qsizetype end = bytes.indexOf("\r\n\r\n");
    if (end < 0)
        return std::nullopt;
    const QList<QByteArray> lines = bytes.first(end).split('\n');
    LoopbackWeb::Request request;
    const QList<QByteArray> words = lines.first().trimmed().split(' ');
    request.method = words.value(0);
    request.url = QUrl::fromEncoded(words.value(1));
    for (const QByteArray& line : lines.sliced(1)) {
        const qsizetype colon = line.indexOf(':');
        request.headers.insert(line.first(colon).trimmed().toLower(), line.sliced(colon + 1).trimmed());
    }
    request.body = bytes.sliced(end + 4);
    if (request.body.size() < request.headers.value("content-length").toLongLong())
        return std::nullopt;
    return request;
}

}

QString LoopbackWeb::Request::query(const QString& key) const
{
    return QUrlQuery(url).queryItemValue(key, QUrl::FullyDecoded);
}

QJsonObject LoopbackWeb::Request::json() const
{
    return QJsonDocument::fromJson(body).object();
}

LoopbackWeb::LoopbackWeb()
{
    EXPECT_TRUE(m_server.listen(QHostAddress::LocalHost));
    connect(&m_server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* const socket = m_server.nextPendingConnection()) {
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
            connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
                m_received.remove(socket);
                socket->deleteLater();
            });
        }
    });
}

void LoopbackWeb::read(QTcpSocket* socket)
{
    QByteArray& received = m_received[socket];
    received += socket->readAll();
    const auto request = parse(received);
    if (!request)
        return;
    received.clear();
    m_requests.append(*request);
    const auto answer = m_answers.constFind(request->url.path());
    if (answer == m_answers.constEnd()) {
        ADD_FAILURE() << "nobody told what " << qPrintable(request->url.path()) << " answers";
        socket->disconnectFromHost();
        return;
    }
    socket->write(answer->bytes);
    if (answer->drip) {
        auto* const pause = new QTimer(socket);
        connect(pause, &QTimer::timeout, socket, [socket] { socket->write(" "); });
        pause->start(5);
    }
    if (!answer->hang)
        socket->disconnectFromHost();
}

QString LoopbackWeb::base() const
{
    return u"http://127.0.0.1:%1"_s.arg(m_server.serverPort());
}

void LoopbackWeb::answer(const QString& path, const Answer& answer)
{
    m_answers.insert(path, answer);
}

QStringList LoopbackWeb::paths() const
{
    QStringList result;
    for (const Request& request : m_requests)
        result.append(request.url.path());
    return result;
}

LoopbackWeb::Answer LoopbackWeb::status(int status, const QByteArray& body, const QList<QByteArray>& headers)
{
    QByteArray bytes = "HTTP/1.1 " + QByteArray::number(status)
        + " Word\r\nConnection: close\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n";
    for (const QByteArray& header : headers)
        bytes += header + "\r\n";
    return { bytes + "\r\n" + body };
}

LoopbackWeb::Answer LoopbackWeb::json(const QJsonObject& body, int status)
{
    return LoopbackWeb::status(
        status, QJsonDocument(body).toJson(QJsonDocument::Compact), { "Content-Type: application/json" });
}

LoopbackWeb::Answer LoopbackWeb::redirect(const QString& location, int status)
{
    return LoopbackWeb::status(status, {}, { "Location: " + location.toUtf8() });
}

}
