#pragma once

#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QProcess>
#include <QStringList>

namespace corvane {

/// The demo's stand-in for the web service, in a separate process.
class DemoWeb {
public:
    DemoWeb();
    ~DemoWeb();

    const QString& base() const { return m_base; }

    /// Sets the faults to inject from now on, such as "messages=500x1+10"; empty for none.
    void plan(const QByteArray& faults);

    /// The number of stored items as "{accounts} {chats} {messages}".
    QString counts();

    /// The number of requests whose log line contains `part`.
    int requests(const QString& part);

private:
    QByteArray ask(const QByteArray& method, const QString& path, const QByteArray& body = {});

    QProcess m_process;
    QNetworkAccessManager m_network;
    QString m_base;
    QString m_log;
};

}
