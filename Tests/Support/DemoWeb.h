#pragma once

#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QProcess>
#include <QStringList>

namespace corvane {

/// The stand-in of the web service, as a process of its own.
class DemoWeb {
public:
    DemoWeb();
    ~DemoWeb();

    const QString& base() const { return m_base; }

    /// What goes wrong from now on, such as "messages=500x1+10"; empty: nothing.
    void plan(const QByteArray& faults);

    /// "{accounts} {chats} {messages}" that it holds.
    QString counts();

    /// How many requests it got whose line in the log holds that.
    int requests(const QString& part);

private:
    QByteArray ask(const QByteArray& method, const QString& path, const QByteArray& body = {});

    QProcess m_process;
    QNetworkAccessManager m_network;
    QString m_base;
    QString m_log;
};

}
