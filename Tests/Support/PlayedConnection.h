#pragma once

#include "Browser/DevToolsConnection.h"
#include "Foundation/Literals.h"

#include <QBuffer>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>

namespace corvane {

/// A DevTools connection on which the test plays the browser.
class PlayedConnection final : public DevToolsConnection {
public:
    using DevToolsConnection::DevToolsConnection;
    using DevToolsConnection::fail;
    using DevToolsConnection::receive;

    void say(const QString& method, const QJsonObject& parameters)
    {
        receive(QJsonDocument(QJsonObject { { u"method"_s, method }, { u"params"_s, parameters } }).toJson());
    }
    void showFrame(const QByteArray& jpeg, int session, const QJsonObject& metadata = {})
    {
        say(u"Page.screencastFrame"_s,
            { { u"data"_s, QString::fromLatin1(jpeg.toBase64()) }, { u"sessionId"_s, session },
                { u"metadata"_s, metadata } });
    }
    static QByteArray jpeg(QSize size)
    {
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::white);
        QBuffer buffer;
        image.save(&buffer, "JPEG");
        return buffer.data();
    }
    void logError(const QString& text)
    {
        say(u"Runtime.consoleAPICalled"_s,
            { { u"type"_s, u"error"_s }, { u"args"_s, QJsonArray { QJsonObject { { u"value"_s, text } } } } });
    }
    QStringList methods() const
    {
        QStringList names;
        for (const QJsonObject& message : sent)
            names.append(message["method"_L1].toString());
        return names;
    }

    QList<QJsonObject> sent;

protected:
    void write(const QByteArray& message) override { sent.append(QJsonDocument::fromJson(message).object()); }
};

}
