#pragma once

#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QTcpServer>
#include <QUrl>

class QTcpSocket;

namespace corvane {

/// A web service on the loopback interface that answers as a test tells it, and notes what it was asked.
/// A path that was not told about fails the test.
class LoopbackWeb : public QObject {
    Q_OBJECT
public:
    struct Request {
        QByteArray method;
        QUrl url;
        QHash<QByteArray, QByteArray> headers; ///< names in lower case
        QByteArray body;

        QString query(const QString& key) const;
        QJsonObject json() const;
    };

    /// What follows a request: a whole HTTP response, any other bytes, or, with `hang`, nothing more and an
    /// open connection; with `drip` one more byte now and then, too.
    struct Answer {
        QByteArray bytes;
        bool hang = false;
        bool drip = false;
    };

    LoopbackWeb();

    QString base() const; ///< "http://127.0.0.1:{port}"
    void answer(const QString& path, const Answer& answer); ///< from now on, each time
    const QList<Request>& requests() const { return m_requests; }
    QStringList paths() const; ///< of the requests, in order

    qsizetype openConnections() const { return m_received.size(); } ///< of those that have asked something

    static Answer status(
        int status, const QByteArray& body = {}, const QList<QByteArray>& headers = {}); ///< a header is "Name: value"
    static Answer json(const QJsonObject& body, int status = 200);
    static Answer redirect(const QString& location, int status = 302);

private:
    void read(QTcpSocket* socket);

    QHash<QString, Answer> m_answers;
    QHash<QTcpSocket*, QByteArray> m_received;
    QList<Request> m_requests;
    QTcpServer m_server; ///< goes first: its sockets say goodbye to the rest
};

}
