#pragma once

#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QTcpServer>
#include <QUrl>

class QTcpSocket;

namespace corvane {

/// A web server on the loopback interface that records all requests and gives the answers set by the test. A request
/// for a path without an answer fails the test.
class LoopbackWeb : public QObject {
    Q_OBJECT
public:
    struct Request {
        QByteArray method;
        QUrl url;
        QHash<QByteArray, QByteArray> headers; ///< by lower-case name
        QByteArray body;

        QString query(const QString& key) const;
        QJsonObject json() const;
    };

    /// The reply to a request: a complete HTTP response, or any other bytes. With `hang` the connection stays open
    /// afterwards; with `drip` as well, another byte is sent every few milliseconds.
    struct Answer {
        QByteArray bytes;
        bool hang = false;
        bool drip = false;
    };

    LoopbackWeb();

    QString base() const; ///< "http://127.0.0.1:{port}"
    void answer(const QString& path, const Answer& answer); ///< for every request from now on
    const QList<Request>& requests() const { return m_requests; }
    QStringList paths() const; ///< of all requests, in order

    qsizetype openConnections() const { return m_received.size(); } ///< those that have sent data

    static Answer status(
        int status, const QByteArray& body = {}, const QList<QByteArray>& headers = {}); ///< headers as "Name: value"
    static Answer json(const QJsonObject& body, int status = 200);
    static Answer redirect(const QString& location, int status = 302);

private:
    void read(QTcpSocket* socket);

    QHash<QString, Answer> m_answers;
    QHash<QTcpSocket*, QByteArray> m_received;
    QList<Request> m_requests;
    QTcpServer m_server; ///< last, so destroyed first: its sockets use the other members as they disconnect
};

}
